#pragma once
// Push buttons, check boxes, radio buttons and group boxes. A user's click sends BN_CLICKED to
// the parent; SetCheck sends nothing.

#include "ui/CWnd.h"

inline constexpr int BST_UNCHECKED = 0;
inline constexpr int BST_CHECKED = 1;

class CButton : public CWnd {
public:
    CButton() = default;
    int GetCheck() const;
    void SetCheck(int check);
    // A click as the user makes it: toggles a check box or radio, then BN_CLICKED. Nothing
    // happens on a disabled or hidden button, as for a real click.
    void Click();
    void UserClick() { Click(); }
};

// Static text and frames. A click on one with the notify style sends STN_CLICKED.
class CStatic : public CWnd {
public:
    CStatic() = default;
    void UserClick();
};

// Single-line edit. EN_CHANGE reaches the parent when the user types, not when the program
// sets the text.
class CEdit : public CWnd {
public:
    CEdit() = default;
    BOOL SetReadOnly(BOOL readOnly = TRUE);
    BOOL IsReadOnly() const;
    void LimitText(int maxChars = 0);
    void SetSel(int start, int end, BOOL noScroll = FALSE);
    void GetSel(int& start, int& end) const;
    void ReplaceSel(const CString& text);
    // Replaces the whole text as a user's typing does: EN_CHANGE follows. Read-only or disabled
    // edits refuse it and send nothing.
    void UserType(const CString& text);
};
