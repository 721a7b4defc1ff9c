// The workbench driven by control id as a user drives it, on a host world built here.

#include "host/ui/KoCommonUi/KoCommonUi.h"
#include "platform/FileSystem.h"
#include "presenter/CAutoQdDeConfigFacade.h"
#include "tests/workbench/WorkbenchFixture.h"
#include "ui/QtString.h"

#include <QFontMetrics>
#include <QWidget>

using koqdde::ui::ClickDlgItem;
using koqdde::ui::ModalHookScope;

using namespace workbench_test;

TEST(Workbench, OpensOnAFreshConfigurationFolder) {
    TestHost host;
    Catalog(host);
    RunWorkbench([&](CDialog& dlg) {
        EXPECT_EQ(dlg.GetWindowText(), L"自动套配置-[ 清单模式: DefaultConfig ]");
        EXPECT_EQ(dlg.GetDlgItem(kPick)->GetWindowText(), L"套清单>>");

        // Only the current specialty, expanded, without wiring categories; the first leaf is
        // selected.
        CTreeCtrl& tree = Ctl<CTreeCtrl>(dlg, kTree);
        HTREEITEM root = tree.GetRootItem();
        EXPECT_EQ(tree.GetItemText(root), L"给排水");
        EXPECT_EQ(tree.GetNextSiblingItem(root), nullptr);
        HTREEITEM pipes = tree.GetChildItem(root);
        EXPECT_TRUE(tree.IsExpanded(pipes));
        std::vector<CString> leaves;
        for (HTREEITEM item = tree.GetChildItem(pipes); item; item = tree.GetNextSiblingItem(item))
            leaves.push_back(tree.GetItemText(item));
        EXPECT_EQ(leaves, (std::vector<CString>{L"给水管", L"排水管"}));
        EXPECT_EQ(tree.GetSelectedItem(), tree.GetChildItem(pipes));

        // The fresh category has its default configuration only, selected, and locked.
        EXPECT_EQ(Column(dlg, 0), std::vector<CString>{L"1"});
        EXPECT_EQ(Column(dlg, 1), std::vector<CString>{L"其它"});
        EXPECT_EQ(SelectedConfigRow(dlg), 0);
        for (int id : {kAttributeList, kConditionList, kConditionAdd, kConditionDelete, kValue,
                       kCopyConfig, kDelConfig})
            EXPECT_FALSE(Enabled(dlg, id)) << id;
        for (int id : {kAddConfig, kMoveUp, kMoveDown, kPick, kDeleteRows})
            EXPECT_TRUE(Enabled(dlg, id)) << id;

        // Attributes of the category, then the whole component.
        EXPECT_EQ(
            ItemTexts(dlg, kAttributeList),
            (std::vector<CString>{L"材质", L"管径(mm)", L"保温材质", L"系统编号", L"具体构件"}));
        EXPECT_EQ(Ctl<CListBox>(dlg, kAttributeList).GetCurSel(), 0);
        EXPECT_EQ(ItemTexts(dlg, kValue), (std::vector<CString>{L"镀锌钢管", L"PP-R管"}))
            << "the drop-down list of 材质";
        EXPECT_EQ(ItemTexts(dlg, kConditionList), std::vector<CString>{});

        // Page 取值 shows, page 范围 waits hidden.
        EXPECT_EQ(Ctl<CTabCtrl>(dlg, kValueTab).GetCurSel(), 0);
        EXPECT_TRUE(dlg.GetDlgItem(kValue)->IsWindowVisible());
        EXPECT_FALSE(dlg.GetDlgItem(kRange1)->IsWindowVisible());

        // A pipe category: six columns, with the fittings column.
        CGridCtrl& grid = Ctl<CGridCtrl>(dlg, kGrid);
        EXPECT_EQ(grid.GetRowCount(), 1);
        EXPECT_EQ(grid.GetItemText(0, 1), L"清单/定额编号");
        EXPECT_EQ(grid.GetItemText(0, 5), L"带管道配件");

        PressEsc(dlg);
        EXPECT_TRUE(dlg.IsEnded());
        EXPECT_EQ(dlg.GetEndResult(), IDCANCEL);
    });
    EXPECT_TRUE(PathExists(host.DefaultConfigFile()));
    EXPECT_TRUE(host.messages.Messages().empty());
}

TEST(Workbench, SelectingCategoriesRowsAndAttributesRebuildsThePanes) {
    TestHost host;
    Catalog(host);
    // Attribute settings: an identifier is not comparable, a diameter is; 保温材质 has no type
    // and so no setting.
    host.dir.Write(L"config/AttributeInformation.xml",
                   "<?xml version=\"1.0\" encoding=\"UTF-8\"?><属性参数信息>"
                   "<CZ type=\"1\"/><GJ type=\"9\"/><XTBH type=\"10\"/></属性参数信息>");
    CAutoQdDeConfigFacade::AttrConfig();
    {
        CQdDeConfigPresenter presenter;
        int id = -1;
        ASSERT_TRUE(presenter.AddConfig(Category(1, 101), id));
        ASSERT_TRUE(presenter.AddCondition(
            Category(1, 101, id), {L"材质", L"1", L"＝", L"", L"", L"镀锌钢管", L"", L""}));
        ASSERT_TRUE(presenter.Save());
    }
    RunWorkbench([&](CDialog& dlg) {
        EXPECT_EQ(Column(dlg, 1), (std::vector<CString>{L"材质＝镀锌钢管;", L"其它"}));
        EXPECT_EQ(ItemTexts(dlg, kConditionList), std::vector<CString>{L"材质＝镀锌钢管"});
        EXPECT_TRUE(Enabled(dlg, kCopyConfig));
        EXPECT_TRUE(Enabled(dlg, kConditionAdd));

        // The default row locks the editor and the copy and delete commands.
        Ctl<CListCtrl>(dlg, kConfigList).UserClickItem(1);
        EXPECT_EQ(ItemTexts(dlg, kConditionList), std::vector<CString>{});
        EXPECT_FALSE(Enabled(dlg, kCopyConfig));
        EXPECT_FALSE(Enabled(dlg, kDelConfig));
        EXPECT_FALSE(Enabled(dlg, kConditionAdd));
        Ctl<CListCtrl>(dlg, kConfigList).UserClickItem(0);
        EXPECT_TRUE(Enabled(dlg, kDelConfig));

        // A click on the empty part clears the selection and leaves the panes as they were.
        Ctl<CListCtrl>(dlg, kConfigList).UserClickEmpty();
        EXPECT_EQ(SelectedConfigRow(dlg), -1);
        EXPECT_EQ(ItemTexts(dlg, kConditionList), std::vector<CString>{L"材质＝镀锌钢管"});
        Ctl<CListCtrl>(dlg, kConfigList).UserClickItem(0);

        // Attributes: a drop-down list, free text, the whole component.
        ChooseAttribute(dlg, L"管径(mm)");
        EXPECT_EQ(ItemTexts(dlg, kValue), (std::vector<CString>{L"DN15", L"DN20"}));
        EXPECT_TRUE(Enabled(dlg, kValueTab)) << "comparable";
        Ctl<CComboBox>(dlg, kValue).UserType(L"DN25");
        Ctl<CTabCtrl>(dlg, kValueTab).UserSelect(1);
        EXPECT_TRUE(dlg.GetDlgItem(kRange1)->IsWindowVisible());
        EXPECT_FALSE(dlg.GetDlgItem(kValue)->IsWindowVisible());
        Ctl<CComboBox>(dlg, kRange1).UserType(L"15");

        // Not comparable: back to page 取值, and the tab is locked there.
        ChooseAttribute(dlg, L"系统编号");
        EXPECT_EQ(ItemTexts(dlg, kValue), std::vector<CString>{});
        EXPECT_EQ(Ctl<CComboBox>(dlg, kValue).GetWindowText(), L"")
            << "a change of attribute drops what was typed";
        EXPECT_EQ(Ctl<CTabCtrl>(dlg, kValueTab).GetCurSel(), 0);
        EXPECT_TRUE(dlg.GetDlgItem(kValue)->IsWindowVisible());
        EXPECT_FALSE(Enabled(dlg, kValueTab));

        // No setting recorded: the tab is free and keeps its page.
        ChooseAttribute(dlg, L"保温材质");
        EXPECT_TRUE(Enabled(dlg, kValueTab));
        Ctl<CTabCtrl>(dlg, kValueTab).UserSelect(1);
        ChooseAttribute(dlg, L"具体构件");
        EXPECT_EQ(Ctl<CTabCtrl>(dlg, kValueTab).GetCurSel(), 1);
        EXPECT_TRUE(Enabled(dlg, kValueTab));
        EXPECT_EQ(Ctl<CComboBox>(dlg, kRange1).GetWindowText(), L"15")
            << "the bounds survive every change";

        // Another leaf: its own configurations, attributes and a five-column grid.
        SelectLeaf(dlg, {L"管道", L"排水管"});
        EXPECT_EQ(Column(dlg, 1), std::vector<CString>{L"其它"});
        EXPECT_EQ(ItemTexts(dlg, kAttributeList), (std::vector<CString>{L"材质", L"具体构件"}));
        EXPECT_EQ(ItemTexts(dlg, kValue), (std::vector<CString>{L"UPVC管", L"铸铁管"}));
        EXPECT_EQ(Ctl<CGridCtrl>(dlg, kGrid).GetColumnCount(), 5);
        EXPECT_EQ(Ctl<CComboBox>(dlg, kRange1).GetWindowText(), L"15");

        // A large category changes nothing on the right, and the commands that need a leaf
        // do nothing.
        SelectLeaf(dlg, {L"阀门"});
        EXPECT_EQ(Column(dlg, 1), std::vector<CString>{L"其它"});
        EXPECT_EQ(ItemTexts(dlg, kAttributeList), (std::vector<CString>{L"材质", L"具体构件"}));
        ClickDlgItem(dlg, kAddConfig);
        EXPECT_EQ(Column(dlg, 1), std::vector<CString>{L"其它"});

        SelectLeaf(dlg, {L"阀门", L"阀门"});
        EXPECT_EQ(ItemTexts(dlg, kAttributeList), std::vector<CString>{L"具体构件"});
        EXPECT_EQ(Ctl<CGridCtrl>(dlg, kGrid).GetColumnCount(), 5);
    });
    EXPECT_TRUE(host.messages.Messages().empty());
}

TEST(Workbench, MeasuredAttributesFollowTheCategoryRules) {
    TestHost host;
    host.data.project.currentSpec = L"电气";
    host.Add(L"电气", L"配电箱柜", L"配电箱柜");
    host.Add(L"电气", L"配电箱柜", L"元件装置");
    host.Add(L"电气", L"电缆桥架", L"桥架");
    host.Add(L"电气", L"配管配线", L"导线·导管");
    host.Add(L"电气", L"配管配线", L"线槽配线");
    RunWorkbench([&](CDialog& dlg) {
        EXPECT_EQ(ItemTexts(dlg, kAttributeList),
                  (std::vector<CString>{L"半周长(mm)", L"具体构件"}));
        SelectLeaf(dlg, {L"配电箱柜", L"元件装置"});
        EXPECT_EQ(ItemTexts(dlg, kAttributeList), std::vector<CString>{L"具体构件"});
        SelectLeaf(dlg, {L"电缆桥架", L"桥架"});
        EXPECT_EQ(ItemTexts(dlg, kAttributeList),
                  (std::vector<CString>{L"宽+高(mm)", L"宽+高×2(mm)", L"具体构件"}));
        CTreeCtrl& tree = Ctl<CTreeCtrl>(dlg, kTree);
        HTREEITEM wiring = FindItem(tree, {L"配管配线"});
        EXPECT_EQ(tree.GetItemText(tree.GetChildItem(wiring)), L"线槽配线");
        EXPECT_EQ(tree.GetNextSiblingItem(tree.GetChildItem(wiring)), nullptr);
    });

    TestHost hvac;
    hvac.data.project.currentSpec = L"暖通";
    hvac.Add(L"暖通", L"风管", L"矩形风管");
    hvac.Add(L"暖通", L"风管部件", L"风阀");
    RunWorkbench([&](CDialog& dlg) {
        const std::vector<CString> duct{L"周长(mm)", L"长边(mm)", L"直径(mm)", L"具体构件"};
        EXPECT_EQ(ItemTexts(dlg, kAttributeList), duct);
        SelectLeaf(dlg, {L"风管部件", L"风阀"});
        EXPECT_EQ(ItemTexts(dlg, kAttributeList), duct) << "a substring test on the path";
    });
}

TEST(Workbench, ConditionsAreAddedReplacedAndDeletedUnderTheRangeRules) {
    TestHost host;
    Catalog(host);
    RunWorkbench([&](CDialog& dlg) {
        ClickDlgItem(dlg, kAddConfig);
        ASSERT_EQ(Column(dlg, 1), (std::vector<CString>{L"", L"其它"}));
        ASSERT_EQ(SelectedConfigRow(dlg), 0) << "the new configuration";
        ASSERT_TRUE(Enabled(dlg, kConditionAdd));

        // Page 取值: an empty value is refused; a value is added, a second one replaces it.
        ChooseAttribute(dlg, L"材质");
        ClickDlgItem(dlg, kConditionAdd);
        EXPECT_EQ(ItemTexts(dlg, kConditionList), std::vector<CString>{});
        CComboBox& op = Ctl<CComboBox>(dlg, kEqualOp);
        op.UserSelect(op.FindStringExact(-1, L"＝"));
        Ctl<CComboBox>(dlg, kValue).UserSelect(0);
        ClickDlgItem(dlg, kConditionAdd);
        EXPECT_EQ(ItemTexts(dlg, kConditionList), std::vector<CString>{L"材质＝镀锌钢管"});
        EXPECT_EQ(Column(dlg, 1)[0], L"材质＝镀锌钢管;");
        EXPECT_EQ(SelectedConfigRow(dlg), 0);
        Ctl<CComboBox>(dlg, kValue).UserType(L"不锈钢管");
        ClickDlgItem(dlg, kConditionAdd);
        EXPECT_EQ(ItemTexts(dlg, kConditionList), std::vector<CString>{L"材质＝不锈钢管"});

        // Page 范围: a range the shared rules refuse (empty, too narrow) adds nothing; one they
        // take shows low to high, and a lower bound that is no number reads 0.
        ChooseAttribute(dlg, L"管径(mm)");
        Ctl<CTabCtrl>(dlg, kValueTab).UserSelect(1);
        CComboBox& lower = Ctl<CComboBox>(dlg, kRange1);
        CComboBox& upper = Ctl<CComboBox>(dlg, kRange2);
        CComboBox& lowerOp = Ctl<CComboBox>(dlg, kRangeOp1);
        CComboBox& upperOp = Ctl<CComboBox>(dlg, kRangeOp2);
        lowerOp.UserSelect(lowerOp.FindStringExact(-1, L"＞"));
        upperOp.UserSelect(upperOp.FindStringExact(-1, L"≤"));
        for (auto [low, high] : {std::pair{L"", L""}, {L"10", L"10.01"}, {L"约", L"50"}}) {
            EXPECT_EQ(ItemTexts(dlg, kConditionList).size(), 1u) << "nothing added yet";
            lower.UserType(low);
            upper.UserType(high);
            ClickDlgItem(dlg, kConditionAdd);
        }
        EXPECT_EQ(ItemTexts(dlg, kConditionList),
                  (std::vector<CString>{L"材质＝不锈钢管", L"约＜管径(mm)≤50"}));
        // One open bound: any text goes, the other side's operator is still stored.
        lower.UserType(L"大");
        upper.UserType(L"");
        ClickDlgItem(dlg, kConditionAdd);
        EXPECT_EQ(ItemTexts(dlg, kConditionList)[1], L"管径(mm)＞大");

        // The search for an attribute's condition is by substring: 材质 finds 保温材质's row
        // when that row comes first.
        Ctl<CListBox>(dlg, kConditionList).UserSelect(0);
        ClickDlgItem(dlg, kConditionDelete);
        EXPECT_EQ(ItemTexts(dlg, kConditionList), std::vector<CString>{L"管径(mm)＞大"});
        ChooseAttribute(dlg, L"保温材质");
        Ctl<CTabCtrl>(dlg, kValueTab).UserSelect(0);
        Ctl<CComboBox>(dlg, kValue).UserType(L"橡塑");
        ClickDlgItem(dlg, kConditionAdd);
        ChooseAttribute(dlg, L"材质");
        Ctl<CComboBox>(dlg, kValue).UserSelect(1);
        ClickDlgItem(dlg, kConditionAdd);
        EXPECT_EQ(ItemTexts(dlg, kConditionList),
                  (std::vector<CString>{L"管径(mm)＞大", L"材质＝PP-R管"}));

        // The whole component takes a range as well.
        ChooseAttribute(dlg, L"具体构件");
        Ctl<CTabCtrl>(dlg, kValueTab).UserSelect(1);
        lower.UserType(L"");
        upper.UserType(L"3");
        ClickDlgItem(dlg, kConditionAdd);
        EXPECT_EQ(ItemTexts(dlg, kConditionList).size(), 3u);
        PressEsc(dlg);
    });

    CQdDeConfigPresenter presenter;
    auto configs = SavedConfigs(presenter, Category(1, 101));
    ASSERT_EQ(configs.size(), 2u);
    EXPECT_EQ(configs[0]->GetConditionString(), L"管径(mm)＞大;材质＝PP-R管;具体构件≤3;");
    ConditionNode* open = configs[0]->GetCondition()[0];
    EXPECT_EQ(open->GetRangeOperator2(), L"≤") << "the open side's operator is kept";
    EXPECT_EQ(open->GetRange2(), L"");
}

TEST(Workbench, ValueListWidensToItsLongestOptionAndTheUpperBoundKeepsToItsWidth) {
    TestHost host;
    Catalog(host);
    const CString longOption = L"衬塑钢管沟槽连接（内衬聚乙烯）";
    host.data.dropLists[L"给水管材质"].Add(longOption);
    RunWorkbench([&](CDialog& dlg) {
        ClickDlgItem(dlg, kAddConfig);
        CComboBox& value = Ctl<CComboBox>(dlg, kValue);
        const int boxWidth = value.GetWindowRect().Width();
        EXPECT_GE(value.GetDroppedWidth(), boxWidth) << "never narrower than the box";
        ChooseAttribute(dlg, L"材质");
        const QFontMetrics metrics(value.widget()->font());
        const int textWidth = metrics.horizontalAdvance(koqdde::ui::ToQString(longOption));
        ASSERT_GT(textWidth, boxWidth) << "the option must be wider than the box";
        EXPECT_GT(value.GetDroppedWidth(), textWidth);
        value.UserDropDown();
        EXPECT_GT(value.GetDroppedWidth(), textWidth) << "the open list is as wide";
        value.UserCloseUp();
        // It never narrows: an attribute with short options leaves it as wide.
        const int widened = value.GetDroppedWidth();
        ChooseAttribute(dlg, L"管径(mm)");
        EXPECT_EQ(value.GetDroppedWidth(), widened);

        // The upper bound takes no more than its width shows; the lower bound scrolls.
        Ctl<CTabCtrl>(dlg, kValueTab).UserSelect(1);
        const CString digits = L"1234567890123456789012345678901234567890";
        CComboBox& upper = Ctl<CComboBox>(dlg, kRange2);
        CComboBox& lower = Ctl<CComboBox>(dlg, kRange1);
        upper.UserType(L"50");
        upper.UserType(digits);
        EXPECT_EQ(upper.GetWindowText(), L"50") << "a text past the field's width is refused";
        lower.UserType(digits);
        EXPECT_EQ(lower.GetWindowText(), digits);
        PressEsc(dlg);
    });
}

namespace {

// 给水管: a new configuration (id 2, first in the list) and the default one with
//   bill 1 "031001001001" of this library, with quota 1 of the bill's quota library and
//        quota 2 of another library,
//   bill 2 of another bill library,
//   bill 3 "031001006001" with the unit " 20m",
//   quota 1 directly under the configuration (the quota mode's library);
// 排水管: the default configuration with a bill that carries pipe fittings.
void BillsAndQuotas() {
    CQdDeConfigPresenter presenter;
    int id = -1;
    ASSERT_TRUE(presenter.AddConfig(Category(1, 101), id));
    CPath water = Category(1, 101, 1);
    std::vector<ConfigNode*> configs;
    ASSERT_TRUE(
        presenter.AddQd(Bill(L"031001001001", L"镀锌钢管", L"m", kBillLib, L"是"), water, configs));
    ASSERT_TRUE(presenter.AddQd(Bill(L"031001002001", L"钢管", L"m", L"{OTHER}"), water, configs));
    ASSERT_TRUE(
        presenter.AddQd(Bill(L"031001006001", L"塑料管", L" 20m", kBillLib), water, configs));
    CPath bill1 = water;
    bill1.QdId = 1;
    ASSERT_TRUE(
        presenter.AddDe2QdNode(Quota(L"10-1", L"镀锌钢管安装", kBillQuotaLib), bill1, configs));
    ASSERT_TRUE(presenter.AddDe2QdNode(Quota(L"X-9", L"外省定额", L"{OTHER}"), bill1, configs));
    ASSERT_TRUE(presenter.AddDe2ConfigNode(Quota(L"Z-1", L"管道安装", kQuotaLib), water, configs));
    ASSERT_TRUE(presenter.AddDe2ConfigNode(Quota(L"Z-2", L"外省管道", L"{OTHER}"), water, configs));
    ASSERT_TRUE(presenter.AddQd(Bill(L"031001005001", L"铸铁管", L"m", kBillLib, L"是"),
                                Category(1, 103, 1), configs));
    ASSERT_TRUE(presenter.Save());
}

void ClickConfigRow(CDialog& dialog, int row) {
    Ctl<CListCtrl>(dialog, kConfigList).UserClickItem(row);
}

} // namespace

TEST(WorkbenchGrid, BillModeShowsThisLibrarysItemsAndCommitsChoicesAtOnceAndTypingOnLeaving) {
    TestHost host;
    Catalog(host);
    BillsAndQuotas();
    RunWorkbench([&](CDialog& dlg) {
        CGridCtrl& grid = Ctl<CGridCtrl>(dlg, kGrid);
        EXPECT_EQ(grid.GetRowCount(), 1) << "the new, empty configuration comes first";
        ClickConfigRow(dlg, 1);

        ASSERT_EQ(grid.GetRowCount(), 4);
        EXPECT_EQ(grid.GetColumnCount(), 6);
        EXPECT_EQ(grid.GetSelectedCellRange(), CCellRange(1, 1, 1, 5)) << "the first bill row";
        EXPECT_EQ(grid.GetFocusCell(), CCellID(1, 1));
        const CString expected[3][6] = {{L"", L"031001001001", L"镀锌钢管", L"m", L"L", L"是"},
                                        {L"", L"10-1", L"镀锌钢管安装", L"10m", L"L", L"否"},
                                        {L"", L"031001006001", L"塑料管", L" 20m", L"L", L""}};
        for (int row = 1; row <= 3; ++row) {
            for (int col = 1; col < 6; ++col)
                EXPECT_EQ(grid.GetItemText(row, col), expected[row - 1][col]) << row << "," << col;
            EXPECT_FALSE(grid.UserEditCell(row, 1, L"999")) << "the number is read-only";
        }
        // Bill rows are tinted from the number to the formula.
        for (int col = 1; col <= 4; ++col) {
            EXPECT_EQ(grid.GetItemBkColour(1, col), MyGridCtrl::kBillBk) << col;
            EXPECT_NE(grid.GetItemBkColour(2, col), MyGridCtrl::kBillBk) << col;
        }
        EXPECT_NE(grid.GetItemBkColour(1, 5), MyGridCtrl::kBillBk);

        // A unit is chosen from the list and committed at once; a typed name waits and is lost
        // when the configuration row changes.
        EXPECT_TRUE(grid.UserChooseOption(2, 3, 1));
        EXPECT_TRUE(grid.UserEditCell(2, 2, L"改过的名称"));
        ClickConfigRow(dlg, 0);
        EXPECT_EQ(grid.GetRowCount(), 1);
        ClickConfigRow(dlg, 1);
        EXPECT_EQ(grid.GetItemText(2, 3), L"m2");
        EXPECT_EQ(grid.GetItemText(2, 2), L"镀锌钢管安装");

        // The calculator: a formula that does not parse is refused in the dialog; the answer
        // replaces the cell and commits the whole row at once, typed name included.
        int calculatorRuns = 0;
        CString refusal;
        {
            ModalHookScope calculator([&](CDialog& calc) {
                ++calculatorRuns;
                EXPECT_EQ(calc.GetDlgItemText(CalculatorIds::kFormula), L"L");
                EXPECT_GT(Ctl<CListBox>(calc, CalculatorIds::kVariables).GetCount(), 0);
                koqdde::ui::TypeDlgItem(calc, CalculatorIds::kFormula, L"L*(2+");
                ClickDlgItem(calc, IDOK);
                EXPECT_FALSE(calc.IsEnded());
                refusal = calc.GetDlgItemText(CalculatorIds::kError);
                koqdde::ui::TypeDlgItem(calc, CalculatorIds::kFormula, L"L * 2 + N");
                ClickDlgItem(calc, IDOK);
                return calc.GetEndResult();
            });
            EXPECT_TRUE(grid.UserEditCell(1, 2, L"热镀锌钢管"));
            grid.UserClickCell(1, 4);
        }
        EXPECT_EQ(calculatorRuns, 1);
        EXPECT_FALSE(refusal.IsEmpty());
        EXPECT_EQ(grid.GetItemText(1, 4), L"L * 2 + N");
        ClickConfigRow(dlg, 0);
        ClickConfigRow(dlg, 1);
        EXPECT_EQ(grid.GetItemText(1, 4), L"L * 2 + N");
        EXPECT_EQ(grid.GetItemText(1, 2), L"热镀锌钢管");

        // An answer that leaves the formula as it was commits nothing; cancel neither.
        EXPECT_TRUE(grid.UserEditCell(3, 2, L"不会保存"));
        for (const wchar_t* typed : {L"", L"N"}) {
            ModalHookScope calculator([&](CDialog& calc) {
                if (*typed)
                    koqdde::ui::TypeDlgItem(calc, CalculatorIds::kFormula, typed);
                ClickDlgItem(calc, *typed ? IDCANCEL : IDOK);
                return calc.GetEndResult();
            });
            grid.UserClickCell(3, 4);
        }
        EXPECT_EQ(grid.GetItemText(3, 4), L"L");
        ClickConfigRow(dlg, 0);
        ClickConfigRow(dlg, 1);
        EXPECT_EQ(grid.GetItemText(3, 2), L"塑料管");

        // Away to another leaf and back: the rows were committed on the way out.
        EXPECT_TRUE(grid.UserEditCell(3, 2, L"PE管"));
        EXPECT_TRUE(grid.UserEditCell(1, 5, L"否"));
        SelectLeaf(dlg, {L"管道", L"排水管"});
        EXPECT_EQ(grid.GetColumnCount(), 5);
        ASSERT_EQ(grid.GetRowCount(), 2);
        EXPECT_TRUE(grid.UserEditCell(1, 2, L"柔性铸铁管"));
        SelectLeaf(dlg, {L"管道"});
        EXPECT_EQ(grid.GetItemText(1, 2), L"柔性铸铁管") << "a large category leaves the grid";
        SelectLeaf(dlg, {L"管道", L"给水管"});
        ClickConfigRow(dlg, 1);
        EXPECT_EQ(grid.GetItemText(3, 2), L"PE管");

        // An edit left in the grid is committed by the way out.
        EXPECT_TRUE(grid.UserEditCell(2, 2, L"钢管安装"));
        PressEsc(dlg);
    });
    EXPECT_TRUE(host.messages.Messages().empty());

    CQdDeConfigPresenter presenter;
    auto configs = SavedConfigs(presenter, Category(1, 101));
    ASSERT_EQ(configs.size(), 2u);
    ConfigNode* fallback = configs[1];
    QdNode* bill = fallback->GetQd(1);
    ASSERT_NE(bill, nullptr);
    EXPECT_EQ(bill->m_qd.strName, L"热镀锌钢管");
    EXPECT_EQ(bill->m_qd.strFormula, L"L * 2 + N");
    EXPECT_EQ(bill->m_qd.strUnitCode, L"1") << "a unit without a number counts 1";
    EXPECT_EQ(bill->m_qd.strQdIdUser, L"") << "a commit writes the whole record";
    EXPECT_EQ(bill->m_qd.strAnnex, L"否");
    ASSERT_EQ(bill->GetDe().size(), 2u) << "the other library's quota stays";
    EXPECT_EQ(bill->GetDe(1)->m_de.strName, L"钢管安装");
    EXPECT_EQ(bill->GetDe(1)->m_de.strUnit, L"m2");
    EXPECT_EQ(bill->GetDe(1)->m_de.strUnitCode, L"1");
    EXPECT_EQ(bill->GetDe(1)->m_de.strDeCode, kBillQuotaLib);
    EXPECT_EQ(bill->GetDe(2)->m_de.strName, L"外省定额");
    EXPECT_EQ(fallback->GetQd(2)->m_qd.strQdIdUser, L"user-031001002001") << "no row, no commit";
    EXPECT_EQ(fallback->GetQd(3)->m_qd.strUnitCode, L"20") << "the unit \" 20m\" counts 20";
    EXPECT_EQ(fallback->GetQd(3)->m_qd.strName, L"PE管");
    EXPECT_EQ(fallback->GetDe(1)->m_de.strUnitCode, L"10") << "not shown in the bill mode";
    ConfigNode* drain = SavedConfigs(presenter, Category(1, 103))[0];
    EXPECT_EQ(drain->GetQd(1)->m_qd.strName, L"柔性铸铁管");
    EXPECT_EQ(drain->GetQd(1)->m_qd.strAnnex, L"") << "a five-column grid has no fittings";
}

TEST(WorkbenchGrid, QuotaModeShowsTheConfigurationsOwnQuotas) {
    TestHost host;
    Catalog(host, 1);
    BillsAndQuotas();
    RunWorkbench([&](CDialog& dlg) {
        EXPECT_EQ(dlg.GetWindowText(), L"自动套配置-[ 定额模式: DefaultConfig ]");
        EXPECT_EQ(dlg.GetDlgItem(kPick)->GetWindowText(), L"套定额>>");
        CGridCtrl& grid = Ctl<CGridCtrl>(dlg, kGrid);
        EXPECT_EQ(grid.GetItemText(0, 1), L"定额编号");
        EXPECT_EQ(grid.GetItemText(0, 2), L"定额名称");
        ClickConfigRow(dlg, 1);
        ASSERT_EQ(grid.GetRowCount(), 2) << "only the quota of this library, no bills";
        EXPECT_EQ(grid.GetItemText(1, 1), L"Z-1");
        EXPECT_EQ(grid.GetItemData(1, 1), 1);
        EXPECT_NE(grid.GetItemBkColour(1, 1), MyGridCtrl::kBillBk);
        CStringArray units = grid.GetCellOptions(1, 3);
        EXPECT_TRUE(grid.UserChooseOption(1, 3, 5));
        EXPECT_EQ(grid.GetItemText(1, 3), units[5]);
        PressEsc(dlg);
    });
    CQdDeConfigPresenter presenter;
    ConfigNode* water = SavedConfigs(presenter, Category(1, 101))[1];
    EXPECT_EQ(water->GetDe(1)->m_de.strUnit, L"个");
    EXPECT_EQ(water->GetDe(1)->m_de.strUnitCode, L"1");
    EXPECT_EQ(water->GetDe(1)->m_de.strDeCode, kQuotaLib);
    EXPECT_EQ(water->GetDe(2)->m_de.strName, L"外省管道");
    EXPECT_EQ(water->GetQd(1)->m_qd.strQdIdUser, L"user-031001001001") << "bills have no rows";
}
