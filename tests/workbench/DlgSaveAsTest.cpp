#include "workbench/DlgSaveAs.h"

#include "platform/FileSystem.h"
#include "support/TestHost.h"
#include "support/ui/DialogProbe.h"
#include "ui/ModalHook.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <tuple>

using koqdde::ui::ClickDlgItem;
using koqdde::ui::SelectDlgItem;
using koqdde::ui::TypeDlgItem;

namespace {

constexpr int kList = 1000;
constexpr int kType = 1001;
constexpr int kName = 1069;

const char* const kFile = "<?xml version=\"1.0\" encoding=\"UTF-8\"?><x/>";

CString Folder(const TestHost& host) {
    return host.ConfigDir() + L"/自动套配置";
}

void AddFile(TestHost& host, const CString& name) {
    host.dir.Write(L"config/自动套配置/" + name, kFile);
}

using Texts = std::vector<CString>;

int RunDialog(DlgSaveAs& dlg, const std::function<void(CDialog&)>& act) {
    return koqdde::test::RunModal(dlg, act);
}

int RowOf(CDialog& dlg, const CString& text) {
    const Texts rows = koqdde::test::ItemTexts(dlg, kList);
    return static_cast<int>(std::find(rows.begin(), rows.end(), text) - rows.begin());
}

// Names in the folder, to show that the dialog itself writes nothing.
std::vector<std::string> FolderContents(const CString& folder) {
    std::vector<std::string> names;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(ToUtf8(folder), error))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

const CString kOverwriteQuestion = L"是否覆盖已有配置文件?";

} // namespace

TEST(DlgSaveAs, ListsTheFolderSortedWithoutExtensionsAndOpenPicksOnlyFromTheList) {
    TestHost host;
    AddFile(host, L"b.xml");
    AddFile(host, L"a.b.xml");
    AddFile(host, L"Upper.XML");
    AddFile(host, L"notes.txt");
    AddFile(host, L"sub/deep.xml");
    std::filesystem::create_directories(ToUtf8(Folder(host) + L"/folder.xml"));
    const auto before = FolderContents(Folder(host));

    DlgSaveAs dlg(DlgSaveAs::kOpen, nullptr, Folder(host) + L"/b.xml");
    int result = RunDialog(dlg, [&](CDialog& d) {
        // Not recursive, any case of the extension, and a folder whose name fits is listed.
        EXPECT_EQ(koqdde::test::ItemTexts(d, kList), (Texts{L"a.b", L"b", L"folder", L"Upper"}));

        EXPECT_FALSE(TypeDlgItem(d, kName, L"typed")) << "only the list can choose";
        auto* type = dynamic_cast<CComboBox*>(d.GetDlgItem(kType));
        ASSERT_NE(type, nullptr);
        EXPECT_EQ(type->GetCurSel(), 0);
        EXPECT_EQ(type->GetWindowText(), L"XML文件(*.xml)");

        // Nothing chosen yet: OK does nothing, silently.
        ClickDlgItem(d, IDOK);
        EXPECT_FALSE(d.IsEnded());

        // Choosing a row shows it in the disabled edit; opening the open file asks nothing.
        ASSERT_TRUE(SelectDlgItem(d, kList, RowOf(d, L"b")));
        EXPECT_EQ(d.GetDlgItemText(kName), L"b");
        ASSERT_TRUE(SelectDlgItem(d, kList, RowOf(d, L"a.b")));
        EXPECT_EQ(d.GetDlgItemText(kName), L"a.b");
        ClickDlgItem(d, IDOK);
    });
    EXPECT_EQ(result, IDOK);
    // "a.b" has the extension ".b", so ".xml" is added back.
    EXPECT_EQ(dlg.GetFullFileName(), Folder(host) + L"/a.b.xml");
    EXPECT_TRUE(host.messages.Messages().empty());
    EXPECT_EQ(FolderContents(Folder(host)), before);
}

TEST(DlgSaveAs, CaptionsAndTheNameFieldFollowTheCommand) {
    TestHost host;
    const std::tuple<int, const wchar_t*, const wchar_t*, bool> modes[] = {
        {DlgSaveAs::kOpen, L"调用", L"调用", false},
        {DlgSaveAs::kNew, L"新建", L"新建", true},
        {DlgSaveAs::kSaveAs, L"另存", L"保存(&S)", true}};
    for (const auto& [mode, caption, ok, nameEnabled] : modes) {
        DlgSaveAs dlg(mode, nullptr, L"");
        RunDialog(dlg, [&](CDialog& d) {
            EXPECT_EQ(d.GetWindowText(), caption);
            EXPECT_EQ(d.GetDlgItem(IDOK)->GetWindowText(), ok);
            EXPECT_EQ(d.GetDlgItem(kName)->IsWindowEnabled(), nameEnabled);
        });
    }
}

TEST(DlgSaveAs, MissingFolderGivesAnEmptyListAndIsNotMadeAndCancelChecksNothing) {
    TestHost host;
    DlgSaveAs dlg(DlgSaveAs::kNew, nullptr, L"");
    int result = RunDialog(dlg, [](CDialog& d) {
        EXPECT_EQ(koqdde::test::ItemTexts(d, kList), Texts{});
        ASSERT_TRUE(TypeDlgItem(d, kName, L"a|b"));
        ClickDlgItem(d, IDCANCEL);
    });
    EXPECT_EQ(result, IDCANCEL);
    EXPECT_FALSE(PathExists(Folder(host)));
    EXPECT_TRUE(host.messages.Messages().empty());
}

TEST(DlgSaveAs, RefusesEmptyNamesAndForbiddenCharacters) {
    TestHost host;
    const CString expectedText = L"文件名不能包含下列任何字符:\n \\ /:*?\"<>|!";
    DlgSaveAs dlg(DlgSaveAs::kSaveAs, nullptr, L"");
    int result = RunDialog(dlg, [&](CDialog& d) {
        ClickDlgItem(d, IDOK);
        EXPECT_FALSE(d.IsEnded());
        EXPECT_TRUE(host.messages.Messages().empty()) << "an empty name is refused silently";

        for (wchar_t c : std::wstring(L"\\/:*?<>\"|")) {
            host.messages.Clear();
            ASSERT_TRUE(TypeDlgItem(d, kName, CString(L"ab") + c + L"c"));
            ClickDlgItem(d, IDOK);
            EXPECT_FALSE(d.IsEnded()) << int(c);
            EXPECT_EQ(host.messages.Texts(), Texts{expectedText}) << int(c);
        }
        EXPECT_EQ(host.messages.Messages()[0].caption, L"Quorvel");
        EXPECT_EQ(host.messages.Messages()[0].flags, kWarningFlags);
        // A name made of allowed characters (other punctuation included) goes through.
        host.messages.Clear();
        ASSERT_TRUE(TypeDlgItem(d, kName, L"给水 (v2)-新#1"));
        ClickDlgItem(d, IDOK);
    });
    EXPECT_EQ(result, IDOK);
    EXPECT_TRUE(host.messages.Messages().empty());
    EXPECT_EQ(dlg.GetFullFileName(), Folder(host) + L"/给水 (v2)-新#1.xml");
    EXPECT_FALSE(PathExists(dlg.GetFullFileName())) << "the dialog writes nothing";
}

TEST(DlgSaveAs, NewFileCannotTakeTheOpenFilesName) {
    TestHost host;
    AddFile(host, L"cur.xml");
    AddFile(host, L"other.xml");
    const CString open = Folder(host) + L"/cur.xml";

    DlgSaveAs create(DlgSaveAs::kNew, nullptr, open);
    int result = RunDialog(create, [&](CDialog& d) {
        // The comparison with the open file ignores case; the refusal comes before the question.
        ASSERT_TRUE(TypeDlgItem(d, kName, L"CUR"));
        ClickDlgItem(d, IDOK);
        EXPECT_FALSE(d.IsEnded());
        EXPECT_EQ(host.messages.Texts(), Texts{L"当前配置文件不能覆盖!"});
        EXPECT_EQ(host.messages.Messages()[0].flags, kWarningFlags);

        host.messages.Clear();
        ASSERT_TRUE(TypeDlgItem(d, kName, L"cur.xml"));
        ClickDlgItem(d, IDOK);
        EXPECT_FALSE(d.IsEnded());
        EXPECT_EQ(host.messages.Texts(), Texts{L"当前配置文件不能覆盖!"});

        // Another existing file is only a question.
        host.messages.Clear();
        host.messages.Answer(IDYES);
        ASSERT_TRUE(TypeDlgItem(d, kName, L"other"));
        ClickDlgItem(d, IDOK);
    });
    EXPECT_EQ(result, IDOK);
    EXPECT_EQ(host.messages.Texts(), Texts{kOverwriteQuestion});
    EXPECT_EQ(create.GetFullFileName(), Folder(host) + L"/other.xml");

    // Opening may pick the open file, without any message.
    host.messages.Clear();
    DlgSaveAs openDlg(DlgSaveAs::kOpen, nullptr, open);
    result = RunDialog(openDlg, [](CDialog& d) {
        ASSERT_TRUE(SelectDlgItem(d, kList, 0));
        ClickDlgItem(d, IDOK);
    });
    EXPECT_EQ(result, IDOK);
    EXPECT_EQ(openDlg.GetFullFileName(), open);
    EXPECT_TRUE(host.messages.Messages().empty());
}

TEST(DlgSaveAs, AsksBeforeReplacingAnExistingNameAndStaysOnNo) {
    TestHost host;
    AddFile(host, L"b.xml");
    DlgSaveAs dlg(DlgSaveAs::kNew, nullptr, L"");
    int result = RunDialog(dlg, [&](CDialog& d) {
        ASSERT_TRUE(TypeDlgItem(d, kName, L"b"));
        host.messages.Answer(IDNO);
        ClickDlgItem(d, IDOK);
        EXPECT_FALSE(d.IsEnded());
        ASSERT_EQ(host.messages.Messages().size(), 1u);
        EXPECT_EQ(host.messages.Messages()[0].text, kOverwriteQuestion);
        EXPECT_EQ(host.messages.Messages()[0].caption, L"Quorvel");
        EXPECT_EQ(host.messages.Messages()[0].flags, kQuestionFlags);

        // Only an answer of Yes lets the dialog end.
        host.messages.Clear();
        host.messages.Answer(IDCANCEL);
        ClickDlgItem(d, IDOK);
        EXPECT_FALSE(d.IsEnded());
        EXPECT_EQ(host.messages.Messages().size(), 1u);

        host.messages.Clear();
        host.messages.Answer(IDYES);
        ClickDlgItem(d, IDOK);
    });
    EXPECT_EQ(result, IDOK);
    EXPECT_EQ(host.messages.Messages().size(), 1u);
    EXPECT_EQ(dlg.GetFullFileName(), Folder(host) + L"/b.xml");
}

TEST(DlgSaveAs, ExistingNameIsFoundOnlyByExactCaseAndUpperCaseExtension) {
    TestHost host;
    AddFile(host, L"b.xml");
    struct Case {
        const wchar_t* typed;
        bool asks;
        const wchar_t* file;
    };
    const Case cases[] = {
        {L"b.XML", true, L"b.XML"},  // the upper-case extension is taken off to compare
        {L"b.xml", false, L"b.xml"}, // the lower-case one is not: no question
        {L"B", false, L"B.xml"},     // rows compare with case
        {L"b.Xml", false, L"b.Xml"}, // any case of ".xml" is kept as typed in the result
        {L"b.b", false, L"b.b.xml"},
    };
    for (const Case& c : cases) {
        host.messages.Clear();
        DlgSaveAs dlg(DlgSaveAs::kSaveAs, nullptr, L"");
        if (c.asks)
            host.messages.Answer(IDYES);
        int result = RunDialog(dlg, [&](CDialog& d) {
            ASSERT_TRUE(TypeDlgItem(d, kName, c.typed));
            ClickDlgItem(d, IDOK);
        });
        EXPECT_EQ(result, IDOK) << ToUtf8(CString(c.typed));
        EXPECT_EQ(host.messages.Messages().size(), c.asks ? 1u : 0u) << ToUtf8(CString(c.typed));
        EXPECT_EQ(dlg.GetFullFileName(), Folder(host) + L"/" + c.file) << ToUtf8(CString(c.typed));
    }
}
