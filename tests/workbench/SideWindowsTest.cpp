// The desktop program's windows beside the workbench, opened and used as a user does: the rule
// check leads from a finding to its configuration, the trial window follows the values typed.

#include "FindingText.h"
#include "apps/workbench/DesktopWorkbench.h"
#include "tests/workbench/WorkbenchFixture.h"
#include "ui/QtString.h"

#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>

using namespace workbench_test;
using koqdde::ui::FromQString;
using koqdde::ui::ToQString;

namespace {

// Runs the desktop program's workbench; body plays the user while it is open.
void RunDesktop(const std::function<void(CDialog&)>& body) {
    int runs = 0;
    koqdde::ui::ModalHookScope hook([&](CDialog& dialog) {
        ++runs;
        body(dialog);
        return dialog.GetEndResult();
    });
    DesktopWorkbench workbench;
    workbench.DoModal();
    EXPECT_EQ(runs, 1);
}

template <class T> T* Find(CDialog& dialog, const char* name) {
    T* found = dialog.widget()->findChild<T*>(QString::fromLatin1(name));
    if (!found)
        throw std::logic_error(std::string("no widget ") + name);
    return found;
}

void ClickButton(CDialog& dialog, const char* name) {
    Find<QPushButton>(dialog, name)->click();
}

// Top-level rows of a list as "column|column|...", the columns given.
std::vector<QString> Rows(QTreeWidget* list, std::initializer_list<int> columns) {
    std::vector<QString> rows;
    for (int i = 0; i < list->topLevelItemCount(); ++i) {
        QStringList texts;
        for (int column : columns)
            texts << list->topLevelItem(i)->text(column);
        rows.push_back(texts.join(QLatin1Char('|')));
    }
    return rows;
}

QComboBox* Field(CDialog& dialog, const QString& attribute) {
    for (QComboBox* field : dialog.widget()->findChildren<QComboBox*>(QStringLiteral("trialValue")))
        if (field->accessibleName() == attribute)
            return field;
    throw std::logic_error("no field " + attribute.toStdString());
}

// As the user empties a field and types `text` into it, key by key.
void Type(QComboBox* field, const QString& text) {
    field->lineEdit()->selectAll();
    PressKey(field->lineEdit(), Qt::Key_Delete);
    for (QChar c : text)
        PressKey(field->lineEdit(), 0, QString(c));
}

// As the user opens a drop-down and picks the entry `text`.
void Choose(QComboBox* field, const QString& text) {
    const int index = field->findText(text);
    ASSERT_GE(index, 0) << text.toStdString();
    field->setCurrentIndex(index);
}

CPath NewConfig(CQdDeConfigPresenter& presenter, const CPath& category) {
    int id = -1;
    EXPECT_TRUE(presenter.AddConfig(category, id));
    CPath config = category;
    config.ConfigId = id;
    return config;
}

} // namespace

TEST(SideWindows, RuleCheckListsAShadowedConfigurationAndLeadsToItAndChecksEditsAgain) {
    TestHost host;
    Catalog(host);
    {
        // 排水管: #1 材质＝UPVC管 catches every component #2 would; both give a bill.
        CQdDeConfigPresenter presenter;
        std::vector<ConfigNode*> configs;
        const CPath first = NewConfig(presenter, Category(1, 103));
        const CPath second = NewConfig(presenter, Category(1, 103));
        for (const CPath& config : {first, second}) {
            ASSERT_TRUE(presenter.AddCondition(
                config, {L"材质", L"1", L"＝", L"", L"", L"UPVC管", L"", L""}));
            ASSERT_TRUE(
                presenter.AddQd(Bill(L"031001006001", L"塑料管", L"m", kBillLib), config, configs));
        }
        ASSERT_TRUE(presenter.AddCondition(
            second, {L"具体构件", L"1", L"＝", L"", L"", L"立管", L"", L""}));
        ASSERT_TRUE(presenter.Save());
    }
    const QString shadowed = ToQString(L"给排水\\管道\\排水管") + QStringLiteral("|#2（配置 3）|") +
                             QString::fromStdString(SeverityText(Severity::kError));
    RunDesktop([&](CDialog& dlg) {
        ClickButton(dlg, "desktopLint");
        auto* findings = Find<QTreeWidget>(dlg, "lintFindings");
        EXPECT_EQ(Rows(findings, {1, 2, 0}), std::vector<QString>{shadowed});

        // The workbench opened on 给水管; the click leads to 排水管 and its second row.
        CTreeCtrl& tree = Ctl<CTreeCtrl>(dlg, kTree);
        ASSERT_EQ(tree.GetItemText(tree.GetSelectedItem()), L"给水管");
        ClickRow(findings, findings->topLevelItem(0));
        EXPECT_EQ(tree.GetItemText(tree.GetSelectedItem()), L"排水管");
        EXPECT_EQ(SelectedConfigRow(dlg), 1);
        EXPECT_EQ(ItemTexts(dlg, kConditionList),
                  (std::vector<CString>{L"材质＝UPVC管", L"具体构件＝立管"}));

        // The user deletes the shadowed configuration; the check sees the edit before a save.
        koqdde::ui::ClickDlgItem(dlg, kDelConfig);
        ClickButton(dlg, "lintRecheck");
        EXPECT_EQ(findings->topLevelItemCount(), 0);
    });
}

TEST(SideWindows, TrialHighlightsTheConfigurationTheTypedValuesReceiveAndShowsItsItems) {
    TestHost host;
    Catalog(host);
    {
        // 给水管: #1 镀锌钢管 of 50 to 100 gives A with quota a1, #2 PP-R管 gives B, 其它 gives C.
        CQdDeConfigPresenter presenter;
        std::vector<ConfigNode*> configs;
        const CPath steel = NewConfig(presenter, Category(1, 101));
        const CPath plastic = NewConfig(presenter, Category(1, 101));
        ASSERT_TRUE(
            presenter.AddCondition(steel, {L"材质", L"1", L"＝", L"", L"", L"镀锌钢管", L"", L""}));
        ASSERT_TRUE(presenter.AddCondition(
            steel, {L"管径(mm)", L"0", L"", L"＞", L"≤", L"", L"50", L"100"}));
        ASSERT_TRUE(
            presenter.AddCondition(plastic, {L"材质", L"1", L"＝", L"", L"", L"PP-R管", L"", L""}));
        ASSERT_TRUE(presenter.AddQd(Bill(L"A", L"甲", L"m", kBillLib), steel, configs));
        CPath bill = steel;
        bill.QdId = 1;
        ASSERT_TRUE(presenter.AddDe2QdNode(Quota(L"a1", L"甲定额", kBillQuotaLib), bill, configs));
        ASSERT_TRUE(presenter.AddQd(Bill(L"B", L"乙", L"m", kBillLib), plastic, configs));
        ASSERT_TRUE(
            presenter.AddQd(Bill(L"C", L"丙", L"m", kBillLib), Category(1, 101, 1), configs));
        ASSERT_TRUE(presenter.Save());
    }
    RunDesktop([&](CDialog& dlg) {
        ClickButton(dlg, "desktopTrial");
        auto* category = Find<QComboBox>(dlg, "trialCategory");
        auto* configs = Find<QTreeWidget>(dlg, "trialConfigs");
        auto* items = Find<QTreeWidget>(dlg, "trialItems");
        EXPECT_EQ(category->currentText(), ToQString(L"管道\\给水管"));
        QComboBox* material = Field(dlg, QStringLiteral("材质"));
        EXPECT_EQ(material->count(), 2) << "the drop-down list of 材质";

        // Nothing given: only the default holds.
        EXPECT_EQ(Rows(configs, {0, 2}), (std::vector<QString>{"#1|不符", "#2|不符", "#3|套用"}));
        EXPECT_EQ(Rows(items, {0}), std::vector<QString>{"C"});

        Choose(material, QStringLiteral("镀锌钢管"));
        Type(Field(dlg, QStringLiteral("管径(mm)")), QStringLiteral("80"));
        EXPECT_EQ(Rows(configs, {0, 2}),
                  (std::vector<QString>{"#1|套用", "#2|未比较", "#3|未比较"}));
        EXPECT_TRUE(configs->topLevelItem(0)->font(0).bold());
        EXPECT_FALSE(configs->topLevelItem(2)->font(0).bold());
        ASSERT_EQ(Rows(items, {0, 1}), std::vector<QString>{"A|甲"});
        ASSERT_EQ(items->topLevelItem(0)->childCount(), 1);
        EXPECT_EQ(items->topLevelItem(0)->child(0)->text(0), QStringLiteral("a1"));

        // Out of the range: #1 fails on its second condition only, and the highlight moves on.
        Type(Field(dlg, QStringLiteral("管径(mm)")), QStringLiteral("120"));
        EXPECT_TRUE(configs->topLevelItem(0)->child(0)->text(2).startsWith(QStringLiteral("✓")));
        EXPECT_TRUE(configs->topLevelItem(0)->child(1)->text(2).startsWith(QStringLiteral("✗")));
        Choose(material, QStringLiteral("PP-R管"));
        EXPECT_EQ(Rows(configs, {0, 2}), (std::vector<QString>{"#1|不符", "#2|套用", "#3|未比较"}));
        EXPECT_TRUE(configs->topLevelItem(1)->font(0).bold());
        EXPECT_EQ(Rows(items, {0}), std::vector<QString>{"B"});

        // Another category brings its own attributes and lists.
        Choose(category, ToQString(L"管道\\排水管"));
        EXPECT_EQ(Field(dlg, QStringLiteral("材质"))->itemText(0), QStringLiteral("UPVC管"));
        EXPECT_THROW(Field(dlg, QStringLiteral("管径(mm)")), std::logic_error);
        EXPECT_EQ(Rows(configs, {0, 2}), std::vector<QString>{"#1|套用"});
    });
}
