#pragma once
// A list box whose entries show their whole text in a tip when the pointer rests on them, for
// lists narrower than the texts they hold (the attribute and condition lists of the workbench).

#include "ui/CListBox.h"

class CExListBox : public CListBox {
public:
    CExListBox() = default;
    ~CExListBox() override;

    // The entry under a client point is the tool; its text is asked for when the tip shows.
    LPARAM OnToolHitTest(CPoint point, TOOLINFO* info) const override;
    // The whole text of the entry, however long: the tip is not cut to a fixed buffer.
    BOOL OnToolTipText(UINT_PTR id, CString& text) override;

protected:
    void PreSubclassWindow() override;
};
