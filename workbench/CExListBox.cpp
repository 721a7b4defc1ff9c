#include "workbench/CExListBox.h"

CExListBox::~CExListBox() = default;

void CExListBox::PreSubclassWindow() {
    CListBox::PreSubclassWindow();
    EnableToolTips(TRUE);
}

LPARAM CExListBox::OnToolHitTest(CPoint point, TOOLINFO* info) const {
    // Below the last entry the nearest one is the last, and the tip names it.
    BOOL outside = FALSE;
    int index = ItemFromPoint(point, outside);
    if (index == -1)
        return -1;
    if (info) {
        GetItemRect(index, &info->rect);
        info->hwnd = const_cast<CExListBox*>(this);
        info->uId = static_cast<UINT_PTR>(index);
        info->text.Empty();
        info->textCallback = true;
    }
    return index;
}

BOOL CExListBox::OnToolTipText(UINT_PTR id, CString& text) {
    if (id < static_cast<UINT_PTR>(GetCount()))
        text = GetText(static_cast<int>(id));
    else
        text.Empty();
    return TRUE;
}
