// The attribute settings dialog driven as a user does, on a catalog and an AttrConfig.xml
// written here.

#include "dialogs/CDlgAttConfig.h"

#include "platform/ComError.h"
#include "platform/FileSystem.h"
#include "support/TestHost.h"
#include "ui/ModalHook.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

using koqdde::ui::ClickDlgItem;
using koqdde::ui::ModalHookScope;
using koqdde::ui::SelectDlgItem;

namespace {

constexpr int kVarType = 2009;
constexpr int kCompar = 2010;
constexpr int kSpecRelation = 2011;
constexpr int kTree = 2012;
constexpr int kAttrList = 2013;
constexpr int kApply = 2014;
constexpr int kSmallList = 2015;
constexpr int kCopy = 2016;

using Texts = std::vector<CString>;

void AddAttr(TestHost& host, const CString& large, const CString& small, const CString& name,
             const CString& code) {
    for (auto& l : host.data.catalog.front().larges)
        for (auto& s : l.smalls)
            if (l.name == large && s.name == small)
                s.attributes.push_back({L"F_" + code, name, L"K_" + code, code});
}

// 给排水: 管道 with two small categories and three of wires and lines, 设备 with one.
void Catalog(TestHost& host, bool withAttributes) {
    host.Add(L"给排水", L"管道", L"给水管", 1, 101);
    host.Add(L"给排水", L"管道", L"导线·导管", 1, 102);
    host.Add(L"给排水", L"管道", L"排水管", 1, 103);
    host.Add(L"给排水", L"管道", L"电气配管配线", 1, 104);
    host.Add(L"给排水", L"管道", L"组合管线", 1, 105);
    host.Add(L"给排水", L"设备", L"水泵", 2, 201);
    if (!withAttributes)
        return;
    AddAttr(host, L"管道", L"给水管", L"管径", L"DN");
    AddAttr(host, L"管道", L"给水管", L"材质", L"CZ");
    AddAttr(host, L"管道", L"给水管", L"系统编号", L"XTBH");
    AddAttr(host, L"管道", L"排水管", L"管径", L"DN");
    AddAttr(host, L"设备", L"水泵", L"功率", L"GL");
}

// Records (vartype, compar, specrelation) for all attributes but 水泵's.
const std::string kAttrConfig = R"(<?xml version="1.0" encoding="UTF-8"?>
<属性类型配置信息>
  <给排水 id="2" name="给排水">
    <管道 id="1" name="管道">
      <给水管 id="101" name="给水管">
        <DN name="管径" namecode="DN" vartype="1" compar="1" specrelation="1"/>
        <CZ name="材质" namecode="CZ" vartype="0" compar="0" specrelation="0"/>
        <XTBH name="系统编号" namecode="XTBH" vartype="2" compar="1" specrelation="0"/>
      </给水管>
      <排水管 id="103" name="排水管">
        <DN name="管径" namecode="DN" vartype="2" compar="0" specrelation="0"/>
      </排水管>
    </管道>
  </给排水>
</属性类型配置信息>
)";

const CString kAttrFile = L"config/AttrConfig.xml";

int RunDialog(CDlgAttConfig& dlg, const std::function<void(CDialog&)>& act) {
    ModalHookScope hook([&](CDialog& d) {
        act(d);
        return d.GetEndResult();
    });
    return dlg.DoModal();
}

template <class T> T& Ctl(CDialog& d, int id) {
    auto* control = dynamic_cast<T*>(d.GetDlgItem(id));
    if (!control)
        throw std::logic_error("control not bound");
    return *control;
}

Texts Entries(CDialog& d, int id) {
    Texts texts;
    if (auto* list = dynamic_cast<CListBox*>(d.GetDlgItem(id))) {
        for (int i = 0; i < list->GetCount(); ++i)
            texts.push_back(list->GetText(i));
    } else if (auto* combo = dynamic_cast<CComboBox*>(d.GetDlgItem(id))) {
        for (int i = 0; i < combo->GetCount(); ++i)
            texts.push_back(combo->GetLBText(i));
    }
    return texts;
}

int Sel(CDialog& d, int id) {
    if (auto* list = dynamic_cast<CListBox*>(d.GetDlgItem(id)))
        return list->GetCurSel();
    return Ctl<CComboBox>(d, id).GetCurSel();
}

// The three boxes' selections: vartype, compar, specrelation.
std::vector<int> Shown(CDialog& d) {
    return {Sel(d, kVarType), Sel(d, kCompar), Sel(d, kSpecRelation)};
}

Texts Children(CTreeCtrl& tree, HTREEITEM parent) {
    Texts texts;
    for (HTREEITEM item = tree.GetChildItem(parent); item; item = tree.GetNextSiblingItem(item))
        texts.push_back(tree.GetItemText(item));
    return texts;
}

HTREEITEM Find(CTreeCtrl& tree, HTREEITEM parent, const CString& text) {
    for (HTREEITEM item = tree.GetChildItem(parent); item; item = tree.GetNextSiblingItem(item))
        if (tree.GetItemText(item) == text)
            return item;
    return nullptr;
}

} // namespace

TEST(AttConfigDlg, TreeAndListsFollowTheCategoryAndTheBoxesTheRecord) {
    TestHost host;
    Catalog(host, true);
    host.dir.Write(kAttrFile, kAttrConfig);
    CDlgAttConfig dlg;
    const int result = RunDialog(dlg, [&](CDialog& d) {
        // Wires, conduits and combined lines are left out; ids ride along as item data.
        CTreeCtrl& tree = Ctl<CTreeCtrl>(d, kTree);
        HTREEITEM root = tree.GetRootItem();
        EXPECT_EQ(tree.GetItemText(root), L"给排水");
        EXPECT_EQ(tree.GetItemData(root), 2);
        EXPECT_EQ(Children(tree, root), (Texts{L"管道", L"设备"}));
        HTREEITEM pipes = Find(tree, root, L"管道");
        EXPECT_EQ(tree.GetItemData(pipes), 1);
        EXPECT_EQ(Children(tree, pipes), (Texts{L"给水管", L"排水管"}));
        EXPECT_EQ(tree.GetItemData(Find(tree, pipes, L"排水管")), 103);
        EXPECT_EQ(tree.GetSelectedItem(), Find(tree, pipes, L"给水管"));
        EXPECT_EQ(Entries(d, kAttrList), (Texts{L"管径", L"材质", L"系统编号"}));
        EXPECT_EQ(Sel(d, kAttrList), 0);
        EXPECT_EQ(Entries(d, kSmallList), (Texts{L"给水管", L"排水管"}));
        EXPECT_EQ(Sel(d, kSmallList), 0);

        // The first record was shown while the boxes were still empty: none is selected yet.
        EXPECT_EQ(Entries(d, kVarType), (Texts{L"1.下拉", L"2.下拉可填", L"3.无下拉项"}));
        EXPECT_EQ(Entries(d, kCompar), (Texts{L"不可比较", L"可比较"}));
        EXPECT_EQ(Entries(d, kSpecRelation), (Texts{L"O.材质相关", L"X.材质无关"}));
        EXPECT_EQ(Shown(d), (std::vector<int>{-1, -1, -1}));
        EXPECT_TRUE(host.messages.Messages().empty());

        ASSERT_TRUE(SelectDlgItem(d, kAttrList, 2));
        EXPECT_EQ(Shown(d), (std::vector<int>{2, 1, 0}));
        EXPECT_EQ(d.GetDlgItem(kVarType)->GetWindowText(), L"3.无下拉项");
        ASSERT_TRUE(SelectDlgItem(d, kAttrList, 0));
        EXPECT_EQ(Shown(d), (std::vector<int>{1, 1, 1}));

        // Another small category: its attributes, and its large category's small ones.
        tree.UserSelect(Find(tree, pipes, L"排水管"));
        EXPECT_EQ(Entries(d, kAttrList), Texts{L"管径"});
        EXPECT_EQ(Entries(d, kSmallList), (Texts{L"给水管", L"排水管"}));
        EXPECT_EQ(Shown(d), (std::vector<int>{2, 0, 0}));

        // A large category is no small one: the lists stay, the empty path has no record.
        tree.UserSelect(pipes);
        EXPECT_EQ(Entries(d, kAttrList), Texts{L"管径"});
        EXPECT_EQ(Shown(d), (std::vector<int>{2, 0, 0}));
        ASSERT_EQ(host.messages.Texts(), Texts{L"error"});
        EXPECT_EQ(host.messages.Messages()[0].flags, MB_OK);
        host.messages.Clear();

        // Picking an entry changes nothing until it is applied.
        tree.UserSelect(Find(tree, pipes, L"给水管"));
        ASSERT_TRUE(SelectDlgItem(d, kSpecRelation, 0));
        ASSERT_TRUE(SelectDlgItem(d, kAttrList, 1));
        ASSERT_TRUE(SelectDlgItem(d, kAttrList, 0));
        EXPECT_EQ(Shown(d), (std::vector<int>{1, 1, 1}));
        EXPECT_TRUE(host.messages.Messages().empty());
        ClickDlgItem(d, IDCANCEL);
    });
    EXPECT_EQ(result, IDCANCEL);
}

TEST(AttConfigDlg, ApplyAndCopyChangeTheDialogsRecordsOnly) {
    TestHost host;
    Catalog(host, true);
    host.dir.Write(kAttrFile, kAttrConfig);
    CDlgAttConfig dlg;
    const int result = RunDialog(dlg, [&](CDialog& d) {
        CTreeCtrl& tree = Ctl<CTreeCtrl>(d, kTree);
        HTREEITEM pipes = tree.GetChildItem(tree.GetRootItem());

        // Nothing chosen in the boxes: -1 is stored, and shown as no choice.
        ClickDlgItem(d, kApply);
        ASSERT_TRUE(SelectDlgItem(d, kAttrList, 1));
        EXPECT_EQ(Shown(d), (std::vector<int>{0, 0, 0}));
        ASSERT_TRUE(SelectDlgItem(d, kAttrList, 0));
        EXPECT_EQ(Shown(d), (std::vector<int>{-1, -1, -1}));

        ASSERT_TRUE(SelectDlgItem(d, kVarType, 0));
        ASSERT_TRUE(SelectDlgItem(d, kCompar, 1));
        ASSERT_TRUE(SelectDlgItem(d, kSpecRelation, 0));
        ClickDlgItem(d, kApply);
        ASSERT_TRUE(SelectDlgItem(d, kAttrList, 1));
        ASSERT_TRUE(SelectDlgItem(d, kAttrList, 0));
        EXPECT_EQ(Shown(d), (std::vector<int>{0, 1, 0}));
        EXPECT_TRUE(host.messages.Messages().empty());

        // 系统编号 has no record in 排水管: the copy is refused and nothing changes.
        ASSERT_TRUE(SelectDlgItem(d, kAttrList, 2));
        ASSERT_TRUE(SelectDlgItem(d, kSmallList, 1));
        ClickDlgItem(d, kCopy);
        ASSERT_EQ(host.messages.Texts(), Texts{L"源属性配置获取失败!"});
        EXPECT_EQ(host.messages.Messages()[0].caption, L"Quorvel");
        EXPECT_EQ(host.messages.Messages()[0].flags, 0x12030u);
        EXPECT_EQ(Shown(d), (std::vector<int>{2, 1, 0}));
        host.messages.Clear();

        // 排水管's 管径 takes the numbers 给水管's has now, matched by the attribute's name.
        tree.UserSelect(Find(tree, pipes, L"排水管"));
        EXPECT_EQ(Shown(d), (std::vector<int>{2, 0, 0}));
        ASSERT_TRUE(SelectDlgItem(d, kSmallList, 0));
        ClickDlgItem(d, kCopy);
        EXPECT_EQ(Shown(d), (std::vector<int>{0, 1, 0}));
        tree.UserSelect(Find(tree, pipes, L"给水管"));
        tree.UserSelect(Find(tree, pipes, L"排水管"));
        EXPECT_EQ(Shown(d), (std::vector<int>{0, 1, 0}));
        EXPECT_TRUE(host.messages.Messages().empty());

        // A small category without records: nothing to show, nothing to apply to.
        tree.UserSelect(tree.GetChildItem(tree.GetNextSiblingItem(pipes)));
        EXPECT_EQ(Entries(d, kAttrList), Texts{L"功率"});
        ClickDlgItem(d, kApply);
        EXPECT_EQ(host.messages.Texts(), (Texts{L"error", L"save error"}));
        ClickDlgItem(d, IDCANCEL);
    });
    EXPECT_EQ(result, IDCANCEL);
    EXPECT_EQ(host.dir.Read(kAttrFile), kAttrConfig) << "changes stay in the dialog's store";
}

TEST(AttConfigDlg, OkAndCloseGenerateTheFileCancelDoesNot) {
    // Settings of attributes are generated only from the attribute types, which the dialog's
    // store doesn't hold: with any attribute in the catalog, saving raises and writes nothing.
    {
        TestHost host;
        Catalog(host, true);
        host.dir.Write(kAttrFile, kAttrConfig);
        CDlgAttConfig dlg;
        RunDialog(dlg, [&](CDialog& d) {
            for (UINT message : {WM_COMMAND, WM_CLOSE}) {
                const WPARAM command = message == WM_COMMAND ? MAKEWPARAM(IDOK, BN_CLICKED) : 0;
                try {
                    d.SendMessage(message, command, 0);
                    ADD_FAILURE() << "saved " << message;
                } catch (const ComError& e) {
                    EXPECT_EQ(e.Error(), E_POINTER);
                }
                EXPECT_FALSE(d.IsEnded());
            }
        });
        EXPECT_EQ(host.dir.Read(kAttrFile), kAttrConfig);
    }

    // Without attributes the file is generated with the categories of every specialty.
    TestHost host;
    Catalog(host, false);
    host.Add(L"电气", L"照明", L"灯具", 1, 101);
    const CString file = host.dir.File(kAttrFile);
    CDlgAttConfig cancelled;
    EXPECT_EQ(RunDialog(cancelled, [](CDialog& d) { ClickDlgItem(d, IDCANCEL); }), IDCANCEL);
    EXPECT_FALSE(PathExists(file));

    CDlgAttConfig closed;
    EXPECT_EQ(RunDialog(closed, [](CDialog& d) { d.SendMessage(WM_CLOSE); }), IDCANCEL);
    EXPECT_TRUE(PathExists(file));
    std::filesystem::remove(ToUtf8(file));

    CDlgAttConfig confirmed;
    EXPECT_EQ(RunDialog(confirmed, [](CDialog& d) { ClickDlgItem(d, IDOK); }), IDOK);
    const std::string text = host.dir.Read(kAttrFile);
    for (const char* element :
         {"<属性类型配置信息", "<给排水 ", "<管道 ", "<给水管 ", "<水泵 ", "<电气 ", "<灯具 "})
        EXPECT_NE(text.find(element), std::string::npos) << element;
}
