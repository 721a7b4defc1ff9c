#pragma once
// The host world and the user's actions shared by the workbench's tests: a small catalog of
// 给排水, the workbench run through the modal hook, and reading the panes back.

#include "presenter/CQdDeConfigPresenter.h"
#include "support/TestHost.h"
#include "support/ui/DialogProbe.h"
#include "ui/ModalHook.h"
#include "workbench/CAutoConfigDlg.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QTreeWidget>

#include <gtest/gtest.h>

#include <functional>
#include <initializer_list>
#include <stdexcept>
#include <string>
#include <vector>

namespace workbench_test {
using koqdde::test::ItemTexts;

using namespace AutoConfigIds;

const wchar_t* const kBillLib = L"{BILL-2013}";
const wchar_t* const kBillQuotaLib = L"{QUOTA-2018}";
const wchar_t* const kQuotaLib = L"{QUOTA-2016}";

// 给排水: 管道 (给水管 with pipe fittings, 配管配线, 排水管), 阀门 (阀门).
inline void Catalog(TestHost& host, int mode = 0) {
    host.Add(L"给排水", L"管道", L"给水管", 1, 101);
    host.Add(L"给排水", L"管道", L"配管配线", 1, 102);
    host.Add(L"给排水", L"管道", L"排水管", 1, 103);
    host.Add(L"给排水", L"阀门", L"阀门", 2, 201);
    auto& pipes = host.data.catalog.front().larges.front().smalls;
    HostSmallCategory& water = pipes[0];
    water.attType = 1;
    water.attributes = {{L"GDCZ", L"材质", L"给水管材质", L"CZ"},
                        {L"GDGJ", L"管径(mm)", L"管径", L"GJ"},
                        {L"BWCZ", L"保温材质", L"", L"BWCZ"},
                        {L"XTBH", L"系统编号", L"", L"XTBH"}};
    pipes[2].attributes = {{L"GDCZ", L"材质", L"排水管材质", L"CZ"}};
    host.data.dropLists[L"给水管材质"] = {L"镀锌钢管", L"PP-R管"};
    host.data.dropLists[L"排水管材质"] = {L"UPVC管", L"铸铁管"};
    host.data.dropLists[L"管径"] = {L"DN15", L"DN20"};
    host.data.project.mode = mode;
    host.data.project.bill.code = kBillLib;
    host.data.project.billQuota.code = kBillQuotaLib;
    host.data.project.quota.code = kQuotaLib;
}

inline CPath Category(int large, int small, int config = CPath::kNone) {
    return {2, large, small, config};
}

inline QdStruct Bill(const CString& number, const CString& name, const CString& unit,
                     const CString& library, const CString& annex = L"") {
    QdStruct qd;
    qd.strQdId = number;
    qd.strQdIdUser = L"user-" + number;
    qd.strName = name;
    qd.strUnit = unit;
    qd.strUnitCode = L"999";
    qd.strQdCode = library;
    qd.strFormula = L"L";
    qd.strAnnex = annex;
    return qd;
}

inline DeStruct Quota(const CString& number, const CString& name, const CString& library) {
    DeStruct de;
    de.strDeId = number;
    de.strName = name;
    de.strUnit = L"10m";
    de.strUnitCode = L"10";
    de.strDeCode = library;
    de.strFormula = L"L";
    de.strAnnex = L"否";
    return de;
}

template <class T> inline T& Ctl(CDialog& dialog, int id) {
    auto* control = dynamic_cast<T*>(dialog.GetDlgItem(id));
    if (!control)
        throw std::logic_error("control " + std::to_string(id) + " is missing or of another class");
    return *control;
}

// Runs the workbench on the project's current configuration. body drives it; the run ends as
// body leaves it (Esc sends WM_CLOSE; a body that ends nothing leaves without the way out).
inline void RunWorkbench(const std::function<void(CDialog&)>& body) {
    int runs = 0;
    koqdde::ui::ModalHookScope hook([&](CDialog& dialog) {
        if (!dynamic_cast<CAutoConfigDlg*>(&dialog))
            return IDCANCEL;
        ++runs;
        body(dialog);
        return dialog.GetEndResult();
    });
    CAutoConfigDlg workbench(CString(), nullptr);
    workbench.DoModal();
    EXPECT_EQ(runs, 1);
}

inline void PressEsc(CDialog& dialog) {
    dialog.SendMessage(WM_CLOSE);
}

inline HTREEITEM FindItem(CTreeCtrl& tree, std::initializer_list<const wchar_t*> names) {
    HTREEITEM item = tree.GetRootItem();
    for (const wchar_t* name : names) {
        item = tree.GetChildItem(item);
        while (item && tree.GetItemText(item) != name)
            item = tree.GetNextSiblingItem(item);
        if (!item)
            throw std::logic_error("no tree item");
    }
    return item;
}

inline void SelectLeaf(CDialog& dialog, std::initializer_list<const wchar_t*> names) {
    CTreeCtrl& tree = Ctl<CTreeCtrl>(dialog, kTree);
    tree.UserSelect(FindItem(tree, names));
}

inline std::vector<CString> Column(CDialog& dialog, int column) {
    CListCtrl& list = Ctl<CListCtrl>(dialog, kConfigList);
    std::vector<CString> texts;
    for (int row = 0; row < list.GetItemCount(); ++row)
        texts.push_back(list.GetItemText(row, column));
    return texts;
}

inline int SelectedConfigRow(CDialog& dialog) {
    return Ctl<CListCtrl>(dialog, kConfigList).GetNextItem(-1, LVNI_SELECTED);
}

inline bool Enabled(CDialog& dialog, int id) {
    return dialog.GetDlgItem(id)->IsWindowEnabled() != FALSE;
}

inline void ChooseAttribute(CDialog& dialog, const CString& name) {
    CListBox& list = Ctl<CListBox>(dialog, kAttributeList);
    list.UserSelect(list.FindStringExact(-1, name));
}

// The configurations of a category as the file holds them now.
inline std::vector<ConfigNode*> SavedConfigs(CQdDeConfigPresenter& presenter,
                                             const CPath& category) {
    std::vector<ConfigNode*> configs;
    presenter.GetConfig(category, configs);
    return configs;
}

// As a key pressed on `target`: the key, or the text it types.
inline void PressKey(QWidget* target, int key, const QString& text = QString()) {
    QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier, text);
    QApplication::sendEvent(target, &event);
}

// As a mouse clicks a row of a list, or double-clicks it.
inline void ClickRow(QTreeWidget* list, QTreeWidgetItem* row, bool twice = false) {
    ASSERT_NE(row, nullptr);
    list->scrollToItem(row);
    const QPoint at = list->visualItemRect(row).center();
    std::vector<QEvent::Type> types{QEvent::MouseButtonPress, QEvent::MouseButtonRelease};
    if (twice)
        types.insert(types.end(), {QEvent::MouseButtonDblClick, QEvent::MouseButtonRelease});
    for (QEvent::Type type : types) {
        const auto buttons = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
        QMouseEvent event(type, at, list->viewport()->mapToGlobal(at), Qt::LeftButton, buttons,
                          Qt::NoModifier);
        QApplication::sendEvent(list->viewport(), &event);
    }
}

} // namespace workbench_test
