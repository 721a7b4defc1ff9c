#pragma once
// Tab control (the tabs only; the controls of a page are siblings over it). SetCurSel sends
// nothing; a user's click on a tab sends TCN_SELCHANGING (a non-zero result keeps the old tab)
// and then TCN_SELCHANGE.

#include "ui/CWnd.h"

class CTabCtrl : public CWnd {
public:
    CTabCtrl() = default;
    int InsertItem(int index, const CString& text); // the index, or -1
    BOOL DeleteItem(int index);
    BOOL DeleteAllItems();
    int GetItemCount() const;
    int GetCurSel() const;
    int SetCurSel(int index); // the previous selection, or -1
    CString GetItemText(int index) const;
    BOOL SetItemText(int index, const CString& text);

    void UserSelect(int index);
};
