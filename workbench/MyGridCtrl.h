#pragma once
// The bill and quota grid of the workbench: column 0 is the row head and carries the item's
// id, column 1 the item's number and the row kind (0 bill, 1 quota), then name, unit, formula
// and, for categories that may carry pipe fittings, the fittings flag.

#include "ui/CQvGridCtrl.h"

#include <vector>

// The option lists of the grid's columns: units on column 3, yes and no on column 5, nothing
// elsewhere. Clears options first; always true.
bool GetCellOptions(int column, CStringArray& options);

class MyGridCtrl : public CQvGridCtrl {
public:
    // Grid cell types of the columns, as the grid's format array takes them.
    static constexpr int kText = 0;
    static constexpr int kOptions = 1;
    static constexpr int kButton = 2;
    static constexpr int kOptionsOrText = 8;
    // Backgrounds: every cell, and the number to formula cells of a bill row.
    static constexpr COLORREF kTextBk = 0xE0FFFF;
    static constexpr COLORREF kBillBk = 0xFFFF80;

    MyGridCtrl();
    ~MyGridCtrl() override;

    BOOL Create(const CRect& rect, CWnd* parent, UINT id, DWORD style = 0) override;
    // Sets the grid up empty with its header row: five columns, or six with the fittings
    // column. 0 when the grid could not be sized.
    int InitGrid(bool withAnnex);
    // The one selected row, or -1 when the selection is not one data row.
    int GetSelectRow();
    // The rows with a selected data cell, from the last down to the first.
    void GetSelectRows(std::vector<int>& rows);

protected:
    // A right click opens nothing here.
    void OnRButtonUp(int row, int col) override;
};
