// Items entering the grid from the pickers and leaving it by "删除", driven as the user does:
// a pick in the picker, the bill number dialog answered through the modal hook, rows chosen
// in the grid. The libraries are small databases made here.

#include "host/ui/QvPickers/QvPickers.h"
#include "tests/workbench/WorkbenchFixture.h"

#include <gtest/gtest.h>

using namespace workbench_test;
using koqdde::ui::ClickDlgItem;
using koqdde::ui::ModalHookScope;

namespace {

// A bill library (rule 9 and 3) whose 031001006 has no formula of its own, the quota library
// that goes with it, the quota-mode library, and calculation rules for 给水管 only.
void InstallLibraries(TestHost& host) {
    host.AddLibrary(
        L"bills",
        "INSERT INTO library (key, value) VALUES ('kind', 'bill'), ('code', '{BILL-2013}'),"
        " ('name', '清单库'), ('code_len', '9'), ('suffix_len', '3');\n"
        "INSERT INTO chapter (id, parent, position, code, name) VALUES"
        " (1, NULL, 0, '0310', '给排水'), (2, 1, 0, '031001', '管道');\n"
        "INSERT INTO bill (number, chapter, position, name, unit, unit_coefficient, annex,"
        " formula) VALUES ('031001001', 2, 0, '镀锌钢管', 'm', 1, 1, 'L*1.02'),"
        " ('031001006', 2, 1, '塑料管', '10m', 10, 0, '');\n"
        "INSERT INTO index_path (tree_path, chapter_path) VALUES"
        " ('给排水\\管道\\给水管', '0310\\031001');\n");
    host.AddLibrary(
        L"billquotas",
        "INSERT INTO library (key, value) VALUES ('kind', 'quota'), ('code', '{QUOTA-2018}');\n"
        "INSERT INTO chapter (id, parent, position, code, name) VALUES (1, NULL, 0, '10', "
        "'给排水');\nINSERT INTO quota (number, chapter, position, name, unit, "
        "unit_coefficient, annex, formula) VALUES ('10-1-2', 1, 0, '镀锌钢管螺纹连接', '10m',"
        " 10, 1, ''), ('10-1-3', 1, 1, '管道消毒', '100m', 100, 0, 'L');\n");
    host.AddLibrary(
        L"quotas",
        "INSERT INTO library (key, value) VALUES ('kind', 'quota'), ('code', '{QUOTA-2016}');\n"
        "INSERT INTO chapter (id, parent, position, code, name) VALUES (1, NULL, 0, 'A', "
        "'安装');\nINSERT INTO quota (number, chapter, position, name, unit, "
        "unit_coefficient, annex, formula) VALUES ('A-7', 1, 0, '给水管安装', 'm', 1, 0, '');\n");
    host.AddLibrary(
        L"rules",
        "INSERT INTO library (key, value) VALUES ('kind', 'rules');\n"
        "INSERT INTO calc_item (category, position, name, code, formula) VALUES"
        " ('给排水\\管道\\给水管', 0, '长度', 'CD', 'L'), ('给排水\\管道\\给水管', 1, '数量',"
        " 'SL', 'N');\n");
}

// The picker the pick button shows: the visible tool window of the workbench.
template <class Picker> Picker* ShownPicker(CDialog& dlg) {
    for (QWidget* child : dlg.widget()->findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
        if (child->isWindow() && child->isVisible())
            return dynamic_cast<Picker*>(CWnd::FromHandlePermanent(child));
    return nullptr;
}

// Picks number in the bill picker; the number dialog is answered by `answer`.
void PickBill(CDialog& dlg, const CString& number, const std::function<void(CDialog&)>& answer) {
    auto* picker = ShownPicker<CSelQdDeDlg>(dlg);
    ASSERT_NE(picker, nullptr);
    ModalHookScope hook([&](CDialog& d) {
        answer(d);
        return d.GetEndResult();
    });
    ASSERT_TRUE(picker->ChooseItem(number));
}

void SendQuota(CDialog& dlg, const CString& number, const CString& formula = L"") {
    SDeInfo quota;
    quota.nUnitCoef = 10;
    quota.nAnnex = 1;
    quota.strDeNum = number;
    quota.strName = L"镀锌钢管螺纹连接";
    quota.strUnit = L"10m";
    quota.strFormula = formula;
    EXPECT_EQ(dlg.SendMessage(CAutoConfigDlg::kPickedDe, reinterpret_cast<WPARAM>(&quota)), 0);
}

std::vector<CString> GridColumn(CDialog& dlg, int column) {
    CGridCtrl& grid = Ctl<CGridCtrl>(dlg, kGrid);
    std::vector<CString> texts;
    for (int row = 1; row < grid.GetRowCount(); ++row)
        texts.push_back(grid.GetItemText(row, column));
    return texts;
}

void SelectRows(CDialog& dlg, int first, int last) {
    CGridCtrl& grid = Ctl<CGridCtrl>(dlg, kGrid);
    grid.SetSelectedRange(first, 1, last, grid.GetColumnCount() - 1);
}

int SelectedRow(CDialog& dlg) {
    CCellRange range = Ctl<CGridCtrl>(dlg, kGrid).GetSelectedCellRange();
    return range.IsValid() && range.GetMinRow() == range.GetMaxRow() ? range.GetMinRow() : -1;
}

} // namespace

TEST(WorkbenchItems, APickedBillIsNumberedItsQuotasGoToTheSelectedRowsBillAndDeleteTakesMixedRows) {
    TestHost host;
    Catalog(host);
    InstallLibraries(host);
    RunWorkbench([&](CDialog& dlg) {
        ClickDlgItem(dlg, kAddConfig);
        ClickDlgItem(dlg, kPick);
        auto* picker = ShownPicker<CSelQdDeDlg>(dlg);
        ASSERT_NE(picker, nullptr);
        EXPECT_EQ(picker->GetTreePosition(), L"0310.031001") << "opens at the category's chapter";

        // No history: a new number, the sequence 001; the library's own formula.
        PickBill(dlg, L"031001001", [](CDialog& d) {
            EXPECT_EQ(d.GetDlgItemText(1077), L"001");
            ClickDlgItem(d, IDOK);
        });
        EXPECT_EQ(GridColumn(dlg, 1), std::vector<CString>{L"031001001001"});
        EXPECT_EQ(GridColumn(dlg, 4), std::vector<CString>{L"L*1.02"});
        EXPECT_EQ(GridColumn(dlg, 5), std::vector<CString>{L"是"});
        EXPECT_EQ(SelectedRow(dlg), 1);

        // A cancelled number dialog adds nothing; a bill without formula takes the category's
        // first calculation item's.
        PickBill(dlg, L"031001006", [](CDialog& d) { ClickDlgItem(d, IDCANCEL); });
        EXPECT_EQ(GridColumn(dlg, 1).size(), 1u);
        PickBill(dlg, L"031001006", [](CDialog& d) { ClickDlgItem(d, IDOK); });
        EXPECT_EQ(GridColumn(dlg, 1), (std::vector<CString>{L"031001001001", L"031001006001"}));
        EXPECT_EQ(GridColumn(dlg, 4), (std::vector<CString>{L"L*1.02", L"L"}));
        EXPECT_EQ(GridColumn(dlg, 5), (std::vector<CString>{L"是", L"否"}));
        EXPECT_EQ(SelectedRow(dlg), 2);

        // A quota goes to the bill of the one selected row, a quota row's bill included;
        // the same quota twice gives two rows, the last one selected.
        Ctl<CGridCtrl>(dlg, kGrid).UserClickCell(1, 1);
        SendQuota(dlg, L"10-1-2");
        EXPECT_EQ(GridColumn(dlg, 1),
                  (std::vector<CString>{L"031001001001", L"10-1-2", L"031001006001"}));
        EXPECT_EQ(SelectedRow(dlg), 2);
        SendQuota(dlg, L"10-1-2", L"L*2");
        EXPECT_EQ(GridColumn(dlg, 1),
                  (std::vector<CString>{L"031001001001", L"10-1-2", L"10-1-2", L"031001006001"}));
        EXPECT_EQ(SelectedRow(dlg), 3);
        EXPECT_EQ(GridColumn(dlg, 4), (std::vector<CString>{L"L*1.02", L"L", L"L*2", L"L"}));

        // Two rows, or none: nothing happens and nothing is said.
        SelectRows(dlg, 1, 2);
        SendQuota(dlg, L"10-1-3");
        Ctl<CGridCtrl>(dlg, kGrid).SetSelectedRange(-1, -1, -1, -1);
        SendQuota(dlg, L"10-1-3");
        EXPECT_EQ(GridColumn(dlg, 1).size(), 4u);
        EXPECT_TRUE(host.messages.Messages().empty());

        // 删除 takes a quota with the next bill, and selects the row above the lowest one.
        SelectRows(dlg, 3, 4);
        ClickDlgItem(dlg, kDeleteRows);
        EXPECT_EQ(GridColumn(dlg, 1), (std::vector<CString>{L"031001001001", L"10-1-2"}));
        EXPECT_EQ(GridColumn(dlg, 4), (std::vector<CString>{L"L*1.02", L"L"}));
        EXPECT_EQ(SelectedRow(dlg), 2);

        // A category without calculation items: the warning once for each item without a
        // formula, and the item all the same.
        SelectLeaf(dlg, {L"管道", L"排水管"});
        ClickDlgItem(dlg, kAddConfig);
        PickBill(dlg, L"031001006", [](CDialog& d) { ClickDlgItem(d, IDOK); });
        Ctl<CGridCtrl>(dlg, kGrid).UserClickCell(1, 1);
        SendQuota(dlg, L"10-1-2");
        SendQuota(dlg, L"10-1-3", L"L");
        EXPECT_EQ(GridColumn(dlg, 1),
                  (std::vector<CString>{L"031001006001", L"10-1-2", L"10-1-3"}));
        EXPECT_EQ(GridColumn(dlg, 4), (std::vector<CString>{L"", L"", L"L"}));

        // A bill with its own quota: the bill goes first, the quota's delete finds nothing.
        SelectRows(dlg, 1, 2);
        ClickDlgItem(dlg, kDeleteRows);
        EXPECT_EQ(GridColumn(dlg, 1), std::vector<CString>{});
        EXPECT_EQ(SelectedRow(dlg), 0) << "deleting row 1 leaves the header selected";
        EXPECT_EQ(host.messages.Texts(),
                  (std::vector<CString>{L"计算规则不对应!", L"计算规则不对应!"}))
            << "and deleting asks nothing";
        PressEsc(dlg);
    });

    // What reached the file: the records as the library gave them, with the project's codes.
    CQdDeConfigPresenter presenter;
    ConfigNode* water = SavedConfigs(presenter, Category(1, 101))[0];
    ASSERT_EQ(water->GetQd().size(), 1u);
    const QdStruct& steel = water->GetQd(1)->m_qd;
    EXPECT_EQ(steel.strQdId, L"031001001001");
    EXPECT_EQ(steel.strQdCode, L"{BILL-2013}");
    EXPECT_EQ(steel.strAnnex, L"是");
    const DeStruct& quota = water->GetQd(1)->GetDe(1)->m_de;
    EXPECT_EQ(quota.strDeCode, L"{QUOTA-2018}");
    EXPECT_EQ(quota.strUnitCode, L"10");
    EXPECT_EQ(quota.strAnnex, L"是");
}

TEST(WorkbenchItems, QuotaModeTakesQuotasFromItsPickerAndDeleteTakesQuotaRows) {
    TestHost host;
    Catalog(host, 1);
    InstallLibraries(host);
    RunWorkbench([&](CDialog& dlg) {
        ClickDlgItem(dlg, kAddConfig);
        ClickDlgItem(dlg, kPick);
        auto* picker = ShownPicker<CSelDeDlg>(dlg);
        ASSERT_NE(picker, nullptr);
        picker->SearchFor(L"给水");
        for (int i = 0; i < 3; ++i)
            ASSERT_TRUE(picker->ChooseItem(L"A-7"));
        EXPECT_EQ(GridColumn(dlg, 1), (std::vector<CString>{L"A-7", L"A-7", L"A-7"}));
        EXPECT_EQ(GridColumn(dlg, 4), (std::vector<CString>{L"L", L"L", L"L"}));
        ClickDlgItem(dlg, kPick);
        EXPECT_FALSE(picker->IsWindowVisible()) << "the button hides the picker again";

        SelectRows(dlg, 2, 3);
        ClickDlgItem(dlg, kDeleteRows);
        EXPECT_EQ(GridColumn(dlg, 1), std::vector<CString>{L"A-7"});
        EXPECT_EQ(SelectedRow(dlg), 1);
        Ctl<CGridCtrl>(dlg, kGrid).SetSelectedRange(-1, -1, -1, -1);
        ClickDlgItem(dlg, kDeleteRows);
        EXPECT_EQ(GridColumn(dlg, 1), std::vector<CString>{L"A-7"});
        EXPECT_EQ(SelectedRow(dlg), 1) << "with nothing selected, row 1";
        PressEsc(dlg);
    });
    CQdDeConfigPresenter presenter;
    ConfigNode* water = SavedConfigs(presenter, Category(1, 101))[0];
    ASSERT_EQ(water->GetDe().size(), 1u);
    EXPECT_EQ(water->GetDe(1)->m_de.strDeCode, L"{QUOTA-2016}");
}
