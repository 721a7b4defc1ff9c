#include "workbench/DlgSaveAs.h"

#include "platform/FileSystem.h"
#include "support/TestHost.h"
#include "support/ui/DialogProbe.h"
#include "ui/ModalHook.h"

#include <gtest/gtest.h>

#include <filesystem>

using koqdde::test::ItemTexts;
using koqdde::test::RunModal;
using koqdde::ui::ClickDlgItem;
using koqdde::ui::SelectDlgItem;
using koqdde::ui::TypeDlgItem;

namespace {

constexpr int kList = 1000, kType = 1001, kName = 1069;

CString Folder(const TestHost& host) {
    return host.ConfigDir() + L"/自动套配置";
}

void AddFile(TestHost& host, const CString& name) {
    host.dir.Write(L"config/自动套配置/" + name, "<?xml version=\"1.0\" encoding=\"UTF-8\"?><x/>");
}

using Texts = std::vector<CString>;

} // namespace

TEST(DlgSaveAs, ListsTheFolderSortedWithoutExtensionsAndOpenPicksOnlyFromTheList) {
    TestHost host;
    for (const wchar_t* name : {L"b.xml", L"a.b.xml", L"Upper.XML", L"notes.txt", L"sub/deep.xml"})
        AddFile(host, name);
    std::filesystem::create_directories(ToUtf8(Folder(host) + L"/folder.xml"));

    DlgSaveAs dlg(DlgSaveAs::kOpen, nullptr, Folder(host) + L"/b.xml");
    int result = RunModal(dlg, [&](CDialog& d) {
        // Not recursive, any case of the extension, and a folder whose name fits is listed.
        EXPECT_EQ(ItemTexts(d, kList), (Texts{L"a.b", L"b", L"folder", L"Upper"}));
        EXPECT_FALSE(TypeDlgItem(d, kName, L"typed")) << "only the list can choose";
        EXPECT_EQ(d.GetDlgItemText(kType), L"XML文件(*.xml)");

        // Nothing chosen yet: OK does nothing, silently.
        ClickDlgItem(d, IDOK);
        EXPECT_FALSE(d.IsEnded());
        // Choosing a row shows it in the disabled edit; opening the open file asks nothing.
        ASSERT_TRUE(SelectDlgItem(d, kList, 1));
        EXPECT_EQ(d.GetDlgItemText(kName), L"b");
        ASSERT_TRUE(SelectDlgItem(d, kList, 0));
        ClickDlgItem(d, IDOK);
    });
    EXPECT_EQ(result, IDOK);
    // "a.b" has the extension ".b", so ".xml" is added back.
    EXPECT_EQ(dlg.GetFullFileName(), Folder(host) + L"/a.b.xml");
    EXPECT_TRUE(host.messages.Messages().empty());
}

TEST(DlgSaveAs, CaptionsFollowTheCommandAndAMissingFolderIsAnEmptyListNeverMade) {
    TestHost host;
    const std::tuple<int, const wchar_t*, const wchar_t*, bool> modes[] = {
        {DlgSaveAs::kOpen, L"调用", L"调用", false},
        {DlgSaveAs::kNew, L"新建", L"新建", true},
        {DlgSaveAs::kSaveAs, L"另存", L"保存(&S)", true}};
    for (const auto& [mode, caption, ok, nameEnabled] : modes) {
        DlgSaveAs dlg(mode, nullptr, L"");
        EXPECT_EQ(RunModal(dlg,
                           [&](CDialog& d) {
                               EXPECT_EQ(d.GetWindowText(), caption);
                               EXPECT_EQ(d.GetDlgItem(IDOK)->GetWindowText(), ok);
                               EXPECT_EQ(TypeDlgItem(d, kName, L"a|b"), nameEnabled);
                               EXPECT_EQ(ItemTexts(d, kList), Texts{});
                               ClickDlgItem(d, IDCANCEL); // checks nothing, not even the name
                           }),
                  IDCANCEL);
    }
    EXPECT_FALSE(PathExists(Folder(host)));
    EXPECT_TRUE(host.messages.Messages().empty());
}

TEST(DlgSaveAs, RefusesEmptyNamesAndForbiddenCharacters) {
    TestHost host;
    DlgSaveAs dlg(DlgSaveAs::kSaveAs, nullptr, L"");
    int result = RunModal(dlg, [&](CDialog& d) {
        ClickDlgItem(d, IDOK);
        EXPECT_FALSE(d.IsEnded());
        EXPECT_TRUE(host.messages.Messages().empty()) << "an empty name is refused silently";

        for (wchar_t c : std::wstring(L"\\/:*?<>\"|")) {
            host.messages.Clear();
            ASSERT_TRUE(TypeDlgItem(d, kName, CString(L"ab") + c + L"c"));
            ClickDlgItem(d, IDOK);
            EXPECT_FALSE(d.IsEnded()) << int(c);
            EXPECT_EQ(host.messages.Texts(), Texts{L"文件名不能包含下列任何字符:\n \\ /:*?\"<>|!"});
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

TEST(DlgSaveAs, NewFileRefusesTheOpenFilesNameAndAsksBeforeReplacingAnother) {
    TestHost host;
    AddFile(host, L"cur.xml");
    AddFile(host, L"other.xml");
    const CString open = Folder(host) + L"/cur.xml";

    DlgSaveAs create(DlgSaveAs::kNew, nullptr, open);
    int result = RunModal(create, [&](CDialog& d) {
        // The comparison with the open file ignores case; the refusal comes before the question.
        for (const wchar_t* name : {L"CUR", L"cur.xml"}) {
            host.messages.Clear();
            ASSERT_TRUE(TypeDlgItem(d, kName, name));
            ClickDlgItem(d, IDOK);
            EXPECT_FALSE(d.IsEnded());
            EXPECT_EQ(host.messages.Texts(), Texts{L"当前配置文件不能覆盖!"});
            EXPECT_EQ(host.messages.Messages()[0].flags, kWarningFlags);
        }
        // Another existing file is a question; only Yes lets the dialog end.
        ASSERT_TRUE(TypeDlgItem(d, kName, L"other"));
        for (int answer : {IDNO, IDCANCEL}) {
            host.messages.Clear();
            host.messages.Answer(answer);
            ClickDlgItem(d, IDOK);
            EXPECT_FALSE(d.IsEnded());
            ASSERT_EQ(host.messages.Texts(), Texts{L"是否覆盖已有配置文件?"});
            EXPECT_EQ(host.messages.Messages()[0].caption, L"Quorvel");
            EXPECT_EQ(host.messages.Messages()[0].flags, kQuestionFlags);
        }
        host.messages.Answer(IDYES);
        ClickDlgItem(d, IDOK);
    });
    EXPECT_EQ(result, IDOK);
    EXPECT_EQ(create.GetFullFileName(), Folder(host) + L"/other.xml");

    // Opening may pick the open file, without any message.
    host.messages.Clear();
    DlgSaveAs openDlg(DlgSaveAs::kOpen, nullptr, open);
    result = RunModal(openDlg, [](CDialog& d) {
        ASSERT_TRUE(SelectDlgItem(d, kList, 0));
        ClickDlgItem(d, IDOK);
    });
    EXPECT_EQ(result, IDOK);
    EXPECT_EQ(openDlg.GetFullFileName(), open);
    EXPECT_TRUE(host.messages.Messages().empty());
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
        {L"b", true, L"b.xml"},      {L"b.b", false, L"b.b.xml"},
    };
    for (const Case& c : cases) {
        host.messages.Clear();
        DlgSaveAs dlg(DlgSaveAs::kSaveAs, nullptr, L"");
        if (c.asks)
            host.messages.Answer(IDYES);
        int result = RunModal(dlg, [&](CDialog& d) {
            ASSERT_TRUE(TypeDlgItem(d, kName, c.typed));
            ClickDlgItem(d, IDOK);
        });
        const std::string typed = ToUtf8(CString(c.typed));
        EXPECT_EQ(result, IDOK) << typed;
        EXPECT_EQ(host.messages.Messages().size(), c.asks ? 1u : 0u) << typed;
        EXPECT_EQ(dlg.GetFullFileName(), Folder(host) + L"/" + c.file) << typed;
    }
}
