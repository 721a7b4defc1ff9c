#pragma once
// List view in report mode. Any change of an item's selected or focused state sends
// LVN_ITEMCHANGED, one notice per item whose state changed: when the selection moves, first
// the item that loses LVIS_SELECTED, then the one that gains it, so a handler of the first
// notice finds no selected item. A user's click on an item does the same; a click on the empty
// area clears the selection and sends the notice for the cleared item only. Inserting and
// deleting send nothing.

#include "ui/CWnd.h"

class CListCtrl : public CWnd {
public:
    CListCtrl() = default;

    int InsertColumn(int column, const CString& heading, int format = LVCFMT_LEFT, int width = -1,
                     int subItem = -1);
    BOOL DeleteColumn(int column);
    int GetColumnCount() const;
    BOOL SetColumnWidth(int column, int width);
    int GetColumnWidth(int column) const;
    DWORD SetExtendedStyle(DWORD style); // the previous style
    DWORD GetExtendedStyle() const;

    int InsertItem(int index, const CString& text); // the new index, or -1
    BOOL SetItemText(int item, int subItem, const CString& text);
    CString GetItemText(int item, int subItem) const;
    BOOL SetItemData(int item, LPARAM data);
    LPARAM GetItemData(int item) const;
    BOOL DeleteItem(int item);
    BOOL DeleteAllItems();
    int GetItemCount() const;
    // Next item after start (-1: from the top) with the flags (LVNI_SELECTED, LVNI_FOCUSED).
    int GetNextItem(int start, int flags) const;
    int GetSelectedCount() const;
    int GetSelectionMark() const;
    int SetSelectionMark(int item);
    BOOL SetItemState(int item, UINT state, UINT mask); // item -1: all items
    UINT GetItemState(int item, UINT mask) const;
    BOOL EnsureVisible(int item, BOOL partialOK);
    BOOL GetItemRect(int item, CRect* rect) const;

    // As the user does: a click on an item, or on the empty area below the items.
    void UserClickItem(int item);
    void UserClickEmpty();
};
