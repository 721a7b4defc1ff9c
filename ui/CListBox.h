#pragma once
// List box. Program selection (SetCurSel, SelectString) sends nothing; a user's selection sends
// LBN_SELCHANGE and a double click LBN_DBLCLK, both only with the notify style. The sorted
// style inserts AddString in the case-insensitive order (see CompareItemTexts).

#include "ui/CWnd.h"

// The tool record of a tip over a list entry (the part of a TOOLINFO the lists use).
struct TOOLINFO {
    CRect rect; // the area the tip belongs to, client coordinates of hwnd
    CWnd* hwnd = nullptr;
    UINT_PTR uId = 0; // which tip: for list entries, the index
    CString text;     // the text, unless textCallback asks OnToolTipText for it
    bool textCallback = false;
};

class CListBox : public CWnd {
public:
    CListBox() = default;

    int AddString(const CString& text);
    int InsertString(int index, const CString& text); // -1 appends; never sorts
    int DeleteString(int index);                      // the count left, or LB_ERR
    void ResetContent();
    int GetCount() const;
    int GetCurSel() const;
    int SetCurSel(int index); // -1 clears; LB_ERR for -1 or a bad index (both clear)
    int GetText(int index, CString& text) const; // length, or LB_ERR
    CString GetText(int index) const;
    int GetTextLen(int index) const;
    int SetItemData(int index, LPARAM data);
    LPARAM GetItemData(int index) const;
    int FindStringExact(int startAfter, const CString& text) const; // case-insensitive
    int FindString(int startAfter, const CString& prefix) const;    // case-insensitive prefix
    int SelectString(int startAfter, const CString& prefix);
    int GetTopIndex() const;
    int SetTopIndex(int index);
    int GetItemRect(int index, CRect* rect) const; // client coordinates; LB_ERR if none
    // The nearest entry to a client point; outside is set when the point lies outside all
    // entries (below the last one the last entry is the nearest).
    int ItemFromPoint(CPoint point, BOOL& outside) const;
    void EnableToolTips(BOOL enable = TRUE);

    // As the user does: select an entry with the mouse (LBN_SELCHANGE), double-click one
    // (LBN_SELCHANGE if it changes, then LBN_DBLCLK).
    void UserSelect(int index);
    void UserDoubleClick(int index);
    // The text of the tip shown when the pointer rests at a client point ("" for none): runs
    // the same hooks as a real hover and shows the tip.
    CString UserHoverTip(CPoint point);

    // Tip hooks, asked when the pointer rests over the list and tips are enabled. Return the
    // tool's id (>= 0) and fill the record, or -1 for no tip. The base has no tips.
    virtual LPARAM OnToolHitTest(CPoint point, TOOLINFO* info) const;
    // Text of a tip whose record asked for a callback. Return TRUE when text was set.
    virtual BOOL OnToolTipText(UINT_PTR id, CString& text);
};
