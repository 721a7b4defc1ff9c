#pragma once
// The demo dialog of the control tests (template IDD_UI_DEMO): every control bound to a
// member, every command and notice written to a log with what the handler could see then.

#include "support/ui/DialogProbe.h"
#include "ui/CGridCtrl.h"
#include "ui/Controls.h"

#include <functional>
#include <string>
#include <vector>

namespace koqdde::test {

class DemoDialog : public CDialog {
public:
    explicit DemoDialog(CWnd* parent = nullptr) : CDialog(CString(L"IDD_UI_DEMO"), parent) {}

    std::vector<std::string> log;
    CString name;
    int initCalls = 0;
    bool initSawBoundControls = false;
    bool cancelled = false;
    // Runs inside a handler when set, to test re-entrant calls.
    std::function<void(UINT id, NMHDR*)> onNotify;
    std::function<void(UINT id, UINT code)> onCommand;
    std::function<LRESULT(NMHDR*)> notifyResult;
    std::function<void()> onInit;

    CButton button;
    CButton check;
    CEdit edit;
    CEdit readOnly;
    CStatic label;
    CListBox list;
    CListBox sortedList;
    CComboBox dropList;
    CComboBox dropDown;
    CTabCtrl tab;
    CTreeCtrl tree;
    CListCtrl view;

protected:
    void DoDataExchange(CDataExchange* pDX) override {
        CDialog::DoDataExchange(pDX);
        DDX_Control(pDX, 1000, button);
        DDX_Control(pDX, 1001, check);
        DDX_Control(pDX, 1002, edit);
        DDX_Control(pDX, 1003, readOnly);
        DDX_Control(pDX, 1004, label);
        DDX_Control(pDX, 1005, list);
        DDX_Control(pDX, 1006, sortedList);
        DDX_Control(pDX, 1007, dropList);
        DDX_Control(pDX, 1008, dropDown);
        DDX_Control(pDX, 1009, tab);
        DDX_Control(pDX, 1010, tree);
        DDX_Control(pDX, 1011, view);
        DDX_Text(pDX, 1002, name);
    }
    BOOL OnInitDialog() override {
        ++initCalls;
        CDialog::OnInitDialog();
        initSawBoundControls = list.IsWindow() && view.IsWindow();
        if (onInit)
            onInit();
        return TRUE;
    }
    BOOL OnCommand(UINT id, UINT code) override {
        log.push_back("C" + std::to_string(id) + ":" + std::to_string(code));
        if (onCommand)
            onCommand(id, code);
        return CDialog::OnCommand(id, code);
    }
    BOOL OnNotify(UINT id, NMHDR* hdr, LRESULT* result) override {
        std::string entry =
            "N" + std::to_string(id) + ":" + std::to_string(static_cast<int>(hdr->code));
        if (hdr->code == static_cast<UINT>(LVN_ITEMCHANGED)) {
            auto* nm = reinterpret_cast<NMLISTVIEW*>(hdr);
            // What a handler finds: the notice's item and the selected item at this moment.
            entry +=
                " item=" + std::to_string(nm->iItem) +
                " sel=" + std::to_string(view.GetNextItem(-1, LVNI_SELECTED)) +
                ((nm->uNewState & LVIS_SELECTED) ? " +S" : "") +
                ((nm->uOldState & LVIS_SELECTED) && !(nm->uNewState & LVIS_SELECTED) ? " -S" : "");
        }
        if (hdr->code == static_cast<UINT>(TVN_SELCHANGING) ||
            hdr->code == static_cast<UINT>(TVN_SELCHANGED)) {
            auto* nm = reinterpret_cast<NMTREEVIEW*>(hdr);
            entry += " old=" + ToText(nm->itemOld) + " new=" + ToText(nm->itemNew) +
                     " cur=" + ToText(tree.GetSelectedItem());
        }
        if (hdr->code == static_cast<UINT>(TCN_SELCHANGING) ||
            hdr->code == static_cast<UINT>(TCN_SELCHANGE))
            entry += " cur=" + std::to_string(tab.GetCurSel());
        if (id == 50002) {
            auto* nm = reinterpret_cast<NM_GRIDVIEW*>(hdr);
            entry += " r=" + std::to_string(nm->iRow) + " c=" + std::to_string(nm->iColumn) +
                     " t=" + ToUtf8(nm->text);
        }
        log.push_back(entry);
        if (onNotify)
            onNotify(id, hdr);
        if (notifyResult)
            *result = notifyResult(hdr);
        return TRUE;
    }
    void OnCancel() override {
        cancelled = true;
        CDialog::OnCancel();
    }

private:
    std::string ToText(HTREEITEM item) const {
        return item ? ToUtf8(tree.GetItemText(item)) : std::string("-");
    }
};

} // namespace koqdde::test
