#include "ui/CComboBox.h"

#include "ui/QtString.h"
#include "ui/detail/Widgets.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QLineEdit>
#include <QMouseEvent>
#include <QStyle>
#include <QStyleOptionComboBox>
#include <QWheelEvent>

using namespace koqdde::ui;

namespace {
KoComboBox* Combo(const CWnd* wnd) {
    return dynamic_cast<KoComboBox*>(wnd->widget());
}
bool Valid(const KoComboBox* combo, int index) {
    return combo && index >= 0 && index < combo->count();
}
} // namespace

namespace {
// Adding never selects, though Qt picks the first entry of an empty box: an empty selection
// and the typed text are put back.
int InsertWithoutSelecting(KoComboBox* combo, int at, const CString& text) {
    ProgramScope program(combo);
    const QString keep = combo->isEditable() ? combo->currentText() : QString();
    const bool noSelection = combo->currentIndex() < 0;
    combo->insertItem(at, ToQString(text));
    if (noSelection) {
        combo->setCurrentIndex(-1);
        if (combo->isEditable())
            combo->setEditText(keep);
    }
    return at;
}
} // namespace

int CComboBox::AddString(const CString& text) {
    KoComboBox* combo = Combo(this);
    if (!combo)
        return CB_ERR;
    return InsertWithoutSelecting(combo, AddStringIndex(combo, text), text);
}

int CComboBox::InsertString(int index, const CString& text) {
    KoComboBox* combo = Combo(this);
    if (!combo || index > combo->count())
        return CB_ERR;
    return InsertWithoutSelecting(combo, index < 0 ? combo->count() : index, text);
}

int CComboBox::DeleteString(int index) {
    KoComboBox* combo = Combo(this);
    if (!Valid(combo, index))
        return CB_ERR;
    ProgramScope program(combo);
    const bool wasSelected = combo->currentIndex() == index;
    combo->removeItem(index);
    if (wasSelected)
        combo->setCurrentIndex(-1); // the selection goes with its entry
    return combo->count();
}

void CComboBox::ResetContent() {
    if (KoComboBox* combo = Combo(this)) {
        ProgramScope program(combo);
        combo->clear();
        if (combo->isEditable())
            combo->clearEditText();
    }
}

int CComboBox::GetCount() const {
    KoComboBox* combo = Combo(this);
    return combo ? combo->count() : 0;
}

int CComboBox::GetCurSel() const {
    KoComboBox* combo = Combo(this);
    if (!combo)
        return CB_ERR;
    const int index = combo->currentIndex();
    // In a drop-down, typing away from the chosen entry leaves no selection.
    if (index >= 0 && combo->isEditable() && combo->currentText() != combo->itemText(index))
        return CB_ERR;
    return index < 0 ? CB_ERR : index;
}

int CComboBox::SetCurSel(int index) {
    KoComboBox* combo = Combo(this);
    if (!combo)
        return CB_ERR;
    ProgramScope program(combo);
    if (!Valid(combo, index)) {
        combo->setCurrentIndex(-1);
        if (combo->isEditable())
            combo->clearEditText();
        return CB_ERR;
    }
    combo->setCurrentIndex(index);
    if (combo->isEditable())
        combo->setEditText(combo->itemText(index));
    return index;
}

int CComboBox::GetLBText(int index, CString& text) const {
    KoComboBox* combo = Combo(this);
    if (!Valid(combo, index))
        return CB_ERR;
    text = FromQString(combo->itemText(index));
    return text.GetLength();
}

CString CComboBox::GetLBText(int index) const {
    CString text;
    GetLBText(index, text);
    return text;
}

int CComboBox::GetLBTextLen(int index) const {
    CString text;
    return GetLBText(index, text);
}

int CComboBox::SetItemData(int index, LPARAM data) {
    KoComboBox* combo = Combo(this);
    if (!Valid(combo, index))
        return CB_ERR;
    combo->setItemData(index, static_cast<qlonglong>(data), kItemDataRole);
    return 0;
}

LPARAM CComboBox::GetItemData(int index) const {
    KoComboBox* combo = Combo(this);
    if (!Valid(combo, index))
        return CB_ERR;
    return static_cast<LPARAM>(combo->itemData(index, kItemDataRole).toLongLong());
}

int CComboBox::FindStringExact(int startAfter, const CString& text) const {
    KoComboBox* combo = Combo(this);
    if (!combo)
        return CB_ERR;
    const QString q = ToQString(text);
    return SearchEntries(combo->count(), startAfter, [&](int i) {
        return combo->itemText(i).compare(q, Qt::CaseInsensitive) == 0;
    });
}

int CComboBox::FindString(int startAfter, const CString& prefix) const {
    KoComboBox* combo = Combo(this);
    if (!combo)
        return CB_ERR;
    const QString q = ToQString(prefix);
    return SearchEntries(combo->count(), startAfter, [&](int i) {
        return combo->itemText(i).startsWith(q, Qt::CaseInsensitive);
    });
}

int CComboBox::SelectString(int startAfter, const CString& prefix) {
    const int found = FindString(startAfter, prefix);
    if (found != CB_ERR)
        SetCurSel(found);
    return found;
}

void CComboBox::SetWindowText(const CString& text) {
    KoComboBox* combo = Combo(this);
    if (!combo)
        return;
    ProgramScope program(combo);
    if (combo->isEditable()) {
        combo->setEditText(ToQString(text));
        return;
    }
    // A drop list shows entries only: the text selects the entry that has it.
    const int found = FindStringExact(-1, text);
    if (found != CB_ERR)
        combo->setCurrentIndex(found);
}

CString CComboBox::GetWindowText() const {
    KoComboBox* combo = Combo(this);
    return combo ? FromQString(combo->currentText()) : CString();
}

BOOL CComboBox::GetDroppedState() const {
    KoComboBox* combo = Combo(this);
    return combo && combo->dropped;
}

void CComboBox::ShowDropDown(BOOL show) {
    KoComboBox* combo = Combo(this);
    if (!combo)
        return;
    ProgramScope program(combo);
    if (show)
        combo->showPopup();
    else
        combo->hidePopup();
}

BOOL CComboBox::LimitText(int maxChars) {
    KoComboBox* combo = Combo(this);
    if (!combo || !combo->isEditable())
        return FALSE;
    combo->lineEdit()->setMaxLength(maxChars > 0 ? maxChars : 32767);
    return TRUE;
}

BOOL CComboBox::SetEditSel(int start, int end) {
    KoComboBox* combo = Combo(this);
    if (!combo || !combo->isEditable())
        return FALSE;
    QLineEdit* edit = combo->lineEdit();
    const int length = static_cast<int>(edit->text().size());
    if (start < 0) {
        edit->deselect();
        return TRUE;
    }
    if (end < 0 || end > length)
        end = length;
    edit->setSelection(start, end - start);
    return TRUE;
}

bool CComboBox::HasEdit() const {
    KoComboBox* combo = Combo(this);
    return combo && combo->isEditable();
}

int CComboBox::GetDroppedWidth() const {
    KoComboBox* combo = Combo(this);
    if (!combo)
        return CB_ERR;
    if (combo->dropped)
        return combo->view()->window()->width();
    return std::max(combo->view()->minimumWidth(), combo->width());
}

int CComboBox::SetDroppedWidth(int width) {
    KoComboBox* combo = Combo(this);
    if (!combo || width < 0)
        return CB_ERR;
    // The popup is laid out from the view's minimum width when it opens.
    combo->view()->setMinimumWidth(width);
    return GetDroppedWidth();
}

void CComboBox::GetDroppedControlRect(CRect* rect) const {
    KoComboBox* combo = Combo(this);
    *rect = CRect();
    if (!combo)
        return;
    const QPoint origin = combo->mapToGlobal(QPoint(0, 0));
    int height = combo->property("koqdde_dropped_height").toInt();
    if (height <= 0)
        height = combo->height();
    *rect = CRect(origin.x(), origin.y(), origin.x() + combo->width(), origin.y() + height);
}

CRect CComboBox::GetButtonRect() const {
    KoComboBox* combo = Combo(this);
    if (!combo)
        return CRect();
    QStyleOptionComboBox option;
    option.initFrom(combo);
    option.editable = combo->isEditable();
    const QRect r = combo->style()->subControlRect(QStyle::CC_ComboBox, &option,
                                                   QStyle::SC_ComboBoxArrow, combo);
    return CRect(r.left(), r.top(), r.left() + r.width(), r.top() + r.height());
}

QWidget* CComboBox::GetEditWidget() const {
    KoComboBox* combo = Combo(this);
    return combo && combo->isEditable() ? combo->lineEdit() : nullptr;
}

QWidget* CComboBox::GetListWidget() const {
    KoComboBox* combo = Combo(this);
    return combo ? combo->view() : nullptr;
}

CRect CComboBox::GetListItemRect(int index) const {
    KoComboBox* combo = Combo(this);
    if (!Valid(combo, index))
        return CRect();
    const QRect r = combo->view()->visualRect(combo->model()->index(index, 0));
    // The view lays every entry out as wide as the widest; the line the user sees ends at
    // the list's edge.
    const int visibleRight = combo->view()->viewport()->width();
    return CRect(0, r.top(), visibleRight, r.top() + r.height());
}

void CComboBox::UserSelect(int index) {
    if (KoComboBox* combo = Combo(this))
        combo->UserChoose(index);
}

void CComboBox::UserType(const CString& text) {
    KoComboBox* combo = Combo(this);
    if (!combo || !combo->isEnabled() || !combo->isEditable())
        return;
    QLineEdit* edit = combo->lineEdit();
    edit->selectAll();
    edit->insert(ToQString(text)); // textEdited: CBN_EDITCHANGE
}

void CComboBox::UserDropDown() {
    KoComboBox* combo = Combo(this);
    if (combo && combo->isEnabled())
        combo->showPopup();
}

void CComboBox::UserCloseUp() {
    if (KoComboBox* combo = Combo(this))
        combo->hidePopup();
}

void CComboBox::UserHoverListItem(int index) {
    KoComboBox* combo = Combo(this);
    if (!Valid(combo, index) || !combo->isEnabled())
        return;
    if (!combo->dropped)
        combo->showPopup();
    combo->ListMouseMove(combo->view()->visualRect(combo->model()->index(index, 0)).center());
}

void CComboBox::UserLeaveList() {
    if (KoComboBox* combo = Combo(this))
        combo->ListLeave();
}

void CComboBox::UserClickListItem(int index) {
    KoComboBox* combo = Combo(this);
    if (!Valid(combo, index) || !combo->isEnabled())
        return;
    combo->UserChoose(index);
}

void CComboBox::UserWheel(int delta) {
    KoComboBox* combo = Combo(this);
    if (!combo || !combo->isEnabled())
        return;
    const QPointF pos(combo->width() / 2.0, combo->height() / 2.0);
    QWheelEvent wheel(pos, combo->mapToGlobal(pos), QPoint(), QPoint(0, delta), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(combo, &wheel);
}

namespace {
// A move to the middle of the window, then the rest: the hover timer's expiry, raised at once.
void HoverOver(KoComboBox* combo, QWidget* window) {
    const QPointF pos(window->width() / 2.0, window->height() / 2.0);
    QMouseEvent move(QEvent::MouseMove, pos, window->mapToGlobal(pos), Qt::NoButton, Qt::NoButton,
                     Qt::NoModifier);
    QApplication::sendEvent(window, &move);
    combo->RaisePendingHover();
}
} // namespace

void CComboBox::UserHoverBox() {
    if (KoComboBox* combo = Combo(this))
        HoverOver(combo, combo);
}

void CComboBox::UserHoverEdit() {
    KoComboBox* combo = Combo(this);
    if (combo && combo->isEditable())
        HoverOver(combo, combo->lineEdit());
}

void CComboBox::UserLeaveBox() {
    KoComboBox* combo = Combo(this);
    if (!combo)
        return;
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(combo, &leave);
    if (combo->isEditable())
        QApplication::sendEvent(combo->lineEdit(), &leave);
}
