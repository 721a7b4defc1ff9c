#include "ui/CListCtrl.h"

#include "ui/QtString.h"
#include "ui/detail/Widgets.h"

#include <QHeaderView>

using namespace koqdde::ui;

namespace {
KoListView* View(const CWnd* wnd) {
    return dynamic_cast<KoListView*>(wnd->widget());
}
bool Valid(const KoListView* view, int item) {
    return view && item >= 0 && item < view->topLevelItemCount();
}
Qt::Alignment Align(int format) {
    switch (format & 0x3) {
    case LVCFMT_RIGHT:
        return Qt::AlignRight | Qt::AlignVCenter;
    case LVCFMT_CENTER:
        return Qt::AlignHCenter | Qt::AlignVCenter;
    default:
        return Qt::AlignLeft | Qt::AlignVCenter;
    }
}
} // namespace

int CListCtrl::InsertColumn(int column, const CString& heading, int format, int width,
                            int /*subItem*/) {
    KoListView* view = View(this);
    if (!view || column < 0)
        return -1;
    const int count = view->columnCount();
    const int at = std::min(column, count);
    QTreeWidgetItem* head = view->headerItem();
    // Shift the headings right of the new column; the rows' texts move with their data below.
    view->setColumnCount(count + 1);
    for (int c = count; c > at; --c) {
        head->setText(c, head->text(c - 1));
        head->setData(c, Qt::TextAlignmentRole, head->data(c - 1, Qt::TextAlignmentRole));
        for (int r = 0; r < view->topLevelItemCount(); ++r) {
            QTreeWidgetItem* it = view->topLevelItem(r);
            it->setText(c, it->text(c - 1));
        }
    }
    head->setText(at, ToQString(heading));
    head->setData(at, Qt::TextAlignmentRole, static_cast<int>(Align(format)));
    for (int r = 0; r < view->topLevelItemCount(); ++r) {
        view->topLevelItem(r)->setText(at, QString());
        view->topLevelItem(r)->setData(at, Qt::TextAlignmentRole, static_cast<int>(Align(format)));
    }
    view->setProperty(QStringLiteral("koqdde_fmt_%1").arg(at).toUtf8().constData(), format);
    if (width >= 0)
        view->setColumnWidth(at, width);
    return at;
}

BOOL CListCtrl::DeleteColumn(int column) {
    KoListView* view = View(this);
    if (!view || column < 0 || column >= view->columnCount())
        return FALSE;
    QTreeWidgetItem* head = view->headerItem();
    const int count = view->columnCount();
    for (int c = column; c + 1 < count; ++c) {
        head->setText(c, head->text(c + 1));
        for (int r = 0; r < view->topLevelItemCount(); ++r) {
            QTreeWidgetItem* it = view->topLevelItem(r);
            it->setText(c, it->text(c + 1));
        }
    }
    view->setColumnCount(count - 1);
    return TRUE;
}

int CListCtrl::GetColumnCount() const {
    KoListView* view = View(this);
    return view ? view->columnCount() : 0;
}

BOOL CListCtrl::SetColumnWidth(int column, int width) {
    KoListView* view = View(this);
    if (!view || column < 0 || column >= view->columnCount())
        return FALSE;
    view->setColumnWidth(column, width);
    return TRUE;
}

int CListCtrl::GetColumnWidth(int column) const {
    KoListView* view = View(this);
    return view && column >= 0 && column < view->columnCount() ? view->columnWidth(column) : 0;
}

DWORD CListCtrl::SetExtendedStyle(DWORD style) {
    KoListView* view = View(this);
    if (!view)
        return 0;
    const DWORD previous = view->exStyle;
    view->exStyle = style;
    // Full-row selection is how rows are selected here anyway; grid lines draw as the style
    // sheet's item borders.
    view->setStyleSheet((style & LVS_EX_GRIDLINES)
                            ? QStringLiteral("QTreeView::item { border-right: 1px solid #d0d0d0;"
                                             " border-bottom: 1px solid #d0d0d0; }")
                            : QString());
    return previous;
}

DWORD CListCtrl::GetExtendedStyle() const {
    KoListView* view = View(this);
    return view ? view->exStyle : 0;
}

int CListCtrl::InsertItem(int index, const CString& text) {
    KoListView* view = View(this);
    if (!view || index < 0)
        return -1;
    ListViewBatch batch(view, false);
    const int at = std::min(index, view->topLevelItemCount());
    auto* item = new QTreeWidgetItem;
    item->setText(0, ToQString(text));
    item->setData(0, kItemStateRole, 0u);
    for (int c = 0; c < view->columnCount(); ++c) {
        const int format =
            view->property(QStringLiteral("koqdde_fmt_%1").arg(c).toUtf8().constData()).toInt();
        item->setData(c, Qt::TextAlignmentRole, static_cast<int>(Align(format)));
    }
    view->insertTopLevelItem(at, item);
    if (view->selectionMark >= at)
        ++view->selectionMark;
    return at;
}

BOOL CListCtrl::SetItemText(int item, int subItem, const CString& text) {
    KoListView* view = View(this);
    if (!Valid(view, item) || subItem < 0 || subItem >= std::max(1, view->columnCount()))
        return FALSE;
    view->topLevelItem(item)->setText(subItem, ToQString(text));
    return TRUE;
}

CString CListCtrl::GetItemText(int item, int subItem) const {
    KoListView* view = View(this);
    if (!Valid(view, item) || subItem < 0)
        return CString();
    return FromQString(view->topLevelItem(item)->text(subItem));
}

BOOL CListCtrl::SetItemData(int item, LPARAM data) {
    KoListView* view = View(this);
    if (!Valid(view, item))
        return FALSE;
    view->topLevelItem(item)->setData(0, kItemDataRole, static_cast<qlonglong>(data));
    return TRUE;
}

LPARAM CListCtrl::GetItemData(int item) const {
    KoListView* view = View(this);
    if (!Valid(view, item))
        return 0;
    return static_cast<LPARAM>(view->topLevelItem(item)->data(0, kItemDataRole).toLongLong());
}

BOOL CListCtrl::DeleteItem(int item) {
    KoListView* view = View(this);
    if (!Valid(view, item))
        return FALSE;
    ListViewBatch batch(view, false);
    delete view->takeTopLevelItem(item);
    if (view->selectionMark == item)
        view->selectionMark = -1;
    else if (view->selectionMark > item)
        --view->selectionMark;
    return TRUE;
}

BOOL CListCtrl::DeleteAllItems() {
    KoListView* view = View(this);
    if (!view)
        return FALSE;
    ListViewBatch batch(view, false);
    view->clear();
    view->selectionMark = -1;
    return TRUE;
}

int CListCtrl::GetItemCount() const {
    KoListView* view = View(this);
    return view ? view->topLevelItemCount() : 0;
}

int CListCtrl::GetNextItem(int start, int flags) const {
    KoListView* view = View(this);
    if (!view)
        return -1;
    // The stored states: inside a notice they are what the notices so far have told.
    UINT wanted = 0;
    if (flags & LVNI_SELECTED)
        wanted |= LVIS_SELECTED;
    if (flags & LVNI_FOCUSED)
        wanted |= LVIS_FOCUSED;
    for (int row = std::max(0, start + 1); row < view->topLevelItemCount(); ++row) {
        if ((view->StoredState(row) & wanted) == wanted)
            return row;
    }
    return -1;
}

int CListCtrl::GetSelectedCount() const {
    KoListView* view = View(this);
    int count = 0;
    for (int row = 0; view && row < view->topLevelItemCount(); ++row) {
        if (view->StoredState(row) & LVIS_SELECTED)
            ++count;
    }
    return count;
}

int CListCtrl::GetSelectionMark() const {
    KoListView* view = View(this);
    return view ? view->selectionMark : -1;
}

int CListCtrl::SetSelectionMark(int item) {
    KoListView* view = View(this);
    if (!view)
        return -1;
    const int previous = view->selectionMark;
    view->selectionMark = item;
    return previous;
}

BOOL CListCtrl::SetItemState(int item, UINT state, UINT mask) {
    KoListView* view = View(this);
    if (!view || (item != -1 && !Valid(view, item)))
        return FALSE;
    ListViewBatch batch(view, true);
    QItemSelectionModel* selection = view->selectionModel();
    auto apply = [&](int row) {
        const QModelIndex index = view->model()->index(row, 0);
        if (mask & LVIS_SELECTED) {
            if (state & LVIS_SELECTED) {
                const auto mode = view->singleSel ? QItemSelectionModel::ClearAndSelect
                                                  : QItemSelectionModel::Select;
                selection->select(index, mode | QItemSelectionModel::Rows);
            } else {
                selection->select(index, QItemSelectionModel::Deselect | QItemSelectionModel::Rows);
            }
        }
        if (mask & LVIS_FOCUSED) {
            if (state & LVIS_FOCUSED)
                selection->setCurrentIndex(index, QItemSelectionModel::NoUpdate);
            else if (selection->currentIndex().row() == row)
                selection->setCurrentIndex(QModelIndex(), QItemSelectionModel::NoUpdate);
        }
    };
    if (item == -1) {
        for (int row = 0; row < view->topLevelItemCount(); ++row)
            apply(row);
    } else {
        apply(item);
    }
    return TRUE;
}

UINT CListCtrl::GetItemState(int item, UINT mask) const {
    KoListView* view = View(this);
    return Valid(view, item) ? view->StoredState(item) & mask : 0;
}

BOOL CListCtrl::EnsureVisible(int item, BOOL /*partialOK*/) {
    KoListView* view = View(this);
    if (!Valid(view, item))
        return FALSE;
    view->scrollToItem(view->topLevelItem(item));
    return TRUE;
}

BOOL CListCtrl::GetItemRect(int item, CRect* rect) const {
    KoListView* view = View(this);
    if (!Valid(view, item))
        return FALSE;
    const QRect r = view->visualItemRect(view->topLevelItem(item));
    *rect = CRect(r.left(), r.top(), r.left() + r.width(), r.top() + r.height());
    return TRUE;
}

void CListCtrl::UserClickItem(int item) {
    KoListView* view = View(this);
    if (!Valid(view, item) || !view->isEnabled())
        return;
    // A click selects and focuses the item, as one change.
    ListViewBatch batch(view, true);
    const QModelIndex index = view->model()->index(item, 0);
    view->selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect |
                                                       QItemSelectionModel::Rows);
}

void CListCtrl::UserClickEmpty() {
    KoListView* view = View(this);
    if (view && view->isEnabled())
        view->ClickEmpty();
}
