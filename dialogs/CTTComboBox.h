#pragma once
// A combo box that shows the whole text of an entry when it doesn't fit: over the closed box,
// over its edit field, and over each line of the open list. It can also keep entries that a
// click can't choose, and shift its open list against the box.
//
// All boxes of the process share one tip window, its font and its timer. The tip is a plain
// window of its own, painted here, so it looks the same whatever the platform's tooltips do;
// it hides itself when its timer runs out.

#include "ui/CComboBox.h"

#include <vector>

class QWidget;

class CTTComboBox : public CComboBox {
public:
    // Where the open list stands against the box.
    enum DropAlign { kAlignLeft = 0, kAlignRight = 1, kAlignCenter = 2 };

    CTTComboBox();
    ~CTTComboBox() override;

    void SetDropAlign(int align) { m_nDropAlign = align; }
    // Takes effect only for a box not yet bound to its window: a box bound without tips stays
    // without them.
    void SetTipEnabled(int enabled) { m_bTipEnabled = enabled; }
    static void SetTipTime(unsigned milliseconds) { s_nTipTime = milliseconds; }
    static unsigned GetTipTime() { return s_nTipTime; }

    // The edit field (drop-down boxes only) and the list window, or null.
    QWidget* GetEditWnd() const;
    QWidget* GetListWnd() const;

    // Marks an entry as one a click in the open list can't choose. Returns 0 for an index
    // outside the entries, else 1. A flag of 0 takes an entry off the list; an entry not yet
    // on it is added whatever the flag.
    int SetItemDisabled(int index, int disabled);
    bool IsItemDisabled(int index) const;

    // The shared tip, for the program's tests and for a host that wants to know what shows.
    static QWidget* GetTipWnd();
    static bool IsTipVisible();
    static CString GetTipText();
    // The tip's rectangle in screen coordinates.
    static CRect GetTipRect();
    // The list line the tip stands for (-1 for none).
    static int GetLastItem() { return s_nLastItem; }
    static bool IsTipTimerActive();
    // Runs out the tip's timer at once, as its expiry would: returns false when it wasn't
    // running. The timer itself is an ordinary one; this lets a caller skip the wait.
    static bool FireTipTimer();

protected:
    void PreSubclassWindow() override;

    void OnBoxMouseHover(CPoint point) override;
    void OnBoxMouseLeave() override;
    void OnEditMouseHover(CPoint point) override;
    void OnEditMouseLeave() override;
    void OnListMouseMove(int index, CPoint point) override;
    void OnListMouseLeave() override;
    BOOL OnListItemClick(int index) override;
    void OnListShown() override;
    void OnAfterMouseWheel(int delta) override;

private:
    void HookChildren();
    void AlignDropList();
    // Shows the tip over rect (client coordinates of owner) when the text's measured right
    // edge passes availableRight; hides it otherwise.
    static void ShowTip(QWidget* owner, CRect rect, int availableRight, const CString& text);
    static void HideTip();
    static void CreateTipWindow();
    // The rectangle text needs, single line, starting at rect's top left.
    static CRect MeasureText(const CString& text, const CRect& rect);

    int m_nDropAlign = kAlignLeft;
    CRect m_rcButton;
    int m_bTipEnabled = 1;
    // Set when the box was bound with tips on: only then do its edit field and list react.
    bool m_bHooked = false;
    std::vector<unsigned> m_arrDisabled;

    static int s_nLastItem;
    static unsigned s_nTipTime;
};
