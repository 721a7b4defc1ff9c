#include "ui/CListBox.h"

#include "ui/QtString.h"
#include "ui/detail/Widgets.h"

#include <QToolTip>

using namespace koqdde::ui;

namespace {
KoListBox* List(const CWnd* wnd) {
    return dynamic_cast<KoListBox*>(wnd->widget());
}
bool Valid(const KoListBox* list, int index) {
    return list && index >= 0 && index < list->count();
}
} // namespace

int CListBox::AddString(const CString& text) {
    KoListBox* list = List(this);
    if (!list)
        return LB_ERR;
    ProgramScope program(list);
    const int at = AddStringIndex(list, text);
    list->insertItem(at, ToQString(text));
    return at;
}

int CListBox::InsertString(int index, const CString& text) {
    KoListBox* list = List(this);
    if (!list || index > list->count())
        return LB_ERR;
    ProgramScope program(list);
    const int at = index < 0 ? list->count() : index;
    list->insertItem(at, ToQString(text));
    return at;
}

int CListBox::DeleteString(int index) {
    KoListBox* list = List(this);
    if (!Valid(list, index))
        return LB_ERR;
    ProgramScope program(list);
    delete list->takeItem(index);
    return list->count();
}

void CListBox::ResetContent() {
    if (KoListBox* list = List(this)) {
        ProgramScope program(list);
        list->clear();
    }
}

int CListBox::GetCount() const {
    KoListBox* list = List(this);
    return list ? list->count() : 0;
}

int CListBox::GetCurSel() const {
    KoListBox* list = List(this);
    if (!list)
        return LB_ERR;
    const auto selected = list->selectedItems();
    return selected.isEmpty() ? LB_ERR : list->row(selected.first());
}

int CListBox::SetCurSel(int index) {
    KoListBox* list = List(this);
    if (!list)
        return LB_ERR;
    ProgramScope program(list);
    if (!Valid(list, index)) {
        list->clearSelection();
        list->setCurrentRow(-1, QItemSelectionModel::Clear);
        return LB_ERR; // also for -1, which clears without an error
    }
    list->setCurrentRow(index, QItemSelectionModel::ClearAndSelect);
    list->scrollToItem(list->item(index));
    return index;
}

int CListBox::GetText(int index, CString& text) const {
    KoListBox* list = List(this);
    if (!Valid(list, index))
        return LB_ERR;
    text = FromQString(list->item(index)->text());
    return text.GetLength();
}

CString CListBox::GetText(int index) const {
    CString text;
    GetText(index, text);
    return text;
}

int CListBox::GetTextLen(int index) const {
    CString text;
    return GetText(index, text);
}

int CListBox::SetItemData(int index, LPARAM data) {
    KoListBox* list = List(this);
    if (!Valid(list, index))
        return LB_ERR;
    list->item(index)->setData(kItemDataRole, static_cast<qlonglong>(data));
    return 0;
}

LPARAM CListBox::GetItemData(int index) const {
    KoListBox* list = List(this);
    if (!Valid(list, index))
        return LB_ERR;
    return static_cast<LPARAM>(list->item(index)->data(kItemDataRole).toLongLong());
}

int CListBox::FindStringExact(int startAfter, const CString& text) const {
    KoListBox* list = List(this);
    if (!list)
        return LB_ERR;
    const QString q = ToQString(text);
    return SearchEntries(list->count(), startAfter, [&](int i) {
        return list->item(i)->text().compare(q, Qt::CaseInsensitive) == 0;
    });
}

int CListBox::FindString(int startAfter, const CString& prefix) const {
    KoListBox* list = List(this);
    if (!list)
        return LB_ERR;
    const QString q = ToQString(prefix);
    return SearchEntries(list->count(), startAfter, [&](int i) {
        return list->item(i)->text().startsWith(q, Qt::CaseInsensitive);
    });
}

int CListBox::SelectString(int startAfter, const CString& prefix) {
    const int found = FindString(startAfter, prefix);
    if (found != LB_ERR)
        SetCurSel(found);
    return found;
}

int CListBox::GetTopIndex() const {
    KoListBox* list = List(this);
    if (!list || list->count() == 0)
        return 0;
    const QModelIndex top = list->indexAt(QPoint(1, 1));
    return top.isValid() ? top.row() : 0;
}

int CListBox::SetTopIndex(int index) {
    KoListBox* list = List(this);
    if (!Valid(list, index))
        return LB_ERR;
    list->scrollToItem(list->item(index), QAbstractItemView::PositionAtTop);
    return 0;
}

int CListBox::GetItemRect(int index, CRect* rect) const {
    KoListBox* list = List(this);
    if (!Valid(list, index))
        return LB_ERR;
    const QRect r = list->visualItemRect(list->item(index));
    *rect = CRect(r.left(), r.top(), r.left() + r.width(), r.top() + r.height());
    return 0;
}

int CListBox::ItemFromPoint(CPoint point, BOOL& outside) const {
    KoListBox* list = List(this);
    outside = TRUE;
    if (!list || list->count() == 0)
        return -1;
    const QPoint p(point.x, point.y);
    if (QListWidgetItem* item = list->itemAt(p)) {
        outside = FALSE;
        return list->row(item);
    }
    // Nearest entry: below the last one it is the last, above the first the first.
    int nearest = list->count() - 1;
    for (int i = 0; i < list->count(); ++i) {
        const QRect r = list->visualItemRect(list->item(i));
        if (p.y() < r.bottom() + 1) {
            nearest = i;
            break;
        }
    }
    return nearest;
}

void CListBox::EnableToolTips(BOOL enable) {
    if (KoListBox* list = List(this))
        list->tips = enable != FALSE;
}

void CListBox::UserSelect(int index) {
    KoListBox* list = List(this);
    if (!Valid(list, index) || !list->isEnabled())
        return;
    list->setCurrentRow(index, QItemSelectionModel::ClearAndSelect);
}

void CListBox::UserDoubleClick(int index) {
    KoListBox* list = List(this);
    if (!Valid(list, index) || !list->isEnabled())
        return;
    list->setCurrentRow(index, QItemSelectionModel::ClearAndSelect);
    emit list->itemDoubleClicked(list->item(index));
}

CString CListBox::UserHoverTip(CPoint point) {
    KoListBox* list = List(this);
    if (!list)
        return CString();
    const CString text = list->TipAt(QPoint(point.x, point.y));
    if (text.IsEmpty())
        QToolTip::hideText();
    else
        QToolTip::showText(list->viewport()->mapToGlobal(QPoint(point.x, point.y)), ToQString(text),
                           list->viewport());
    return text;
}

LPARAM CListBox::OnToolHitTest(CPoint /*point*/, TOOLINFO* /*info*/) const {
    return -1;
}

BOOL CListBox::OnToolTipText(UINT_PTR /*id*/, CString& /*text*/) {
    return FALSE;
}
