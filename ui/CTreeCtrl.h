#pragma once
// Tree control with HTREEITEM handles. Every change of the selected item, by the program's
// SelectItem or by the user, sends TVN_SELCHANGING (a non-zero result cancels the change)
// while the old item is still selected, then TVN_SELCHANGED after it moved, each with an
// NMTREEVIEW naming the old and the new item.

#include "ui/CWnd.h"

class CTreeCtrl : public CWnd {
public:
    CTreeCtrl() = default;

    HTREEITEM InsertItem(const CString& text, HTREEITEM parent = TVI_ROOT,
                         HTREEITEM insertAfter = TVI_LAST);
    BOOL DeleteItem(HTREEITEM item); // TVI_ROOT deletes all
    BOOL DeleteAllItems();
    UINT GetCount() const;
    BOOL SetItemData(HTREEITEM item, LPARAM data);
    LPARAM GetItemData(HTREEITEM item) const;
    CString GetItemText(HTREEITEM item) const;
    BOOL SetItemText(HTREEITEM item, const CString& text);
    HTREEITEM GetSelectedItem() const;
    BOOL SelectItem(HTREEITEM item); // null clears the selection
    BOOL Expand(HTREEITEM item, UINT code);
    BOOL IsExpanded(HTREEITEM item) const;
    HTREEITEM GetRootItem() const;
    HTREEITEM GetChildItem(HTREEITEM item) const;
    HTREEITEM GetNextSiblingItem(HTREEITEM item) const;
    HTREEITEM GetPrevSiblingItem(HTREEITEM item) const;
    HTREEITEM GetParentItem(HTREEITEM item) const;
    BOOL ItemHasChildren(HTREEITEM item) const;
    BOOL EnsureVisible(HTREEITEM item);
    BOOL GetItemRect(HTREEITEM item, CRect* rect, BOOL textOnly) const;
    HTREEITEM HitTest(CPoint point) const;

    // A click on the item as the user makes it (the same two notifications, action by mouse).
    void UserSelect(HTREEITEM item);
};
