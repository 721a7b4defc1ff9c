#pragma once
// Combo box: a drop list (no typing) or a drop-down with an edit field. Program calls send
// nothing; a user's choice sends CBN_SELCHANGE, typing CBN_EDITCHANGE, opening the list
// CBN_DROPDOWN and closing it CBN_CLOSEUP. The sorted style inserts AddString in the
// case-insensitive order (see CompareItemTexts).

#include "ui/CWnd.h"

class CComboBox : public CWnd {
public:
    CComboBox() = default;

    int AddString(const CString& text);
    int InsertString(int index, const CString& text); // -1 appends; never sorts
    int DeleteString(int index);                      // the count left, or CB_ERR
    void ResetContent();                              // clears the edit field too
    int GetCount() const;
    int GetCurSel() const;
    int SetCurSel(int index); // -1 clears (and empties the edit); CB_ERR for a bad index
    int GetLBText(int index, CString& text) const;
    CString GetLBText(int index) const;
    int GetLBTextLen(int index) const;
    int SetItemData(int index, LPARAM data);
    LPARAM GetItemData(int index) const;
    int FindStringExact(int startAfter, const CString& text) const; // case-insensitive
    int FindString(int startAfter, const CString& prefix) const;    // case-insensitive prefix
    int SelectString(int startAfter, const CString& prefix);
    // The edit field of a drop-down, or the selected entry's text of a drop list.
    void SetWindowText(const CString& text) override;
    CString GetWindowText() const override;
    using CWnd::GetWindowText;
    BOOL GetDroppedState() const;
    void ShowDropDown(BOOL show = TRUE); // from the program: no notification
    BOOL LimitText(int maxChars);
    BOOL SetEditSel(int start, int end);
    bool HasEdit() const; // a drop-down (typing allowed)
    // Width of the open list: the minimum set by SetDroppedWidth or the box's width,
    // whichever is larger (the list's actual width while it is open).
    int GetDroppedWidth() const;
    // Sets the open list's minimum width; returns it, or CB_ERR.
    int SetDroppedWidth(int width);
    void GetDroppedControlRect(CRect* rect) const; // screen coordinates
    CRect GetButtonRect() const;                   // client coordinates of the box
    // The edit field (null for a drop list) and the list window of the open list.
    QWidget* GetEditWidget() const;
    QWidget* GetListWidget() const;
    // Rectangle of an entry's visible line in the open list's client coordinates (the list's
    // width, whatever the entry's text needs), or empty.
    CRect GetListItemRect(int index) const;

    // As the user does them.
    void UserSelect(int index); // opens the list, clicks the entry (if allowed), closes it
    void UserType(const CString& text);
    void UserDropDown();
    void UserCloseUp();
    // Pointer actions on the open list (opens it first if needed).
    void UserHoverListItem(int index);
    void UserLeaveList();
    void UserClickListItem(int index);
    void UserWheel(int delta); // one notch is 120; negative moves down
    void UserHoverBox();
    void UserHoverEdit();
    void UserLeaveBox();

protected:
    // Hooks for boxes that add tips and entries that can't be chosen. Coordinates are client
    // coordinates of the window the hook names.
    virtual void OnBoxMouseHover(CPoint point) { (void)point; }
    virtual void OnBoxMouseLeave() {}
    virtual void OnEditMouseHover(CPoint point) { (void)point; }
    virtual void OnEditMouseLeave() {}
    // index is -1 when the pointer is in the open list but on no entry.
    virtual void OnListMouseMove(int index, CPoint point) {
        (void)index;
        (void)point;
    }
    virtual void OnListMouseLeave() {}
    // A click on an entry of the open list: FALSE swallows it (the list stays open and the
    // selection unchanged).
    virtual BOOL OnListItemClick(int index) {
        (void)index;
        return TRUE;
    }
    // The open list has just been shown (it may be moved here).
    virtual void OnListShown() {}
    // After the wheel has moved the selection; delta as the wheel reported it.
    virtual void OnAfterMouseWheel(int delta) { (void)delta; }

private:
    friend class KoComboHooks;
};
