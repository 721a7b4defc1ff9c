// The bill number dialog under each encoding rule, driven as a user does. Each test builds the
// bill library and the project's history it needs.

#include "dialogs/CDlgGetQdNum.h"

#include "platform/NumParse.h"
#include "support/TestHost.h"
#include "support/ui/DialogProbe.h"
#include "ui/ModalHook.h"

#include <QAbstractButton>

#include <gtest/gtest.h>

#include <array>

using koqdde::ui::ClickDlgItem;
using koqdde::ui::SelectDlgItem;
using koqdde::ui::TypeDlgItem;

using koqdde::test::ItemTexts;

namespace {

constexpr int kInfo = 1069, kPrefix = 1076, kSuffix = 1077;
constexpr int kExisting = 1111, kNew = 1112, kList = 1113, kCopyFrom = 1114;

using Texts = std::vector<CString>;

// A database of the statements, under a name of its own.
CString Build(TestHost& host, const std::string& sql) {
    static int serial = 0;
    return BuildLibrary(host.dir, L"db" + IntToText(++serial), sql);
}

// The project's bill library: its encoding rule and its bill numbers.
void Library(TestHost& host, int code, int suffix, const std::vector<std::string>& bills = {}) {
    std::string sql = "INSERT INTO library (key, value) VALUES ('kind', 'bill'), ('code', '{Q}'), "
                      "('code_len', '" +
                      std::to_string(code) + "'), ('suffix_len', '" + std::to_string(suffix) +
                      "');\n";
    for (const std::string& number : bills)
        sql += "INSERT INTO bill (number, chapter, position, name, unit) VALUES ('" + number +
               "', 1, 0, '库清单', 'm');\n";
    host.data.libraryFiles = {Build(host, sql)};
    host.data.project.bill.code = L"{Q}";
}

// The project's history, first used first: number, name and unit of each bill.
void History(TestHost& host, const std::vector<std::array<std::string, 3>>& bills) {
    std::string sql = "SELECT 1;\n";
    for (size_t i = 0; i < bills.size(); ++i)
        sql += "INSERT INTO qd_history (number, name, unit, position) VALUES ('" + bills[i][0] +
               "', '" + bills[i][1] + "', '" + bills[i][2] + "', " + std::to_string(i) + ");\n";
    host.data.historyFile = Build(host, sql);
}

// Runs the dialog on a picked number; the result is what OK or Cancel gave (-1: still open).
int RunDialog(CDlgGetQdNum& dlg, const CString& picked, const std::function<void(CDialog&)>& act) {
    dlg.m_strQdNum = picked;
    return koqdde::test::RunModal(dlg, act);
}

bool Checked(CDialog& d, int id) {
    return qobject_cast<QAbstractButton*>(d.GetDlgItem(id)->GetSafeHwnd())->isChecked();
}

bool Enabled(CDialog& d, int id) {
    return d.GetDlgItem(id)->IsWindowEnabled() != FALSE;
}

void ExpectRefusal(TestHost& host, CDialog& d, const wchar_t* text) {
    EXPECT_FALSE(d.IsEnded()) << ToUtf8(CString(text));
    ASSERT_EQ(host.messages.Texts(), Texts{text});
    EXPECT_EQ(host.messages.Messages()[0].flags, kWarningFlags);
    host.messages.Clear();
}

} // namespace

TEST(GetQdNumDlg, NineDigitRuleContinuesAfterTheHighestSequenceOfTheHistory) {
    TestHost host;
    Library(host, 9, 3);
    History(host, {{"031001001001", "镀锌钢管", "m"}});
    CDlgGetQdNum fresh;
    int result = RunDialog(fresh, L"031001006", [&](CDialog& d) {
        // Nothing in the history for this number: only a new one, starting the sequence.
        EXPECT_FALSE(Enabled(d, kExisting));
        EXPECT_TRUE(Checked(d, kNew));
        EXPECT_FALSE(Enabled(d, kList));
        EXPECT_EQ(d.GetDlgItemText(kPrefix), L"031001006");
        EXPECT_EQ(d.GetDlgItemText(kSuffix), L"001");
        ClickDlgItem(d, IDOK);
    });
    EXPECT_EQ(result, IDOK);
    EXPECT_EQ(fresh.m_strQdNum, L"031001006001");

    // The list keeps the history's order; the highest sequence counts wherever it stands.
    History(host, {{"031001006007", "塑料管", "m"}, {"031001006003", "塑料管(热熔)", "10m"}});
    CDlgGetQdNum used;
    result = RunDialog(used, L"031001006", [&](CDialog& d) {
        EXPECT_TRUE(Enabled(d, kExisting));
        EXPECT_EQ(ItemTexts(d, kList), (Texts{L"031001006007", L"031001006003"}));
        EXPECT_EQ(d.GetDlgItemText(kInfo), L"塑料管\r\nm");
        EXPECT_EQ(d.GetDlgItemText(kSuffix), L"008");
        EXPECT_EQ(ItemTexts(d, kCopyFrom), (Texts{L"", L"031001006007", L"031001006003"}));
        ASSERT_TRUE(SelectDlgItem(d, kCopyFrom, 2));
        ClickDlgItem(d, IDOK);
    });
    EXPECT_EQ(result, IDOK);
    EXPECT_EQ(used.m_strQdNum, L"031001006008");
    EXPECT_EQ(used.m_strCopyFrom, L"031001006003");
}

TEST(GetQdNumDlg, RefusalsKeepTheDialogOpenWithItsInput) {
    TestHost host;
    Library(host, 9, 3);
    History(host, {{"031001006007", "塑料管", "m"}, {"031001006003", "塑料管(热熔)", "10m"}});
    CDlgGetQdNum dlg;
    dlg.m_arrUsedQd.Add(L"031001006003");
    const int result = RunDialog(dlg, L"031001006", [&](CDialog& d) {
        // Only the length of a new sequence counts; a wrong one is replaced by the proposal.
        ASSERT_TRUE(TypeDlgItem(d, kSuffix, L"08"));
        ClickDlgItem(d, IDOK);
        ExpectRefusal(host, d, L"新清单号不符合规范!");
        EXPECT_EQ(d.GetDlgItemText(kSuffix), L"008");

        // A new number must not be in the history.
        ASSERT_TRUE(TypeDlgItem(d, kSuffix, L"007"));
        ClickDlgItem(d, IDOK);
        ExpectRefusal(host, d, L"清单已经套用!");
        EXPECT_EQ(d.GetDlgItemText(kSuffix), L"007");

        // An existing number must not be in the configuration already.
        ASSERT_TRUE(SelectDlgItem(d, kCopyFrom, 1));
        ASSERT_TRUE(ClickDlgItem(d, kExisting));
        EXPECT_FALSE(Checked(d, kNew));
        EXPECT_TRUE(Enabled(d, kList));
        EXPECT_FALSE(Enabled(d, kSuffix));
        EXPECT_FALSE(Enabled(d, kCopyFrom));
        ASSERT_TRUE(SelectDlgItem(d, kList, 1));
        EXPECT_EQ(d.GetDlgItemText(kInfo), L"塑料管(热熔)\r\n10m");
        ClickDlgItem(d, IDOK);
        ExpectRefusal(host, d, L"同一构件不能多次套同一清单 !");

        ASSERT_TRUE(SelectDlgItem(d, kList, 0));
        ClickDlgItem(d, IDOK);
    });
    EXPECT_EQ(result, IDOK);
    EXPECT_EQ(dlg.m_strQdNum, L"031001006007");
    EXPECT_EQ(dlg.m_strCopyFrom, L"") << "a number in use copies nothing";
    EXPECT_TRUE(host.messages.Messages().empty());
}

TEST(GetQdNumDlg, TwelveDigitRulesSplitThePickedNumber) {
    TestHost host;
    Library(host, 12, 3, {"031001006005", "031001006006", "031001006008"});
    History(host, {{"031001006001", "塑料管", "m"}});
    CDlgGetQdNum free;
    RunDialog(free, L"031001006005", [](CDialog& d) {
        EXPECT_EQ(d.GetDlgItemText(kPrefix), L"031001006");
        EXPECT_EQ(d.GetDlgItemText(kSuffix), L"005") << "a free pick stays";
    });

    // A pick the history holds counts past library bills and the history to a free number; a
    // refused suffix is replaced by the next after the highest, free or not.
    History(host, {{"031001006005", "塑料管", "m"}, {"031001006007", "塑料管", "m"}});
    CDlgGetQdNum taken;
    int result = RunDialog(taken, L"031001006005", [&](CDialog& d) {
        EXPECT_EQ(d.GetDlgItemText(kSuffix), L"009");
        ASSERT_TRUE(TypeDlgItem(d, kSuffix, L"5"));
        ClickDlgItem(d, IDOK);
        ExpectRefusal(host, d, L"新清单号不符合规范!");
        EXPECT_EQ(d.GetDlgItemText(kSuffix), L"008");
        ClickDlgItem(d, IDOK);
    });
    EXPECT_EQ(result, IDOK);
    EXPECT_EQ(taken.m_strQdNum, L"031001006008");

    // 12/1: eleven fixed characters and one digit that wraps after 9.
    Library(host, 12, 1);
    History(host, {{"031001006009", "塑料管", "m"}, {"031001006002", "塑料管", "m"}});
    CDlgGetQdNum single;
    RunDialog(single, L"031001006005", [](CDialog& d) { ClickDlgItem(d, IDOK); });
    EXPECT_EQ(single.m_strQdNum, L"031001006000");
}

TEST(GetQdNumDlg, RulesWithoutNumberingProposeNothing) {
    TestHost host;
    History(host, {{"031001006007", "塑料管", "m"}});
    Library(host, 11, 2);
    CDlgGetQdNum unknown;
    int result = RunDialog(unknown, L"031001006", [&](CDialog& d) {
        // Nothing read, nothing proposed: the dialog stays as its template made it.
        EXPECT_EQ(ItemTexts(d, kList), Texts{});
        EXPECT_TRUE(Enabled(d, kList));
        EXPECT_TRUE(Checked(d, kNew));
        EXPECT_EQ(d.GetDlgItemText(kPrefix) + d.GetDlgItemText(kSuffix), L"");
        EXPECT_EQ(ItemTexts(d, kCopyFrom), Texts{});
        ClickDlgItem(d, IDCANCEL);
    });
    EXPECT_EQ(result, IDCANCEL);
    EXPECT_EQ(unknown.m_strQdNum, L"031001006") << "cancelling changes nothing";

    // No library: no suffix has the length -1, so only the other radio leaves by OK.
    host.data.libraryFiles.clear();
    CDlgGetQdNum none;
    result = RunDialog(none, L"031001006", [&](CDialog& d) {
        for (const wchar_t* typed : {L"", L"0", L"001"}) {
            ASSERT_TRUE(TypeDlgItem(d, kSuffix, typed));
            ClickDlgItem(d, IDOK);
            ExpectRefusal(host, d, L"新清单号不符合规范!");
        }
        ASSERT_TRUE(ClickDlgItem(d, kExisting));
        ClickDlgItem(d, IDOK);
    });
    EXPECT_EQ(result, IDOK);
    EXPECT_EQ(none.m_strQdNum, L"") << "no entry was selected";
}
