// The workbench's file commands, the cloud disk and the ways out, and the wizard's page, driven
// as the user drives them: buttons by id, the side dialogs answered through the modal hook.

#include "host/ui/KoCloudKit/KoCloudKit.h"
#include "platform/FileLock.h"
#include "platform/FileSystem.h"
#include "presenter/CAutoQdDeConfigFacade.h"
#include "tests/workbench/WorkbenchFixture.h"

#include <QPalette>

#include <filesystem>

using namespace workbench_test;
using koqdde::ui::ClickDlgItem;
using koqdde::ui::ModalHook;
using koqdde::ui::ModalHookScope;
using koqdde::ui::TypeDlgItem;

namespace {

constexpr int kFileList = 1000;
constexpr int kFileName = 1069;

CString ConfigFile(const TestHost& host, const CString& name) {
    return host.ConfigDir() + L"/自动套配置/" + name + L".xml";
}

// How many configurations the file holds for 给排水\管道\给水管, read from disk.
size_t ConfigsOnDisk(const CString& file) {
    CQdDeConfigPresenter presenter(file);
    return SavedConfigs(presenter, Category(1, 101)).size();
}

// Answers the next side dialog as the user would; then what its buttons gave.
ModalHook Answer(const std::function<void(CDialog&)>& act) {
    return [act](CDialog& d) {
        act(d);
        return d.GetEndResult();
    };
}

// The file dialog's answer: a name typed (new, save as) or picked from the list (open), OK.
ModalHook NameAndOk(const CString& name, bool pick = false) {
    return Answer([=](CDialog& d) {
        if (pick) {
            CListBox& list = Ctl<CListBox>(d, kFileList);
            list.UserSelect(list.FindStringExact(-1, name));
        } else {
            TypeDlgItem(d, kFileName, name);
        }
        ClickDlgItem(d, IDOK);
    });
}

} // namespace

TEST(WorkbenchFiles, NewOpenAndSaveAsSwitchOrCopyTheFileAsTheCommandSays) {
    TestHost host;
    Catalog(host);
    host.dir.Write(L"config/自动套配置/坏文件.xml", "<?xml version=\"1.0\"?><别的根/>");
    // The template a new file is made from.
    host.dir.Write(
        L"config/QdDeConfig.def",
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<自动套清单定额配置信息 Version=\"1\"/>");
    RunWorkbench([&](CDialog& dlg) {
        ClickDlgItem(dlg, kAddConfig);
        ASSERT_EQ(Column(dlg, 0).size(), 2u);

        // 另存: a copy under the new name; the workbench stays on its file.
        ModalHookScope saveAs(NameAndOk(L"副本"));
        ClickDlgItem(dlg, kSaveFileAs);
        EXPECT_EQ(host.messages.Texts(), std::vector<CString>{L"另存成功。"});
        EXPECT_EQ(host.messages.Messages().back().flags, kInformationFlags);
        EXPECT_EQ(dlg.GetWindowText(), L"自动套配置-[ 清单模式: DefaultConfig ]");
        EXPECT_EQ(ConfigsOnDisk(ConfigFile(host, L"副本")), 2u);
        host.messages.Clear();

        // 新建: the open file is saved before the switch; the new one has the default only.
        ClickDlgItem(dlg, kAddConfig);
        ModalHookScope create(NameAndOk(L"新文件"));
        ClickDlgItem(dlg, kNewFile);
        EXPECT_EQ(dlg.GetWindowText(), L"自动套配置-[ 清单模式: 新文件 ]");
        EXPECT_EQ(Column(dlg, 1), std::vector<CString>{L"其它"});
        EXPECT_EQ(SelectedConfigRow(dlg), 0);
        EXPECT_EQ(ConfigsOnDisk(host.DefaultConfigFile()), 3u);

        // 调用 of a file that is no configuration: a warning, and the open file stays.
        ModalHookScope refused(NameAndOk(L"坏文件", true));
        ClickDlgItem(dlg, kOpenFile);
        EXPECT_EQ(host.messages.Texts().back(), L"文件功能不匹配!");
        EXPECT_EQ(host.messages.Messages().back().flags, kWarningFlags);
        EXPECT_EQ(dlg.GetWindowText(), L"自动套配置-[ 清单模式: 新文件 ]");

        // 调用 of the copy: its configurations, the tree keeping its selection.
        ModalHookScope open(NameAndOk(L"副本", true));
        ClickDlgItem(dlg, kOpenFile);
        EXPECT_EQ(dlg.GetWindowText(), L"自动套配置-[ 清单模式: 副本 ]");
        EXPECT_EQ(Column(dlg, 0).size(), 2u);
        // The open-file lock went with the switch: an edit of the open file is told the
        // workbench has it, one of the file left behind goes ahead.
        EXPECT_EQ(FileLock().LockForEdit(ConfigFile(host, L"副本"), 0),
                  FileLock::Outcome::HeldOpen);
        EXPECT_EQ(FileLock().LockForEdit(ConfigFile(host, L"新文件"), 0),
                  FileLock::Outcome::Locked);
        CTreeCtrl& tree = Ctl<CTreeCtrl>(dlg, kTree);
        EXPECT_EQ(tree.GetItemText(tree.GetSelectedItem()), L"给水管");

        // A cancelled file dialog changes nothing.
        ModalHookScope cancelled(Answer([](CDialog& d) { ClickDlgItem(d, IDCANCEL); }));
        ClickDlgItem(dlg, kNewFile);
        EXPECT_EQ(dlg.GetWindowText(), L"自动套配置-[ 清单模式: 副本 ]");
        PressEsc(dlg);
    });
    EXPECT_EQ(CQdDeConfigPresenter().GetCurConfig(), L"副本");
}

TEST(WorkbenchFiles, CloseBoxAndEscSaveAndEnterLeavesWithoutSaving) {
    TestHost host;
    Catalog(host);
    // Each way out after one added configuration: what reaches the file.
    auto leave = [&](const std::function<void(CDialog&)>& way) {
        RunWorkbench([&](CDialog& dlg) {
            ClickDlgItem(dlg, kAddConfig);
            way(dlg);
            EXPECT_TRUE(dlg.IsEnded());
        });
        return ConfigsOnDisk(host.DefaultConfigFile());
    };
    EXPECT_EQ(leave([](CDialog& dlg) { dlg.SendMessage(WM_CLOSE); }), 2u);
    EXPECT_EQ(leave([](CDialog& dlg) { PressKey(dlg.widget(), Qt::Key_Escape); }), 3u);
    EXPECT_EQ(leave([](CDialog& dlg) {
                  Ctl<CTreeCtrl>(dlg, kTree).SetFocus();
                  PressKey(dlg.widget(), Qt::Key_Return);
                  EXPECT_EQ(dlg.GetEndResult(), IDOK);
              }),
              3u)
        << "Enter ends the workbench without writing the file";
}

TEST(WorkbenchFiles, TheCloudDiskDownloadsATemplateAsTheCurrentConfiguration) {
    TestHost host;
    Catalog(host);
    // A template with one configuration more than the default, in the store's category.
    {
        CQdDeConfigPresenter maker;
        int id = -1;
        ASSERT_TRUE(maker.AddConfig(Category(1, 101), id));
        ASSERT_TRUE(MakeDirectories(host.dir.File(L"cloud/自动套模板")));
        ASSERT_TRUE(maker.SaveAs(host.dir.File(L"cloud/自动套模板/住宅模板.xml")));
    }
    std::filesystem::remove(ToUtf8(host.DefaultConfigFile()).c_str());
    host.data.cloudDir = host.dir.File(L"cloud");

    RunWorkbench([&](CDialog& dlg) {
        ClickDlgItem(dlg, kAddConfig);
        ClickDlgItem(dlg, kAddConfig);
        ModalHookScope download(Answer([](CDialog& d) {
            CListCtrl& list = Ctl<CListCtrl>(d, NetDiskIds::kList);
            ASSERT_EQ(list.GetItemCount(), 1);
            EXPECT_EQ(list.GetItemText(0, 0), L"住宅模板");
            EXPECT_TRUE(list.GetItemText(0, 1).Find(L" KB") > 0);
            ClickDlgItem(d, IDOK);
        }));
        ClickDlgItem(dlg, kImportFromCloud);
        EXPECT_EQ(dlg.GetWindowText(), L"自动套配置-[ 清单模式: 住宅模板 ]");
        EXPECT_EQ(Column(dlg, 0).size(), 2u);
        EXPECT_EQ(ConfigsOnDisk(host.DefaultConfigFile()), 3u) << "saved before the switch";

        // The same template again: the user keeps the file, and the workbench reads its own
        // file anew, so an edit since the last save is gone.
        ClickDlgItem(dlg, kAddConfig);
        host.messages.Answer(IDNO);
        ModalHookScope keep(Answer([](CDialog& d) {
            ClickDlgItem(d, IDOK);
            EXPECT_FALSE(d.IsEnded()) << "a No keeps the dialog open";
            ClickDlgItem(d, IDCANCEL);
        }));
        ClickDlgItem(dlg, kImportFromCloud);
        EXPECT_TRUE(host.messages.Texts().back().Find(L"已存在") >= 0);
        EXPECT_EQ(Column(dlg, 0).size(), 2u);
        PressEsc(dlg);
    });
    EXPECT_EQ(CQdDeConfigPresenter().GetCurConfig(), L"住宅模板");
}

TEST(Wizard, ThePageShowsTheTemplateAndReturnsTheWayItWasLeft) {
    TestHost host;
    Catalog(host);
    const CString file = host.DefaultConfigFile();
    CQdDeConfigPresenter().Save(); // the file the template came as
    // Runs the page on the file; act drives it. Returns the facade's result.
    auto run = [&](const CString& qd, const CString& description, bool canGoBack,
                   const std::function<void(CDialog&)>& act) {
        ModalHookScope hook(Answer(act));
        return CAutoQdDeConfigFacade::StartOnlineConfig(file, qd, L"DEF.MDB", description,
                                                        canGoBack, nullptr);
    };

    EXPECT_EQ(
        run(L"abc.mdb.bak", L"", false,
            [&](CDialog& d) {
                EXPECT_EQ(d.GetWindowText(), L"自动套-云模板");
                for (int id : {kNewFile, kOpenFile, kSaveFileAs, kImportFromCloud, kDescription})
                    EXPECT_FALSE(d.GetDlgItem(id)->IsWindowVisible()) << id;
                for (int id : {kPrevious, kNext, kWizardCancel, kWizardNote, kQdName})
                    EXPECT_TRUE(d.GetDlgItem(id)->IsWindowVisible()) << id;
                EXPECT_FALSE(Enabled(d, kPrevious));
                EXPECT_FALSE(ClickDlgItem(d, kPrevious));
                EXPECT_EQ(d.GetDlgItemText(kQdName), L"abc");
                EXPECT_EQ(d.GetDlgItemText(kDeName), L"DEF.MDB");
                EXPECT_EQ(
                    d.GetDlgItem(kWizardNote)->widget()->palette().color(QPalette::WindowText),
                    QColor(Qt::red));
                ClickDlgItem(d, kAddConfig);
                ClickDlgItem(d, kNext);
            }),
        1);
    EXPECT_EQ(ConfigsOnDisk(file), 2u);

    EXPECT_EQ(run(L"", L"先选用再检查", true,
                  [&](CDialog& d) {
                      EXPECT_EQ(d.GetDlgItemText(kQdName), L"");
                      CWnd* link = d.GetDlgItem(kDescription);
                      EXPECT_TRUE(link->IsWindowVisible());
                      EXPECT_TRUE(link->widget()->font().underline());
                      ClickDlgItem(d, kDescription);
                      ASSERT_FALSE(host.messages.Messages().empty());
                      EXPECT_EQ(host.messages.Messages().back().text, L"先选用再检查");
                      EXPECT_EQ(host.messages.Messages().back().flags, 0u);
                      ClickDlgItem(d, kAddConfig);
                      ClickDlgItem(d, kPrevious);
                  }),
              -1);
    EXPECT_EQ(ConfigsOnDisk(file), 3u);

    // 取消 keeps what the user did; Enter leaves the page unsaved.
    for (bool enter : {false, true}) {
        EXPECT_EQ(run(L"", L"", true,
                      [&](CDialog& d) {
                          ClickDlgItem(d, kAddConfig);
                          Ctl<CTreeCtrl>(d, kTree).SetFocus();
                          if (enter)
                              PressKey(d.widget(), Qt::Key_Return);
                          else
                              ClickDlgItem(d, kWizardCancel);
                          EXPECT_TRUE(d.IsEnded());
                      }),
                  0);
        EXPECT_EQ(ConfigsOnDisk(file), 4u) << enter;
    }
}
