#pragma once
// The grid: rows and columns of text cells with fixed header rows and columns, per-cell item
// data, colours, read-only state and cell types, made at run time over a rectangle of its
// parent. It tells its parent (WM_NOTIFY with an NM_GRIDVIEW):
//   NM_CLICK            a user's click on a cell (row and column; -1 outside the cells),
//   GVN_CELLCHANGE (1)  a user's edit changed a cell's value (row, column, new text), sent
//                       after the cell holds the text,
//   GVN_ENDLABELEDIT    an in-place edit ended (row, column, the text it ended with).
// Program calls send nothing.

#include "ui/CWnd.h"

#include <memory>
#include <vector>

class QTableWidget;
class QVariant;

inline constexpr int GVN_CELLCHANGE = 1;
inline constexpr int GVN_BEGINLABELEDIT = LVN_BEGINLABELEDITW;
inline constexpr int GVN_ENDLABELEDIT = LVN_ENDLABELEDITW;

// Cell states.
inline constexpr UINT GVIS_FOCUSED = 0x0001;
inline constexpr UINT GVIS_SELECTED = 0x0002;
inline constexpr UINT GVIS_READONLY = 0x0008;
inline constexpr UINT GVIS_FIXED = 0x0010;

// Cell types: how a user edits a cell.
inline constexpr int GVCT_EDIT = 0;     // in-place text edit
inline constexpr int GVCT_DROPLIST = 1; // choose one of the cell's options, no typing
inline constexpr int GVCT_BUTTON = 2;   // no editor: a click only sends NM_CLICK, and the
                                        // parent opens what it likes (a calculator)
inline constexpr int GVCT_DROPDOWN = 8; // the options, or any typed text

// Fields of GV_ITEM.
inline constexpr UINT GVIF_TEXT = 0x0001;
inline constexpr UINT GVIF_PARAM = 0x0004;
inline constexpr UINT GVIF_STATE = 0x0008;
inline constexpr UINT GVIF_BKCLR = 0x0010;
inline constexpr UINT GVIF_FGCLR = 0x0020;
inline constexpr UINT GVIF_FORMAT = 0x0040;

// "No colour set": the cell shows the grid's default.
inline constexpr COLORREF CLR_DEFAULT = 0xFF000000;

struct NM_GRIDVIEW {
    NMHDR hdr;
    int iRow = -1;
    int iColumn = -1;
    CString text;
};

struct GV_ITEM {
    UINT mask = 0;
    int row = 0;
    int col = 0;
    UINT nState = 0;
    UINT nFormat = 0;
    CString strText;
    LPARAM lParam = 0;
    COLORREF crBkClr = CLR_DEFAULT;
    COLORREF crFgClr = CLR_DEFAULT;
};

struct CCellID {
    int row = -1;
    int col = -1;
    CCellID() = default;
    CCellID(int r, int c) : row(r), col(c) {}
    bool IsValid() const { return row >= 0 && col >= 0; }
    friend bool operator==(const CCellID&, const CCellID&) = default;
};

class CCellRange {
public:
    CCellRange() = default;
    CCellRange(int minRow, int minCol, int maxRow, int maxCol)
        : m_minRow(minRow), m_minCol(minCol), m_maxRow(maxRow), m_maxCol(maxCol) {}
    bool IsValid() const {
        return m_minRow >= 0 && m_minCol >= 0 && m_maxRow >= m_minRow && m_maxCol >= m_minCol;
    }
    int GetMinRow() const { return m_minRow; }
    int GetMinCol() const { return m_minCol; }
    int GetMaxRow() const { return m_maxRow; }
    int GetMaxCol() const { return m_maxCol; }
    int Count() const {
        return IsValid() ? (m_maxRow - m_minRow + 1) * (m_maxCol - m_minCol + 1) : 0;
    }
    bool InRange(int row, int col) const {
        return IsValid() && row >= m_minRow && row <= m_maxRow && col >= m_minCol &&
               col <= m_maxCol;
    }
    friend bool operator==(const CCellRange&, const CCellRange&) = default;

private:
    int m_minRow = -1, m_minCol = -1, m_maxRow = -1, m_maxCol = -1;
};

namespace koqdde::ui {
class GridTable;
}

class CGridCtrl : public CWnd {
public:
    CGridCtrl();
    ~CGridCtrl() override;

    // Makes the grid as a child of parent at rect (parent's client coordinates) with this id.
    // The style argument is accepted for the callers' sake; the grid is visible and framed.
    virtual BOOL Create(const CRect& rect, CWnd* parent, UINT id, DWORD style = 0);

    BOOL SetRowCount(int rows);
    int GetRowCount() const;
    BOOL SetColumnCount(int columns);
    int GetColumnCount() const;
    BOOL SetFixedRowCount(int rows);
    int GetFixedRowCount() const;
    BOOL SetFixedColumnCount(int columns);
    int GetFixedColumnCount() const;
    BOOL IsValid(int row, int col) const;
    BOOL IsValid(const CCellID& cell) const { return IsValid(cell.row, cell.col); }

    BOOL SetItemText(int row, int col, const CString& text);
    CString GetItemText(int row, int col) const;
    BOOL SetItemData(int row, int col, LPARAM data);
    LPARAM GetItemData(int row, int col) const;
    BOOL SetItemBkColour(int row, int col, COLORREF colour = CLR_DEFAULT);
    COLORREF GetItemBkColour(int row, int col) const;
    BOOL SetItemFgColour(int row, int col, COLORREF colour = CLR_DEFAULT);
    COLORREF GetItemFgColour(int row, int col) const;
    BOOL SetItemState(int row, int col, UINT state);
    UINT GetItemState(int row, int col) const;
    BOOL SetItemFormat(int row, int col, UINT format);
    UINT GetItemFormat(int row, int col) const;
    BOOL SetItem(const GV_ITEM* item);
    BOOL GetItem(GV_ITEM* item) const;
    BOOL SetCellType(int row, int col, int type);
    int GetCellType(int row, int col) const;
    void SetDefaultCellType(int type); // for cells with no type of their own
    int GetDefaultCellType() const;
    // The options of a drop list or drop-down cell.
    BOOL SetCellOptions(int row, int col, const CStringArray& options);
    virtual CStringArray GetCellOptions(int row, int col) const;

    void SetEditable(BOOL editable = TRUE);
    BOOL IsEditable() const;
    void EnableDragAndDrop(BOOL enable = TRUE);
    void SetFixedRowSelection(BOOL enable = TRUE);
    void SetFixedColumnSelection(BOOL enable = TRUE);
    void SetTextBkColor(COLORREF colour);
    COLORREF GetTextBkColor() const;

    BOOL SetColumnWidth(int col, int width);
    int GetColumnWidth(int col) const;
    BOOL SetRowHeight(int row, int height);
    int GetRowHeight(int row) const;
    int GetFixedRowHeight() const;
    void AutoSize();

    BOOL DeleteAllItems(); // rows, columns and fixed counts go to 0
    BOOL DeleteNonFixedRows();
    BOOL DeleteRow(int row);
    int InsertRow(const CString& heading, int beforeRow = -1); // the new row's index
    void Refresh();

    void SetSelectedRange(int minRow, int minCol, int maxRow, int maxCol,
                          BOOL forceRepaint = FALSE);
    void SetSelectedRange(const CCellRange& range, BOOL forceRepaint = FALSE);
    CCellRange GetSelectedCellRange() const;
    BOOL IsCellSelected(int row, int col) const;
    CCellID SetFocusCell(int row, int col); // the previous focus cell
    CCellID GetFocusCell() const;
    void EnsureVisible(int row, int col);
    // Ends an open in-place edit, keeping its text (GVN_CELLCHANGE / GVN_ENDLABELEDIT follow).
    void EndEditing();
    BOOL IsEditing() const;
    // Gives the grid the keyboard focus; an open in-place edit ends first.
    CWnd* SetFocus();

    // As the user does: click a cell; edit a cell and end the edit with Enter (text cells and
    // drop-downs); choose an option of a drop list or drop-down by its index; press a key on
    // the focus cell (Qt::Key value).
    void UserClickCell(int row, int col);
    BOOL UserEditCell(int row, int col, const CString& text);
    BOOL UserChooseOption(int row, int col, int option);
    void UserPressKey(int qtKey);
    // Whether a user may open an editor on the cell: editable grid, not fixed, not read-only,
    // and a type with an editor.
    bool CanUserEdit(int row, int col) const;

protected:
    // Enter pressed in an open edit, after the edit ended. The base does nothing more.
    virtual void OnEditEnter(int row, int col) {
        (void)row;
        (void)col;
    }
    // A right click on a cell. The base does nothing.
    virtual void OnRButtonUp(int row, int col) {
        (void)row;
        (void)col;
    }
    // The type of a cell with no type of its own; the base gives the default cell type.
    virtual int GetColumnCellType(int col) const;
    QTableWidget* Table() const;

private:
    friend class koqdde::ui::GridTable;
    struct State;
    // Stores one of a cell's look values (colours, state) and repaints the cell; FALSE when
    // there is no such cell.
    BOOL SetCellLook(int row, int col, int role, const QVariant& value);
    std::unique_ptr<State> m_state;
};
