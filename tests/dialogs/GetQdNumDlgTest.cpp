// The bill number dialog under each encoding rule of the bill library, driven as a user does.
// Each test builds the bill library and the project's history it needs.

#include "dialogs/CDlgGetQdNum.h"

#include "host/sqlite/LibraryFiles.h"
#include "platform/NumParse.h"
#include "support/TestHost.h"
#include "ui/ModalHook.h"

#include <QAbstractButton>

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

using koqdde::ui::ClickDlgItem;
using koqdde::ui::ModalHookScope;
using koqdde::ui::SelectDlgItem;
using koqdde::ui::TypeDlgItem;

namespace {

constexpr int kInfo = 1069;
constexpr int kPrefix = 1076;
constexpr int kSuffix = 1077;
constexpr int kExisting = 1111;
constexpr int kNew = 1112;
constexpr int kList = 1113;
constexpr int kCopyFrom = 1114;

const CString kSchema = FromUtf8(KOQDDE_SOURCE_DIR "/data/sample/libraries/schema.sql");

struct HistoryEntry {
    std::string number;
    std::string name;
    std::string unit;
};

void Build(TestHost& host, const CString& name, const std::string& sql) {
    CString error;
    const CString source = host.dir.Write(name + L".sql", sql);
    ASSERT_TRUE(BuildLibraryDatabase(kSchema, source, host.dir.File(name + L".db"), error))
        << ToUtf8(error);
}

// The project's bill library: this encoding rule and these bill numbers.
void InstallLibrary(TestHost& host, int codeLength, int suffixLength,
                    const std::vector<std::string>& bills = {}) {
    std::string sql = "INSERT INTO library (key, value) VALUES ('kind', 'bill'), ('code', '{Q}'),"
                      " ('code_len', '" +
                      std::to_string(codeLength) + "'), ('suffix_len', '" +
                      std::to_string(suffixLength) +
                      "');\nINSERT INTO chapter (id, parent, position, code, name) VALUES "
                      "(1, NULL, 0, '0310', '给排水');\n";
    for (size_t i = 0; i < bills.size(); ++i)
        sql += "INSERT INTO bill (number, chapter, position, name, unit) VALUES ('" + bills[i] +
               "', 1, " + std::to_string(i) + ", '库清单', 'm');\n";
    Build(host, L"library", sql);
    host.data.libraryFiles = {host.dir.File(L"library.db")};
    host.data.project.bill.code = L"{Q}";
}

// The project's history, in the order given; each call makes a new history file.
void InstallHistory(TestHost& host, const std::vector<HistoryEntry>& entries) {
    static int serial = 0;
    const CString name = L"history" + IntToText(++serial);
    std::string sql = "SELECT 1;\n";
    for (size_t i = 0; i < entries.size(); ++i)
        sql += "INSERT INTO qd_history (number, name, unit, position) VALUES ('" +
               entries[i].number + "', '" + entries[i].name + "', '" + entries[i].unit + "', " +
               std::to_string(i) + ");\n";
    Build(host, name, sql);
    host.data.historyFile = host.dir.File(name + L".db");
}

// Runs the dialog on a picked number; `act` drives it, and the result is what OK or Cancel
// gave (-1 while it is still open at the end).
int RunDialog(CDlgGetQdNum& dlg, const std::function<void(CDialog&)>& act) {
    ModalHookScope hook([&](CDialog& d) {
        act(d);
        return d.GetEndResult();
    });
    return dlg.DoModal();
}

std::vector<CString> Entries(CDialog& d, int id) {
    std::vector<CString> entries;
    if (auto* list = dynamic_cast<CListBox*>(d.GetDlgItem(id))) {
        for (int i = 0; i < list->GetCount(); ++i)
            entries.push_back(list->GetText(i));
    } else if (auto* combo = dynamic_cast<CComboBox*>(d.GetDlgItem(id))) {
        for (int i = 0; i < combo->GetCount(); ++i)
            entries.push_back(combo->GetLBText(i));
    }
    return entries;
}

bool Checked(CDialog& d, int id) {
    auto* radio = qobject_cast<QAbstractButton*>(d.GetDlgItem(id)->GetSafeHwnd());
    return radio && radio->isChecked();
}

bool Enabled(CDialog& d, int id) {
    return d.GetDlgItem(id)->IsWindowEnabled() != FALSE;
}

using Numbers = std::vector<CString>;

} // namespace

TEST(GetQdNumDlg, NineDigitRuleContinuesAfterTheHighestSequenceOfTheHistory) {
    TestHost host;
    InstallLibrary(host, 9, 3);

    // No history: only a new number can be chosen, and it starts the sequence.
    InstallHistory(host, {{"031001001001", "镀锌钢管", "m"}});
    CDlgGetQdNum first;
    first.m_strQdNum = L"031001006";
    int result = RunDialog(first, [&](CDialog& d) {
        EXPECT_FALSE(Enabled(d, kExisting));
        EXPECT_TRUE(Checked(d, kNew));
        EXPECT_FALSE(Checked(d, kExisting));
        EXPECT_EQ(Entries(d, kList), Numbers{});
        EXPECT_FALSE(Enabled(d, kList));
        EXPECT_TRUE(Enabled(d, kSuffix));
        EXPECT_FALSE(Enabled(d, kPrefix));
        EXPECT_EQ(d.GetDlgItemText(kPrefix), L"031001006");
        EXPECT_EQ(d.GetDlgItemText(kSuffix), L"001");
        EXPECT_EQ(d.GetDlgItemText(kInfo), L"");
        EXPECT_EQ(Entries(d, kCopyFrom), Numbers{L""});
        ClickDlgItem(d, IDOK);
    });
    EXPECT_EQ(result, IDOK);
    EXPECT_EQ(first.m_strQdNum, L"031001006001");
    EXPECT_EQ(first.m_strCopyFrom, L"");

    // The history's order stands in the list; the highest sequence counts, wherever it is.
    InstallHistory(host,
                   {{"031001006007", "塑料管", "m"}, {"031001006003", "塑料管(热熔)", "10m"}});
    CDlgGetQdNum second;
    second.m_strQdNum = L"031001006";
    result = RunDialog(second, [&](CDialog& d) {
        EXPECT_TRUE(Enabled(d, kExisting));
        EXPECT_TRUE(Checked(d, kNew));
        EXPECT_EQ(Entries(d, kList), (Numbers{L"031001006007", L"031001006003"}));
        EXPECT_EQ(d.GetDlgItemText(kInfo), L"塑料管\r\nm") << "the first entry is shown";
        EXPECT_EQ(d.GetDlgItemText(kSuffix), L"008");
        EXPECT_EQ(Entries(d, kCopyFrom), (Numbers{L"", L"031001006007", L"031001006003"}));
        ASSERT_TRUE(SelectDlgItem(d, kCopyFrom, 2));
        ClickDlgItem(d, IDOK);
    });
    EXPECT_EQ(result, IDOK);
    EXPECT_EQ(second.m_strQdNum, L"031001006008");
    EXPECT_EQ(second.m_strCopyFrom, L"031001006003");

    // Past the largest sequence of three digits the proposal starts again at 000.
    InstallHistory(host, {{"031001006999", "塑料管", "m"}});
    CDlgGetQdNum third;
    third.m_strQdNum = L"031001006";
    RunDialog(third, [&](CDialog& d) { EXPECT_EQ(d.GetDlgItemText(kSuffix), L"000"); });
}

TEST(GetQdNumDlg, RefusalsKeepTheDialogOpenWithItsInput) {
    TestHost host;
    InstallLibrary(host, 9, 3);
    InstallHistory(host,
                   {{"031001006007", "塑料管", "m"}, {"031001006003", "塑料管(热熔)", "10m"}});
    CDlgGetQdNum dlg;
    dlg.m_strQdNum = L"031001006";
    const int result = RunDialog(dlg, [&](CDialog& d) {
        auto expectRefusal = [&](const wchar_t* text) {
            EXPECT_FALSE(d.IsEnded()) << ToUtf8(CString(text));
            ASSERT_EQ(host.messages.Messages().size(), 1u) << ToUtf8(CString(text));
            EXPECT_EQ(host.messages.Messages()[0].text, text);
            EXPECT_EQ(host.messages.Messages()[0].caption, L"Quorvel");
            EXPECT_EQ(host.messages.Messages()[0].flags, 0x12030u);
            host.messages.Clear();
        };
        // Only the length of a new sequence counts; a wrong one is replaced by the proposal.
        ASSERT_TRUE(TypeDlgItem(d, kSuffix, L"08"));
        ClickDlgItem(d, IDOK);
        expectRefusal(L"新清单号不符合规范!");
        EXPECT_EQ(d.GetDlgItemText(kSuffix), L"008");
        ASSERT_TRUE(TypeDlgItem(d, kSuffix, L"x1y"));
        ClickDlgItem(d, IDOK);
        EXPECT_TRUE(d.IsEnded()) << "letters of the right length pass";
        EXPECT_EQ(dlg.m_strQdNum, L"031001006x1y");
    });
    EXPECT_EQ(result, IDOK);

    // A new number that the history holds; then an existing one the configuration has.
    CDlgGetQdNum again;
    again.m_strQdNum = L"031001006";
    again.m_arrUsedQd.Add(L"031001006003");
    const int second = RunDialog(again, [&](CDialog& d) {
        auto expectRefusal = [&](const wchar_t* text) {
            EXPECT_FALSE(d.IsEnded());
            ASSERT_EQ(host.messages.Texts(), std::vector<CString>{text});
            EXPECT_EQ(host.messages.Messages()[0].flags, 0x12030u);
            host.messages.Clear();
        };
        ASSERT_TRUE(TypeDlgItem(d, kSuffix, L"007"));
        ClickDlgItem(d, IDOK);
        expectRefusal(L"清单已经套用!");
        EXPECT_EQ(d.GetDlgItemText(kSuffix), L"007");

        ASSERT_TRUE(SelectDlgItem(d, kCopyFrom, 1));
        ASSERT_TRUE(ClickDlgItem(d, kExisting));
        EXPECT_TRUE(Checked(d, kExisting));
        EXPECT_FALSE(Checked(d, kNew));
        EXPECT_TRUE(Enabled(d, kList));
        EXPECT_FALSE(Enabled(d, kSuffix));
        EXPECT_FALSE(Enabled(d, kCopyFrom));
        ASSERT_TRUE(SelectDlgItem(d, kList, 1));
        EXPECT_EQ(d.GetDlgItemText(kInfo), L"塑料管(热熔)\r\n10m");
        ClickDlgItem(d, IDOK);
        expectRefusal(L"同一构件不能多次套同一清单 !");

        ASSERT_TRUE(SelectDlgItem(d, kList, 0));
        EXPECT_EQ(d.GetDlgItemText(kInfo), L"塑料管\r\nm");
        ClickDlgItem(d, IDOK);
    });
    EXPECT_EQ(second, IDOK);
    EXPECT_EQ(again.m_strQdNum, L"031001006007");
    EXPECT_EQ(again.m_strCopyFrom, L"") << "a number in use copies nothing";
    EXPECT_TRUE(host.messages.Messages().empty());
}

TEST(GetQdNumDlg, TwelveDigitRulesSplitThePickedNumber) {
    TestHost host;
    InstallLibrary(host, 12, 3, {"031001006005", "031001006006", "031001006008"});

    // A picked sequence that the history doesn't hold stays.
    InstallHistory(host, {{"031001006001", "塑料管", "m"}});
    CDlgGetQdNum free;
    free.m_strQdNum = L"031001006005";
    RunDialog(free, [&](CDialog& d) {
        EXPECT_EQ(d.GetDlgItemText(kPrefix), L"031001006");
        EXPECT_EQ(d.GetDlgItemText(kSuffix), L"005");
        EXPECT_EQ(Entries(d, kList), Numbers{L"031001006001"});
    });

    // Held by the history: counts past library bills and the history to a free number.
    InstallHistory(host, {{"031001006005", "塑料管", "m"}, {"031001006007", "塑料管", "m"}});
    CDlgGetQdNum taken;
    taken.m_strQdNum = L"031001006005";
    int result = RunDialog(taken, [&](CDialog& d) {
        EXPECT_EQ(d.GetDlgItemText(kSuffix), L"009");
        // A refused suffix is replaced by the next after the highest, not a free one.
        ASSERT_TRUE(TypeDlgItem(d, kSuffix, L"5"));
        ClickDlgItem(d, IDOK);
        EXPECT_FALSE(d.IsEnded());
        EXPECT_EQ(d.GetDlgItemText(kSuffix), L"008");
        ClickDlgItem(d, IDOK);
    });
    EXPECT_EQ(result, IDOK);
    EXPECT_EQ(taken.m_strQdNum, L"031001006008");
    EXPECT_EQ(host.messages.Texts(), std::vector<CString>{L"新清单号不符合规范!"});

    // Rule 12/1: eleven fixed characters and a one-digit sequence that wraps after 9.
    InstallLibrary(host, 12, 1);
    InstallHistory(host, {{"031001006009", "塑料管", "m"}, {"031001006002", "塑料管", "m"}});
    CDlgGetQdNum single;
    single.m_strQdNum = L"031001006005";
    result = RunDialog(single, [&](CDialog& d) {
        EXPECT_EQ(d.GetDlgItemText(kPrefix), L"03100100600");
        EXPECT_EQ(d.GetDlgItemText(kSuffix), L"0");
        ClickDlgItem(d, IDOK);
    });
    EXPECT_EQ(result, IDOK);
    EXPECT_EQ(single.m_strQdNum, L"031001006000");

    // Rule 10/2 keeps the picked number whole and continues its two-digit sequence.
    InstallLibrary(host, 10, 2);
    InstallHistory(host, {{"031001006004", "塑料管", "m"}});
    CDlgGetQdNum ten;
    ten.m_strQdNum = L"0310010060";
    RunDialog(ten, [&](CDialog& d) {
        EXPECT_EQ(d.GetDlgItemText(kPrefix), L"0310010060");
        EXPECT_EQ(d.GetDlgItemText(kSuffix), L"05");
    });
}

TEST(GetQdNumDlg, RulesWithoutNumberingProposeNothing) {
    TestHost host;
    InstallHistory(host, {{"031001006007", "塑料管", "m"}});

    // A rule the dialog doesn't know: nothing is read or proposed, the template's state stays.
    InstallLibrary(host, 11, 2);
    CDlgGetQdNum unknown;
    unknown.m_strQdNum = L"031001006";
    int result = RunDialog(unknown, [&](CDialog& d) {
        EXPECT_EQ(Entries(d, kList), Numbers{});
        EXPECT_TRUE(Enabled(d, kList));
        EXPECT_TRUE(Enabled(d, kExisting));
        EXPECT_TRUE(Checked(d, kNew));
        EXPECT_EQ(d.GetDlgItemText(kPrefix), L"");
        EXPECT_EQ(d.GetDlgItemText(kSuffix), L"");
        EXPECT_EQ(Entries(d, kCopyFrom), Numbers{});
        ClickDlgItem(d, IDOK);
        EXPECT_FALSE(d.IsEnded());
        EXPECT_EQ(d.GetDlgItemText(kSuffix), L"01");
        ClickDlgItem(d, IDCANCEL);
    });
    EXPECT_EQ(result, IDCANCEL);
    EXPECT_EQ(unknown.m_strQdNum, L"031001006") << "cancelling changes nothing";

    // No library: a new number can never have the length -1; only the other radio leaves.
    host.data.libraryFiles.clear();
    host.messages.Clear();
    CDlgGetQdNum none;
    none.m_strQdNum = L"031001006";
    result = RunDialog(none, [&](CDialog& d) {
        for (const wchar_t* typed : {L"", L"0", L"001"}) {
            ASSERT_TRUE(TypeDlgItem(d, kSuffix, typed));
            ClickDlgItem(d, IDOK);
            EXPECT_FALSE(d.IsEnded());
        }
        ASSERT_TRUE(ClickDlgItem(d, kExisting));
        ClickDlgItem(d, IDOK);
    });
    EXPECT_EQ(result, IDOK);
    EXPECT_EQ(none.m_strQdNum, L"") << "no entry was selected";
    EXPECT_EQ(host.messages.Texts(), std::vector<CString>(3, L"新清单号不符合规范!"));
}
