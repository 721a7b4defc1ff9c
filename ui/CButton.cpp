#include "ui/CButton.h"

#include "ui/QtString.h"
#include "ui/detail/Widgets.h"

#include <QAbstractButton>
#include <QLineEdit>
#include <QPlainTextEdit>

using namespace koqdde::ui;

int CButton::GetCheck() const {
    auto* button = qobject_cast<QAbstractButton*>(widget());
    return button && button->isChecked() ? BST_CHECKED : BST_UNCHECKED;
}

void CButton::SetCheck(int check) {
    SetButtonChecked(qobject_cast<QAbstractButton*>(widget()), check == BST_CHECKED);
}

void CButton::Click() {
    auto* button = qobject_cast<QAbstractButton*>(widget());
    if (button && button->isEnabled() && IsShownAsWindows(button))
        button->click();
}

void CStatic::UserClick() {
    auto* label = dynamic_cast<KoStatic*>(widget());
    if (label && label->isEnabled() && label->notify)
        SendCommandToParent(label, STN_CLICKED);
}

BOOL CEdit::SetReadOnly(BOOL readOnly) {
    if (auto* edit = qobject_cast<QLineEdit*>(widget()))
        edit->setReadOnly(readOnly != FALSE);
    else if (auto* lines = qobject_cast<QPlainTextEdit*>(widget()))
        lines->setReadOnly(readOnly != FALSE);
    else
        return FALSE;
    return TRUE;
}

BOOL CEdit::IsReadOnly() const {
    if (auto* edit = qobject_cast<QLineEdit*>(widget()))
        return edit->isReadOnly();
    auto* lines = qobject_cast<QPlainTextEdit*>(widget());
    return lines && lines->isReadOnly();
}

void CEdit::LimitText(int maxChars) {
    if (auto* edit = qobject_cast<QLineEdit*>(widget()))
        edit->setMaxLength(maxChars > 0 ? maxChars : 32767);
}

void CEdit::SetSel(int start, int end, BOOL /*noScroll*/) {
    auto* edit = qobject_cast<QLineEdit*>(widget());
    if (!edit)
        return;
    const int length = static_cast<int>(edit->text().size());
    if (start == -1) {
        edit->deselect();
        return;
    }
    if (end < 0 || end > length)
        end = length;
    if (start == 0 && end == length)
        edit->selectAll();
    else
        edit->setSelection(start, end - start);
}

void CEdit::GetSel(int& start, int& end) const {
    start = end = 0;
    auto* edit = qobject_cast<QLineEdit*>(widget());
    if (!edit)
        return;
    if (edit->hasSelectedText()) {
        start = edit->selectionStart();
        end = edit->selectionEnd();
    } else {
        start = end = edit->cursorPosition();
    }
}

void CEdit::ReplaceSel(const CString& text) {
    if (auto* edit = qobject_cast<QLineEdit*>(widget())) {
        ProgramScope program(edit);
        edit->insert(ToQString(text));
    }
}

void CEdit::UserType(const CString& text) {
    TypeIntoEdit(widget(), text);
}
