#include "ui/CGridCtrl.h"

#include "ui/CEnterGrid.h"
#include "ui/CQvGridCtrl.h"
#include "ui/QtString.h"
#include "ui/detail/Widgets.h"

#include <QApplication>
#include <QComboBox>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QStyledItemDelegate>
#include <QTableWidget>

namespace {
constexpr int kStateRole = Qt::UserRole + 10;
constexpr int kTypeRole = Qt::UserRole + 11;
constexpr int kOptionsRole = Qt::UserRole + 12;
constexpr int kBkRole = Qt::UserRole + 13;
constexpr int kFgRole = Qt::UserRole + 14;
constexpr int kFormatRole = Qt::UserRole + 15;

QColor ToColor(COLORREF c) {
    return QColor(GetRValue(c), GetGValue(c), GetBValue(c));
}

Qt::Alignment FormatToAlign(UINT format) {
    Qt::Alignment align = Qt::AlignVCenter;
    if (format & DT_CENTER)
        align |= Qt::AlignHCenter;
    else if (format & DT_RIGHT)
        align |= Qt::AlignRight;
    else
        align |= Qt::AlignLeft;
    return align;
}
} // namespace

namespace koqdde::ui {

class GridDelegate;

// The table behind a CGridCtrl. It reaches its owner for the cell types, options and hooks;
// the owner clears the pointer when it goes first.
class GridTable : public QTableWidget {
public:
    explicit GridTable(QWidget* parent);
    CGridCtrl* owner = nullptr;
    GridDelegate* delegate = nullptr;
    QPointer<QWidget> editor;
    QPersistentModelIndex editIndex;

    void Notify(int code, int row, int col, const QString& text = QString());
    void ClickCell(int row, int col);
    // A press on a row head (fixed column) selects the row, on a column head (fixed row) the
    // column, when the grid allows it; add keeps what was selected. False for any other cell.
    bool SelectHeadLine(int row, int col, bool add);
    // Ends the open edit; enter tells that Enter ended it.
    void FinishEdit(bool enter);
    bool Editing() const { return editor && state() == QAbstractItemView::EditingState; }

protected:
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) override;
};

class GridDelegate : public QStyledItemDelegate {
public:
    explicit GridDelegate(GridTable* table) : QStyledItemDelegate(table), m_table(table) {}

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override {
        (void)option;
        CGridCtrl* grid = m_table->owner;
        const int row = index.row(), col = index.column();
        if (!grid || !grid->CanUserEdit(row, col))
            return nullptr;
        const int type = grid->GetCellType(row, col);
        QWidget* editor = nullptr;
        if (type == GVCT_DROPLIST || type == GVCT_DROPDOWN) {
            auto* combo = new QComboBox(parent);
            combo->setEditable(type == GVCT_DROPDOWN);
            if (combo->isEditable()) {
                combo->setInsertPolicy(QComboBox::NoInsert);
                combo->setCompleter(nullptr);
            }
            for (const CString& option : grid->GetCellOptions(row, col))
                combo->addItem(ToQString(option));
            // Choosing an option ends the edit at once, as a drop list cell does.
            auto* self = const_cast<GridDelegate*>(this);
            connect(combo, &QComboBox::activated, combo, [self, combo] {
                emit self->commitData(combo);
                emit self->closeEditor(combo, QAbstractItemDelegate::NoHint);
            });
            editor = combo;
        } else if (type == GVCT_EDIT) {
            editor = new QLineEdit(parent);
        } else {
            return nullptr; // a button cell has no editor: the click is the whole action
        }
        editor->installEventFilter(const_cast<GridDelegate*>(this));
        m_table->editor = editor;
        m_table->editIndex = index;
        return editor;
    }

    void setEditorData(QWidget* editor, const QModelIndex& index) const override {
        const QString text = index.data(Qt::DisplayRole).toString();
        if (auto* combo = qobject_cast<QComboBox*>(editor)) {
            const int found = combo->findText(text, Qt::MatchFixedString);
            combo->setCurrentIndex(found);
            if (combo->isEditable())
                combo->setEditText(text);
        } else if (auto* edit = qobject_cast<QLineEdit*>(editor)) {
            edit->setText(text);
        }
    }

    void setModelData(QWidget* editor, QAbstractItemModel* model,
                      const QModelIndex& index) const override {
        (void)model;
        QString text;
        if (auto* combo = qobject_cast<QComboBox*>(editor))
            text = combo->currentText();
        else if (auto* edit = qobject_cast<QLineEdit*>(editor))
            text = edit->text();
        else
            return;
        const int row = index.row(), col = index.column();
        QTableWidgetItem* item = m_table->item(row, col);
        if (!item)
            return;
        const QString old = item->text();
        m_table->editor = nullptr;
        if (old != text) {
            item->setText(text);
            m_table->Notify(GVN_CELLCHANGE, row, col, text);
        }
        m_table->Notify(GVN_ENDLABELEDIT, row, col, text);
    }

protected:
    bool eventFilter(QObject* object, QEvent* event) override {
        auto* editor = qobject_cast<QWidget*>(object);
        if (editor && event->type() == QEvent::KeyPress) {
            const int key = static_cast<QKeyEvent*>(event)->key();
            if (key == Qt::Key_Return || key == Qt::Key_Enter) {
                // Enter ends the edit here and now, not in a queued call.
                emit commitData(editor);
                emit closeEditor(editor, QAbstractItemDelegate::SubmitModelCache);
                return true;
            }
        }
        return QStyledItemDelegate::eventFilter(object, event);
    }

private:
    GridTable* m_table;
};

GridTable::GridTable(QWidget* parent) : QTableWidget(parent) {
    horizontalHeader()->hide();
    verticalHeader()->hide();
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setSelectionBehavior(QAbstractItemView::SelectItems);
    setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::SelectedClicked |
                    QAbstractItemView::EditKeyPressed | QAbstractItemView::AnyKeyPressed);
    setWordWrap(false);
    delegate = new GridDelegate(this);
    setItemDelegate(delegate);
}

void GridTable::Notify(int code, int row, int col, const QString& text) {
    if (!owner)
        return;
    NM_GRIDVIEW nm;
    nm.hdr.code = static_cast<UINT>(code);
    nm.iRow = row;
    nm.iColumn = col;
    nm.text = FromQString(text);
    SendNotifyToParent(this, &nm.hdr);
}

void GridTable::ClickCell(int row, int col) {
    if (!owner)
        return;
    Notify(NM_CLICK, row, col);
}

void GridTable::FinishEdit(bool enter) {
    QWidget* open = editor;
    if (!open || state() != QAbstractItemView::EditingState)
        return;
    emit delegate->commitData(open);
    emit delegate->closeEditor(open, enter ? QAbstractItemDelegate::SubmitModelCache
                                           : QAbstractItemDelegate::NoHint);
}

void GridTable::mousePressEvent(QMouseEvent* event) {
    const QModelIndex index = indexAt(event->position().toPoint());
    if (event->button() == Qt::LeftButton && index.isValid() &&
        SelectHeadLine(index.row(), index.column(),
                       event->modifiers().testFlag(Qt::ControlModifier))) {
        event->accept();
        return;
    }
    QTableWidget::mousePressEvent(event);
}

void GridTable::mouseReleaseEvent(QMouseEvent* event) {
    const QModelIndex index = indexAt(event->position().toPoint());
    QTableWidget::mouseReleaseEvent(event);
    if (!owner)
        return;
    const int row = index.isValid() ? index.row() : -1;
    const int col = index.isValid() ? index.column() : -1;
    if (event->button() == Qt::LeftButton)
        ClickCell(row, col);
    else if (event->button() == Qt::RightButton)
        owner->OnRButtonUp(row, col);
}

void GridTable::closeEditor(QWidget* closing, QAbstractItemDelegate::EndEditHint hint) {
    const QPersistentModelIndex index = editIndex;
    if (closing == editor)
        editor = nullptr;
    // Enter is handled by the owner (CEnterGrid walks on), not by Qt's own hints.
    const bool enter = hint == QAbstractItemDelegate::SubmitModelCache;
    QTableWidget::closeEditor(closing, enter ? QAbstractItemDelegate::NoHint : hint);
    if (enter && owner && index.isValid())
        owner->OnEditEnter(index.row(), index.column());
}

} // namespace koqdde::ui

using koqdde::ui::GridTable;

struct CGridCtrl::State {
    QPointer<GridTable> table;
    int fixedRows = 0;
    int fixedCols = 0;
    int defaultType = GVCT_EDIT;
    bool editable = true;
    bool fixedRowSelection = false;    // a row head's click selects its row
    bool fixedColumnSelection = false; // a column head's click selects its column
    COLORREF textBk = CLR_DEFAULT;

    QTableWidgetItem* Cell(int row, int col) const {
        return table ? table->item(row, col) : nullptr;
    }
};

bool GridTable::SelectHeadLine(int row, int col, bool add) {
    if (!owner)
        return false;
    const CGridCtrl::State& state = *owner->m_state;
    const int rows = rowCount(), cols = columnCount();
    QTableWidgetSelectionRange line;
    QModelIndex focus;
    if (state.fixedRowSelection && col < state.fixedCols && row >= state.fixedRows &&
        cols > state.fixedCols) {
        line = QTableWidgetSelectionRange(row, state.fixedCols, row, cols - 1);
        focus = model()->index(row, state.fixedCols);
    } else if (state.fixedColumnSelection && row < state.fixedRows && col >= state.fixedCols &&
               rows > state.fixedRows) {
        line = QTableWidgetSelectionRange(state.fixedRows, col, rows - 1, col);
        focus = model()->index(state.fixedRows, col);
    } else {
        return false;
    }
    FinishEdit(false);
    if (!add)
        clearSelection();
    selectionModel()->setCurrentIndex(focus, QItemSelectionModel::NoUpdate);
    setRangeSelected(line, true);
    return true;
}

CGridCtrl::CGridCtrl() : m_state(std::make_unique<State>()) {}

CGridCtrl::~CGridCtrl() {
    if (m_state->table)
        m_state->table->owner = nullptr;
}

QTableWidget* CGridCtrl::Table() const {
    return m_state->table.data();
}

BOOL CGridCtrl::Create(const CRect& rect, CWnd* parent, UINT id, DWORD /*style*/) {
    if (IsWindow() || !parent || !parent->GetSafeHwnd())
        return FALSE;
    auto* table = new GridTable(parent->GetSafeHwnd());
    table->owner = this;
    koqdde::ui::SetControlId(table, static_cast<int>(id));
    table->setGeometry(rect.left, rect.top, rect.Width(), rect.Height());
    table->show();
    m_state->table = table;
    Attach(table);
    SetOwnsWidget(true);
    return TRUE;
}

namespace {
// Makes the missing items of the table and gives each cell its flags and colours.
void LookOfCell(const CGridCtrl& grid, QTableWidget* table, int row, int col, COLORREF textBk,
                int fixedRows, int fixedCols) {
    QTableWidgetItem* item = table->item(row, col);
    if (!item) {
        item = new QTableWidgetItem;
        item->setData(kTypeRole, -1);
        table->setItem(row, col, item);
    }
    const bool fixed = row < fixedRows || col < fixedCols;
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    const UINT state = item->data(kStateRole).toUInt();
    if (!fixed && grid.IsEditable() && !(state & GVIS_READONLY))
        flags |= Qt::ItemIsEditable;
    item->setFlags(flags);
    const QVariant bk = item->data(kBkRole);
    if (bk.isValid())
        item->setBackground(ToColor(bk.toUInt()));
    else if (fixed)
        item->setBackground(table->palette().button());
    else if (textBk != CLR_DEFAULT)
        item->setBackground(ToColor(textBk));
    else
        item->setBackground(QBrush());
    const QVariant fg = item->data(kFgRole);
    item->setForeground(fg.isValid() ? QBrush(ToColor(fg.toUInt())) : QBrush());
}
// Colours are kept per cell; CLR_DEFAULT means "none of its own".
QVariant ColourValue(COLORREF colour) {
    return colour == CLR_DEFAULT ? QVariant() : QVariant(colour);
}

COLORREF ColourOf(const QTableWidgetItem* item, int role) {
    const QVariant v = item ? item->data(role) : QVariant();
    return v.isValid() ? v.toUInt() : CLR_DEFAULT;
}

} // namespace

static void RefreshLooks(const CGridCtrl& grid, QTableWidget* table, COLORREF textBk, int fr,
                         int fc, int fromRow = 0) {
    if (!table)
        return;
    for (int r = fromRow; r < table->rowCount(); ++r)
        for (int c = 0; c < table->columnCount(); ++c)
            LookOfCell(grid, table, r, c, textBk, fr, fc);
}

BOOL CGridCtrl::SetRowCount(int rows) {
    QTableWidget* table = Table();
    if (!table || rows < 0)
        return FALSE;
    const int old = table->rowCount();
    table->setRowCount(rows);
    if (m_state->fixedRows > rows)
        m_state->fixedRows = rows;
    RefreshLooks(*this, table, m_state->textBk, m_state->fixedRows, m_state->fixedCols,
                 std::min(old, rows));
    return TRUE;
}

int CGridCtrl::GetRowCount() const {
    QTableWidget* table = Table();
    return table ? table->rowCount() : 0;
}

BOOL CGridCtrl::SetColumnCount(int columns) {
    QTableWidget* table = Table();
    if (!table || columns < 0)
        return FALSE;
    table->setColumnCount(columns);
    if (m_state->fixedCols > columns)
        m_state->fixedCols = columns;
    RefreshLooks(*this, table, m_state->textBk, m_state->fixedRows, m_state->fixedCols);
    return TRUE;
}

int CGridCtrl::GetColumnCount() const {
    QTableWidget* table = Table();
    return table ? table->columnCount() : 0;
}

BOOL CGridCtrl::SetFixedRowCount(int rows) {
    QTableWidget* table = Table();
    if (!table || rows < 0)
        return FALSE;
    if (rows > table->rowCount())
        table->setRowCount(rows);
    m_state->fixedRows = rows;
    RefreshLooks(*this, table, m_state->textBk, m_state->fixedRows, m_state->fixedCols);
    return TRUE;
}

int CGridCtrl::GetFixedRowCount() const {
    return m_state->fixedRows;
}

BOOL CGridCtrl::SetFixedColumnCount(int columns) {
    QTableWidget* table = Table();
    if (!table || columns < 0)
        return FALSE;
    if (columns > table->columnCount())
        table->setColumnCount(columns);
    m_state->fixedCols = columns;
    RefreshLooks(*this, table, m_state->textBk, m_state->fixedRows, m_state->fixedCols);
    return TRUE;
}

int CGridCtrl::GetFixedColumnCount() const {
    return m_state->fixedCols;
}

BOOL CGridCtrl::IsValid(int row, int col) const {
    return row >= 0 && col >= 0 && row < GetRowCount() && col < GetColumnCount();
}

BOOL CGridCtrl::SetItemText(int row, int col, const CString& text) {
    QTableWidgetItem* item = m_state->Cell(row, col);
    if (!item)
        return FALSE;
    item->setText(koqdde::ui::ToQString(text));
    return TRUE;
}

CString CGridCtrl::GetItemText(int row, int col) const {
    QTableWidgetItem* item = m_state->Cell(row, col);
    return item ? koqdde::ui::FromQString(item->text()) : CString();
}

BOOL CGridCtrl::SetItemData(int row, int col, LPARAM data) {
    QTableWidgetItem* item = m_state->Cell(row, col);
    if (!item)
        return FALSE;
    item->setData(koqdde::ui::kItemDataRole, static_cast<qlonglong>(data));
    return TRUE;
}

LPARAM CGridCtrl::GetItemData(int row, int col) const {
    QTableWidgetItem* item = m_state->Cell(row, col);
    // A cell that does not exist reads as 0, which callers walking past the end rely on.
    return item ? static_cast<LPARAM>(item->data(koqdde::ui::kItemDataRole).toLongLong()) : 0;
}

BOOL CGridCtrl::SetCellLook(int row, int col, int role, const QVariant& value) {
    QTableWidgetItem* item = m_state->Cell(row, col);
    if (!item)
        return FALSE;
    item->setData(role, value);
    LookOfCell(*this, Table(), row, col, m_state->textBk, m_state->fixedRows, m_state->fixedCols);
    return TRUE;
}

BOOL CGridCtrl::SetItemBkColour(int row, int col, COLORREF colour) {
    return SetCellLook(row, col, kBkRole, ColourValue(colour));
}

COLORREF CGridCtrl::GetItemBkColour(int row, int col) const {
    return ColourOf(m_state->Cell(row, col), kBkRole);
}

BOOL CGridCtrl::SetItemFgColour(int row, int col, COLORREF colour) {
    return SetCellLook(row, col, kFgRole, ColourValue(colour));
}

COLORREF CGridCtrl::GetItemFgColour(int row, int col) const {
    return ColourOf(m_state->Cell(row, col), kFgRole);
}

BOOL CGridCtrl::SetItemState(int row, int col, UINT state) {
    // Selection, focus and fixedness are the grid's own, not stored per cell.
    return SetCellLook(row, col, kStateRole, state & ~(GVIS_SELECTED | GVIS_FOCUSED | GVIS_FIXED));
}

UINT CGridCtrl::GetItemState(int row, int col) const {
    QTableWidgetItem* item = m_state->Cell(row, col);
    if (!item)
        return 0;
    UINT state = item->data(kStateRole).toUInt();
    if (IsCellSelected(row, col))
        state |= GVIS_SELECTED;
    if (GetFocusCell() == CCellID(row, col))
        state |= GVIS_FOCUSED;
    if (row < m_state->fixedRows || col < m_state->fixedCols)
        state |= GVIS_FIXED;
    return state;
}

BOOL CGridCtrl::SetItemFormat(int row, int col, UINT format) {
    QTableWidgetItem* item = m_state->Cell(row, col);
    if (!item)
        return FALSE;
    item->setData(kFormatRole, format);
    item->setTextAlignment(FormatToAlign(format));
    return TRUE;
}

UINT CGridCtrl::GetItemFormat(int row, int col) const {
    QTableWidgetItem* item = m_state->Cell(row, col);
    return item ? item->data(kFormatRole).toUInt() : 0;
}

BOOL CGridCtrl::SetItem(const GV_ITEM* gv) {
    if (!gv || !IsValid(gv->row, gv->col))
        return FALSE;
    if (gv->mask & GVIF_TEXT)
        SetItemText(gv->row, gv->col, gv->strText);
    if (gv->mask & GVIF_PARAM)
        SetItemData(gv->row, gv->col, gv->lParam);
    if (gv->mask & GVIF_STATE)
        SetItemState(gv->row, gv->col, gv->nState);
    if (gv->mask & GVIF_FORMAT)
        SetItemFormat(gv->row, gv->col, gv->nFormat);
    if (gv->mask & GVIF_BKCLR)
        SetItemBkColour(gv->row, gv->col, gv->crBkClr);
    if (gv->mask & GVIF_FGCLR)
        SetItemFgColour(gv->row, gv->col, gv->crFgClr);
    return TRUE;
}

BOOL CGridCtrl::GetItem(GV_ITEM* gv) const {
    if (!gv || !IsValid(gv->row, gv->col))
        return FALSE;
    if (gv->mask & GVIF_TEXT)
        gv->strText = GetItemText(gv->row, gv->col);
    if (gv->mask & GVIF_PARAM)
        gv->lParam = GetItemData(gv->row, gv->col);
    if (gv->mask & GVIF_STATE)
        gv->nState = GetItemState(gv->row, gv->col);
    if (gv->mask & GVIF_FORMAT)
        gv->nFormat = GetItemFormat(gv->row, gv->col);
    if (gv->mask & GVIF_BKCLR)
        gv->crBkClr = GetItemBkColour(gv->row, gv->col);
    if (gv->mask & GVIF_FGCLR)
        gv->crFgClr = GetItemFgColour(gv->row, gv->col);
    return TRUE;
}

BOOL CGridCtrl::SetCellType(int row, int col, int type) {
    QTableWidgetItem* item = m_state->Cell(row, col);
    if (!item)
        return FALSE;
    item->setData(kTypeRole, type);
    return TRUE;
}

int CGridCtrl::GetCellType(int row, int col) const {
    QTableWidgetItem* item = m_state->Cell(row, col);
    const int own = item ? item->data(kTypeRole).toInt() : -1;
    return own >= 0 ? own : GetColumnCellType(col);
}

int CGridCtrl::GetColumnCellType(int /*col*/) const {
    return m_state->defaultType;
}

void CGridCtrl::SetDefaultCellType(int type) {
    m_state->defaultType = type;
}

int CGridCtrl::GetDefaultCellType() const {
    return m_state->defaultType;
}

BOOL CGridCtrl::SetCellOptions(int row, int col, const CStringArray& options) {
    QTableWidgetItem* item = m_state->Cell(row, col);
    if (!item)
        return FALSE;
    QStringList list;
    for (const CString& o : options)
        list << koqdde::ui::ToQString(o);
    item->setData(kOptionsRole, list);
    return TRUE;
}

CStringArray CGridCtrl::GetCellOptions(int row, int col) const {
    CStringArray options;
    QTableWidgetItem* item = m_state->Cell(row, col);
    if (!item)
        return options;
    for (const QString& o : item->data(kOptionsRole).toStringList())
        options.Add(koqdde::ui::FromQString(o));
    return options;
}

void CGridCtrl::SetEditable(BOOL editable) {
    m_state->editable = editable != FALSE;
    RefreshLooks(*this, Table(), m_state->textBk, m_state->fixedRows, m_state->fixedCols);
}

BOOL CGridCtrl::IsEditable() const {
    return m_state->editable;
}

void CGridCtrl::EnableDragAndDrop(BOOL enable) {
    if (QTableWidget* table = Table())
        table->setDragEnabled(enable != FALSE);
}

void CGridCtrl::SetFixedRowSelection(BOOL enable) {
    m_state->fixedRowSelection = enable != FALSE;
}

void CGridCtrl::SetFixedColumnSelection(BOOL enable) {
    m_state->fixedColumnSelection = enable != FALSE;
}

void CGridCtrl::SetTextBkColor(COLORREF colour) {
    m_state->textBk = colour;
    RefreshLooks(*this, Table(), m_state->textBk, m_state->fixedRows, m_state->fixedCols);
}

COLORREF CGridCtrl::GetTextBkColor() const {
    return m_state->textBk;
}

BOOL CGridCtrl::SetColumnWidth(int col, int width) {
    QTableWidget* table = Table();
    if (!table || col < 0 || col >= table->columnCount())
        return FALSE;
    table->setColumnWidth(col, width);
    return TRUE;
}

int CGridCtrl::GetColumnWidth(int col) const {
    QTableWidget* table = Table();
    return table && col >= 0 && col < table->columnCount() ? table->columnWidth(col) : 0;
}

BOOL CGridCtrl::SetRowHeight(int row, int height) {
    QTableWidget* table = Table();
    if (!table || row < 0 || row >= table->rowCount())
        return FALSE;
    table->setRowHeight(row, height);
    return TRUE;
}

int CGridCtrl::GetRowHeight(int row) const {
    QTableWidget* table = Table();
    return table && row >= 0 && row < table->rowCount() ? table->rowHeight(row) : 0;
}

int CGridCtrl::GetFixedRowHeight() const {
    int height = 0;
    for (int r = 0; r < m_state->fixedRows; ++r)
        height += GetRowHeight(r);
    return height;
}

void CGridCtrl::AutoSize() {
    if (QTableWidget* table = Table()) {
        table->resizeColumnsToContents();
        table->resizeRowsToContents();
    }
}

BOOL CGridCtrl::DeleteAllItems() {
    QTableWidget* table = Table();
    if (!table)
        return FALSE;
    EndEditing();
    table->clear();
    table->setRowCount(0);
    table->setColumnCount(0);
    m_state->fixedRows = 0;
    m_state->fixedCols = 0;
    return TRUE;
}

BOOL CGridCtrl::DeleteNonFixedRows() {
    QTableWidget* table = Table();
    if (!table)
        return FALSE;
    EndEditing();
    table->setRowCount(m_state->fixedRows);
    return TRUE;
}

BOOL CGridCtrl::DeleteRow(int row) {
    QTableWidget* table = Table();
    if (!table || row < 0 || row >= table->rowCount())
        return FALSE;
    EndEditing();
    table->removeRow(row);
    if (row < m_state->fixedRows)
        --m_state->fixedRows;
    return TRUE;
}

int CGridCtrl::InsertRow(const CString& heading, int beforeRow) {
    QTableWidget* table = Table();
    if (!table)
        return -1;
    const int at = beforeRow < 0 || beforeRow > table->rowCount() ? table->rowCount() : beforeRow;
    table->insertRow(at);
    for (int c = 0; c < table->columnCount(); ++c)
        LookOfCell(*this, table, at, c, m_state->textBk, m_state->fixedRows, m_state->fixedCols);
    if (table->columnCount() > 0)
        SetItemText(at, 0, heading);
    return at;
}

void CGridCtrl::Refresh() {
    if (QTableWidget* table = Table())
        table->viewport()->update();
}

void CGridCtrl::SetSelectedRange(int minRow, int minCol, int maxRow, int maxCol,
                                 BOOL /*forceRepaint*/) {
    QTableWidget* table = Table();
    if (!table)
        return;
    table->clearSelection();
    // A range that leaves the grid selects what lies inside it (nothing for a row past the end).
    const int r1 = std::max(0, minRow), c1 = std::max(0, minCol);
    const int r2 = std::min(maxRow, table->rowCount() - 1);
    const int c2 = std::min(maxCol, table->columnCount() - 1);
    if (r1 > r2 || c1 > c2)
        return;
    table->setRangeSelected(QTableWidgetSelectionRange(r1, c1, r2, c2), true);
}

void CGridCtrl::SetSelectedRange(const CCellRange& range, BOOL forceRepaint) {
    SetSelectedRange(range.GetMinRow(), range.GetMinCol(), range.GetMaxRow(), range.GetMaxCol(),
                     forceRepaint);
}

CCellRange CGridCtrl::GetSelectedCellRange() const {
    QTableWidget* table = Table();
    if (!table)
        return CCellRange();
    const QModelIndexList selected = table->selectionModel()->selectedIndexes();
    if (selected.isEmpty())
        return CCellRange();
    int r1 = INT_MAX, c1 = INT_MAX, r2 = -1, c2 = -1;
    for (const QModelIndex& i : selected) {
        r1 = std::min(r1, i.row());
        c1 = std::min(c1, i.column());
        r2 = std::max(r2, i.row());
        c2 = std::max(c2, i.column());
    }
    return CCellRange(r1, c1, r2, c2);
}

BOOL CGridCtrl::IsCellSelected(int row, int col) const {
    QTableWidget* table = Table();
    if (!table || !IsValid(row, col))
        return FALSE;
    return table->selectionModel()->isSelected(table->model()->index(row, col));
}

CCellID CGridCtrl::SetFocusCell(int row, int col) {
    const CCellID previous = GetFocusCell();
    QTableWidget* table = Table();
    if (!table)
        return previous;
    const QModelIndex index = IsValid(row, col) ? table->model()->index(row, col) : QModelIndex();
    table->selectionModel()->setCurrentIndex(index, QItemSelectionModel::NoUpdate);
    return previous;
}

CCellID CGridCtrl::GetFocusCell() const {
    QTableWidget* table = Table();
    if (!table)
        return CCellID();
    const QModelIndex current = table->currentIndex();
    return current.isValid() ? CCellID(current.row(), current.column()) : CCellID();
}

void CGridCtrl::EnsureVisible(int row, int col) {
    QTableWidget* table = Table();
    if (table && IsValid(row, col))
        table->scrollTo(table->model()->index(row, col));
}

void CGridCtrl::EndEditing() {
    if (m_state->table)
        m_state->table->FinishEdit(false);
}

BOOL CGridCtrl::IsEditing() const {
    return m_state->table && m_state->table->Editing();
}

CWnd* CGridCtrl::SetFocus() {
    EndEditing();
    return CWnd::SetFocus();
}

bool CGridCtrl::CanUserEdit(int row, int col) const {
    const int type = GetCellType(row, col);
    return IsEditable() && row >= GetFixedRowCount() && col >= GetFixedColumnCount() &&
           !(GetItemState(row, col) & GVIS_READONLY) &&
           (type == GVCT_EDIT || type == GVCT_DROPLIST || type == GVCT_DROPDOWN);
}

void CGridCtrl::UserClickCell(int row, int col) {
    GridTable* table = m_state->table;
    if (!table || !table->isEnabled())
        return;
    EndEditing();
    if (IsValid(row, col)) {
        if (!table->SelectHeadLine(row, col, false)) {
            const QModelIndex index = table->model()->index(row, col);
            table->selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
        }
        table->ClickCell(row, col);
    } else {
        table->ClickCell(-1, -1);
    }
}

BOOL CGridCtrl::UserEditCell(int row, int col, const CString& text) {
    GridTable* table = m_state->table;
    if (!table || !table->isEnabled() || !IsValid(row, col))
        return FALSE;
    EndEditing();
    const QModelIndex index = table->model()->index(row, col);
    table->selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
    if (!CanUserEdit(row, col))
        return FALSE;
    table->edit(index);
    QWidget* editor = table->editor;
    if (!editor)
        return FALSE;
    const QString q = koqdde::ui::ToQString(text);
    if (auto* combo = qobject_cast<QComboBox*>(editor)) {
        if (combo->isEditable()) {
            combo->setEditText(q);
        } else {
            const int found = combo->findText(q, Qt::MatchFixedString);
            if (found < 0) {
                table->FinishEdit(false);
                return FALSE;
            }
            combo->setCurrentIndex(found);
        }
    } else if (auto* edit = qobject_cast<QLineEdit*>(editor)) {
        edit->selectAll();
        edit->insert(q);
    }
    table->FinishEdit(true);
    return TRUE;
}

BOOL CGridCtrl::UserChooseOption(int row, int col, int option) {
    GridTable* table = m_state->table;
    if (!table || !table->isEnabled() || !IsValid(row, col))
        return FALSE;
    EndEditing();
    const QModelIndex index = table->model()->index(row, col);
    table->selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
    if (!CanUserEdit(row, col))
        return FALSE;
    table->edit(index);
    auto* combo = qobject_cast<QComboBox*>(table->editor.data());
    if (!combo || option < 0 || option >= combo->count()) {
        table->FinishEdit(false);
        return FALSE;
    }
    combo->setCurrentIndex(option);
    emit combo->activated(option); // as the click on the option: the edit ends
    return TRUE;
}

void CGridCtrl::UserPressKey(int qtKey) {
    GridTable* table = m_state->table;
    if (!table || !table->isEnabled())
        return;
    QWidget* target = table->editor ? table->editor.data() : static_cast<QWidget*>(table);
    QKeyEvent press(QEvent::KeyPress, qtKey, Qt::NoModifier);
    QApplication::sendEvent(target, &press);
}

// --- CEnterGrid and CQvGridCtrl ---------------------------------------------------------

void CEnterGrid::OnEditEnter(int row, int col) {
    if (!m_autoEnterNext)
        return;
    // The next cell to the right that takes an edit, else the first of the next row.
    const int fixedCols = GetFixedColumnCount();
    for (int r = row, c = col + 1; r < GetRowCount(); ++r, c = fixedCols) {
        for (; c < GetColumnCount(); ++c) {
            if (GetItemState(r, c) & GVIS_READONLY)
                continue;
            SetFocusCell(r, c);
            SetSelectedRange(r, c, r, c);
            EnsureVisible(r, c);
            return;
        }
    }
}

void CQvGridCtrl::SetFmtType(const std::vector<int>& types) {
    m_fmtTypes = types;
}

void CQvGridCtrl::SetFmtType(const int* types, int count) {
    m_fmtTypes.assign(types, types + std::max(0, count));
}

int CQvGridCtrl::GetColumnCellType(int col) const {
    if (col >= 0 && col < static_cast<int>(m_fmtTypes.size()))
        return m_fmtTypes[static_cast<size_t>(col)];
    return CEnterGrid::GetColumnCellType(col);
}

int CQvGridCtrl::InsertOneprop(int row, const CStringArray& texts) {
    const int at = InsertRow(CString(), row);
    if (at < 0)
        return -1;
    for (int i = 0; i < texts.GetSize() && i + 1 < GetColumnCount(); ++i)
        SetItemText(at, i + 1, texts[i]);
    return at;
}

CStringArray CQvGridCtrl::GetCellOptions(int row, int col) const {
    CStringArray own = CEnterGrid::GetCellOptions(row, col);
    if (!own.IsEmpty() || !m_optionsFn)
        return own;
    CStringArray options;
    m_optionsFn(col, options);
    return options;
}
