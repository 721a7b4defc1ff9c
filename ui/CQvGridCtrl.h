#pragma once
// The host's grid base: a cell type per column (SetFmtType), option lists per column from a
// function the owner gives (SetOptionsFunName), and rows inserted with all their texts.

#include "ui/CEnterGrid.h"

#include <vector>

// Fills options for a column; clears them first. Returns true.
using GridOptionsFn = bool (*)(int column, CStringArray& options);

class CQvGridCtrl : public CEnterGrid {
public:
    CQvGridCtrl() = default;
    // types[i] is the cell type of column i, for the cells there are and the rows to come.
    void SetFmtType(const std::vector<int>& types);
    void SetFmtType(const int* types, int count);
    const std::vector<int>& GetFmtType() const { return m_fmtTypes; }
    void SetOptionsFunName(GridOptionsFn function) { m_optionsFn = function; }
    GridOptionsFn GetOptionsFunName() const { return m_optionsFn; }

    // Inserts a row at row (the row count appends) with texts in columns 1, 2, ...; texts
    // beyond the last column are dropped. Cells take their column's type. Returns the row.
    int InsertOneprop(int row, const CStringArray& texts);

    // A cell's own options if set, else the column's from the options function.
    CStringArray GetCellOptions(int row, int col) const override;

protected:
    int GetColumnCellType(int col) const override;

private:
    std::vector<int> m_fmtTypes;
    GridOptionsFn m_optionsFn = nullptr;
};
