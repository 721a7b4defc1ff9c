// The grid made at run time over a placeholder: its notices to the parent, cell types, option
// lists, item data and the Enter walk.

#include "DemoDialog.h"

#include "ui/CQvGridCtrl.h"

#include <Qt>

#include <gtest/gtest.h>

using koqdde::test::DemoDialog;
using koqdde::test::RunModal;
using Log = std::vector<std::string>;

namespace {

bool UnitOptions(int column, CStringArray& options) {
    options.RemoveAll();
    if (column == 3) {
        options.Add(L"m");
        options.Add(L"个");
    }
    return true;
}

class GridDialog : public DemoDialog {
public:
    CQvGridCtrl grid;
    CRect placeholder;

protected:
    BOOL OnInitDialog() override {
        DemoDialog::OnInitDialog();
        GetDlgItem(1012)->GetWindowRect(&placeholder);
        ScreenToClient(&placeholder);
        grid.Create(placeholder, this, 50002);
        grid.SetOptionsFunName(UnitOptions);
        grid.SetFmtType(std::vector<int>{GVCT_EDIT, GVCT_EDIT, GVCT_EDIT, GVCT_DROPLIST,
                                         GVCT_BUTTON, GVCT_DROPDOWN});
        grid.SetRowCount(1);
        grid.SetColumnCount(6);
        grid.SetFixedRowCount(1);
        grid.SetFixedColumnCount(1);
        return TRUE;
    }
};

} // namespace

TEST(UiGrid, MadeOverThePlaceholderWithRowsOfCellsAndHeadsThatSelectTheirLine) {
    GridDialog dlg;
    RunModal(dlg, [&](CDialog&) {
        CRect rc;
        dlg.grid.GetWindowRect(&rc);
        dlg.ScreenToClient(&rc);
        EXPECT_EQ(rc, dlg.placeholder);

        CStringArray texts{L"031001001001", L"镀锌钢管", L"m", L"L", L"是", L"dropped"};
        EXPECT_EQ(dlg.grid.InsertOneprop(dlg.grid.GetRowCount(), texts), 1);
        EXPECT_EQ(dlg.grid.GetRowCount(), 2);
        EXPECT_EQ(dlg.grid.GetItemText(1, 1), CString(L"031001001001"));
        EXPECT_EQ(dlg.grid.GetItemText(1, 5), CString(L"是"));
        EXPECT_EQ(dlg.grid.GetItemData(2, 1), 0); // past the last row reads 0
        EXPECT_FALSE(dlg.grid.IsValid(2, 1));
        EXPECT_TRUE(dlg.grid.GetItemState(0, 1) & GVIS_FIXED);

        dlg.grid.SetSelectedRange(1, 1, 1, 5);
        EXPECT_TRUE(dlg.grid.IsCellSelected(1, 3));
        dlg.grid.SetSelectedRange(2, 1, 2, 5); // a row that isn't there selects nothing
        EXPECT_FALSE(dlg.grid.GetSelectedCellRange().IsValid());

        EXPECT_EQ(dlg.grid.InsertRow(L"", 1), 1);
        EXPECT_EQ(dlg.grid.GetItemText(2, 1), CString(L"031001001001"));
        EXPECT_TRUE(dlg.grid.DeleteRow(1));
        EXPECT_TRUE(dlg.grid.DeleteNonFixedRows());
        EXPECT_EQ(dlg.grid.GetRowCount(), 1);
        EXPECT_TRUE(dlg.log.empty()); // no program call tells the parent anything

        // Head clicks select their line only when allowed.
        CQvGridCtrl& grid = dlg.grid;
        for (int row = 1; row <= 3; ++row)
            grid.InsertOneprop(row, CStringArray{L"A", L"名称", L"m", L"", L"否"});
        // Off, as a grid starts: a head is a cell like any other.
        grid.UserClickCell(2, 0);
        EXPECT_EQ(grid.GetSelectedCellRange(), CCellRange(2, 0, 2, 0));
        grid.UserClickCell(0, 3);
        EXPECT_EQ(grid.GetSelectedCellRange(), CCellRange(0, 3, 0, 3));

        grid.SetFixedRowSelection(TRUE);
        grid.SetFixedColumnSelection(TRUE);
        grid.UserClickCell(2, 0);
        EXPECT_EQ(grid.GetSelectedCellRange(), CCellRange(2, 1, 2, 5)) << "the row's cells";
        EXPECT_EQ(grid.GetFocusCell(), CCellID(2, 1));
        grid.UserClickCell(0, 3);
        EXPECT_EQ(grid.GetSelectedCellRange(), CCellRange(1, 3, 3, 3)) << "the column's cells";
        // The corner belongs to neither line.
        grid.UserClickCell(0, 0);
        EXPECT_EQ(grid.GetSelectedCellRange(), CCellRange(0, 0, 0, 0));
        grid.SetFixedRowSelection(FALSE);
        grid.UserClickCell(1, 0);
        EXPECT_EQ(grid.GetSelectedCellRange(), CCellRange(1, 0, 1, 0));
        // The click itself is told as on any cell.
        EXPECT_EQ(dlg.log.back(), "N50002:-2 r=1 c=0 t=");

        EXPECT_TRUE(grid.DeleteAllItems());
        EXPECT_EQ(grid.GetColumnCount(), 0);
        EXPECT_EQ(grid.GetFixedRowCount(), 0);
    });
}

TEST(UiGrid, UserEditsTellTheParentWhatChangedAndEnterWalksOn) {
    GridDialog dlg;
    RunModal(dlg, [&](CDialog&) {
        dlg.grid.InsertOneprop(1, CStringArray{L"A1", L"名称", L"m", L"", L"否"});
        dlg.grid.InsertOneprop(2, CStringArray{L"A2", L"n2", L"m", L"", L""});
        dlg.grid.SetItemState(1, 1, GVIS_READONLY);
        dlg.grid.SetItemState(2, 1, GVIS_READONLY);

        dlg.grid.UserClickCell(1, 4);
        EXPECT_EQ(dlg.log, (Log{"N50002:-2 r=1 c=4 t="}));
        EXPECT_FALSE(dlg.grid.IsEditing()); // a button cell opens no editor of its own
        EXPECT_FALSE(dlg.grid.UserEditCell(1, 4, L"1+1"));
        EXPECT_FALSE(dlg.grid.UserEditCell(1, 1, L"B2"));     // read-only
        EXPECT_FALSE(dlg.grid.UserEditCell(0, 2, L"header")); // fixed

        dlg.log.clear();
        EXPECT_TRUE(dlg.grid.UserChooseOption(1, 3, 1)); // the options function's "个"
        EXPECT_EQ(dlg.grid.GetItemText(1, 3), CString(L"个"));
        EXPECT_EQ(dlg.log, (Log{"N50002:1 r=1 c=3 t=个", "N50002:-176 r=1 c=3 t=个"}));

        // The same text again: the edit ends, but nothing changed.
        dlg.log.clear();
        EXPECT_TRUE(dlg.grid.UserEditCell(1, 3, L"个"));
        EXPECT_EQ(dlg.log, (Log{"N50002:-176 r=1 c=3 t=个"}));
        EXPECT_FALSE(dlg.grid.UserEditCell(1, 3, L"吨")); // not an option of a drop list

        // A drop-down takes any text; a plain cell takes typing.
        dlg.log.clear();
        EXPECT_TRUE(dlg.grid.UserEditCell(1, 5, L"部分"));
        EXPECT_TRUE(dlg.grid.UserEditCell(1, 2, L"新名称"));
        EXPECT_EQ(dlg.log, (Log{"N50002:1 r=1 c=5 t=部分", "N50002:-176 r=1 c=5 t=部分",
                                "N50002:1 r=1 c=2 t=新名称", "N50002:-176 r=1 c=2 t=新名称"}));

        // A handler may write the cell and the grid again inside the notice.
        dlg.log.clear();
        dlg.onNotify = [&](UINT, NMHDR* h) {
            if (h->code == static_cast<UINT>(GVN_CELLCHANGE)) {
                auto* nm = reinterpret_cast<NM_GRIDVIEW*>(h);
                dlg.grid.SetItemText(nm->iRow, 2, nm->text + L"!");
            }
        };
        EXPECT_TRUE(dlg.grid.UserChooseOption(1, 3, 0));
        EXPECT_EQ(dlg.grid.GetItemText(1, 2), CString(L"m!"));
        dlg.onNotify = nullptr;

        // Enter walks on past read-only cells, unless told not to.
        EXPECT_TRUE(dlg.grid.UserEditCell(1, 5, L"x"));
        EXPECT_EQ(dlg.grid.GetFocusCell(), CCellID(2, 2));
        dlg.grid.SetAutoEnterNext(false);
        EXPECT_TRUE(dlg.grid.UserEditCell(1, 2, L"y"));
        EXPECT_EQ(dlg.grid.GetFocusCell(), CCellID(1, 2));

        // Focus to the grid ends an open edit and keeps its text.
        dlg.log.clear();
        dlg.grid.SetFocusCell(2, 2);
        dlg.grid.UserPressKey(Qt::Key_F2);
        ASSERT_TRUE(dlg.grid.IsEditing());
        dlg.grid.SetFocus();
        EXPECT_FALSE(dlg.grid.IsEditing());
        EXPECT_EQ(dlg.log, (Log{"N50002:-176 r=2 c=2 t=n2"}));

        dlg.grid.SetEditable(FALSE);
        EXPECT_FALSE(dlg.grid.UserEditCell(1, 2, L"locked"));
        EXPECT_EQ(dlg.grid.GetItemText(1, 2), CString(L"y"));
    });
}
