// koqdde-workbench: plays the host application on a data pack and opens the auto-apply
// configuration workbench. Without a display it renders the workbench offscreen into an image
// and exits, so that the program can be looked at from a terminal.

#include "Translate.h"
#include "apps/workbench/DesktopWorkbench.h"
#include "dialogs/CDlgAttConfig.h"
#include "host/HostData.h"
#include "host/QvKoSettings/QvKoSettings.h"
#include "host/datapack/DataPack.h"
#include "host/ui/QvPickers/QvPickers.h"
#include "platform/FileLock.h"
#include "platform/FileSystem.h"
#include "platform/MessageBox.h"
#include "presenter/CAutoQdDeConfigFacade.h"
#include "presenter/CQdDeConfigPresenter.h"
#include "store/CAttrConfigStore.h"
#include "store/ConfigFileCheck.h"
#include "ui/CDialog.h"
#include "ui/ModalHook.h"
#include "ui/QtMessageBox.h"
#include "ui/QtString.h"
#include "workbench/CAutoConfigDlg.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QFontMetrics>
#include <QImage>
#include <QMessageBox>
#include <QPainter>
#include <QPixmap>
#include <QPushButton>
#include <QTreeWidget>
#include <QWidget>

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <string>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace {

const char* const kHelp =
    "usage: koqdde-workbench [--data DIR] [--project FILE] [--config-dir DIR]\n"
    "                        [--cloud-dir DIR] [--screenshot FILE [--picker]]\n"
    "       koqdde-workbench --wizard FILE [--qd-lib NAME] [--de-lib NAME]\n"
    "                        [--description TEXT] [--can-go-back] [common options]\n"
    "       koqdde-workbench --attr-dialog [common options]\n"
    "\n"
    "Opens the auto-apply configuration workbench on a data pack.\n"
    "\n"
    "  --data DIR         data pack (default: the per-user copy of the bundled pack)\n"
    "  --project FILE     project file (default: the pack's project)\n"
    "  --config-dir DIR   the application's configuration folder (created and seeded from\n"
    "                     the pack when missing)\n"
    "  --cloud-dir DIR    the cloud disk's template store (default: the pack's cloud/)\n"
    "  --wizard FILE      open FILE as the cloud-template wizard's page instead, and print\n"
    "                     how it was left: 1 next, -1 previous, 0 cancel\n"
    "  --qd-lib NAME, --de-lib NAME, --description TEXT, --can-go-back\n"
    "                     what the wizard's page shows and allows\n"
    "  --attr-dialog      open the attribute configuration dialog instead\n"
    "  --screenshot FILE  render the dialog into FILE (PNG) instead of running it, and\n"
    "                     exit; without a display this is what happens, into\n"
    "                     $XDG_CACHE_HOME/koqdde/workbench.png (else ~/.cache/koqdde/,\n"
    "                     else the temporary folder)\n"
    "  --picker           with --screenshot: open the item picker of the project's mode\n"
    "                     beside the workbench first, and render both\n"
    "  --pick-bill FILE   with --screenshot --picker: also pick the picker's first bill and\n"
    "                     render the bill number dialog into FILE\n"
    "  --lint             open the rule check (规则检查) beside the workbench\n"
    "  --trial            open the trial window (试算) beside the workbench, on the selected\n"
    "                     small category\n"
    "  --set ATTR=VALUE   with --trial: fill in an attribute of the trial's component\n"
    "                     (repeatable)\n"
    "  --version          print the version and exit\n";

struct Options {
    DataPackOptions pack;
    CString cloudDir;
    std::string screenshot;
    bool picker = false;
    std::string pickBill;
    bool help = false;
    bool version = false;
    bool attrDialog = false;
    bool wizard = false;
    CString wizardFile;
    CString qdLib;
    CString deLib;
    CString description;
    bool canGoBack = false;
    SideWindows side;
};

bool ParseOptions(int argc, char** argv, Options& options, std::string& error) {
    for (int i = 1; i < argc; ++i) {
        std::string arg = argv[i];
        std::string value;
        auto eq = arg.find('=');
        if (arg.rfind("--", 0) == 0 && eq != std::string::npos) {
            value = arg.substr(eq + 1);
            arg = arg.substr(0, eq);
        } else if (arg == "--data" || arg == "--project" || arg == "--config-dir" ||
                   arg == "--cloud-dir" || arg == "--screenshot" || arg == "--wizard" ||
                   arg == "--qd-lib" || arg == "--de-lib" || arg == "--description" ||
                   arg == "--pick-bill" || arg == "--set") {
            if (i + 1 >= argc) {
                error = arg + " needs a value";
                return false;
            }
            value = argv[++i];
        }
        if (arg == "--help" || arg == "-h")
            options.help = true;
        else if (arg == "--version")
            options.version = true;
        else if (arg == "--data")
            options.pack.dataDir = FromUtf8(value);
        else if (arg == "--project")
            options.pack.projectFile = FromUtf8(value);
        else if (arg == "--config-dir")
            options.pack.configDir = FromUtf8(value);
        else if (arg == "--cloud-dir")
            options.cloudDir = FromUtf8(value);
        else if (arg == "--screenshot")
            options.screenshot = value;
        else if (arg == "--picker")
            options.picker = true;
        else if (arg == "--pick-bill")
            options.pickBill = value;
        else if (arg == "--wizard") {
            options.wizard = true;
            options.wizardFile = FromUtf8(value);
        } else if (arg == "--qd-lib")
            options.qdLib = FromUtf8(value);
        else if (arg == "--de-lib")
            options.deLib = FromUtf8(value);
        else if (arg == "--description")
            options.description = FromUtf8(value);
        else if (arg == "--can-go-back")
            options.canGoBack = true;
        else if (arg == "--attr-dialog")
            options.attrDialog = true;
        else if (arg == "--lint")
            options.side.lint = true;
        else if (arg == "--trial")
            options.side.trial = true;
        else if (arg == "--set") {
            const size_t at = value.find('=');
            if (at == std::string::npos || at == 0) {
                error = "--set needs ATTR=VALUE";
                return false;
            }
            options.side.values.emplace_back(FromUtf8(value.substr(0, at)),
                                             FromUtf8(value.substr(at + 1)));
        } else {
            error = "unknown option \"" + arg + "\"";
            return false;
        }
    }
    return true;
}

bool HasDisplay() {
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
        const char* value = std::getenv(name);
        if (value && *value)
            return true;
    }
    return false;
}

bool IsOffscreen() {
    const char* platform = std::getenv("QT_QPA_PLATFORM");
    return platform && (std::string(platform) == "offscreen" || std::string(platform) == "minimal");
}

// The dialog's client area under a title bar that carries its caption, as the window shows
// on a desktop (an offscreen window has no frame of its own).
QImage RenderWindow(QWidget& window) {
    QPixmap client = window.grab();
    QFont font = window.font();
    QFontMetrics metrics(font);
    const int barHeight = metrics.height() + 12;
    QImage image(client.width() + 2, client.height() + barHeight + 1, QImage::Format_RGB32);
    image.fill(QColor(0x70, 0x70, 0x70));
    QPainter painter(&image);
    painter.fillRect(1, 1, client.width(), barHeight - 1, QColor(0xE8, 0xEC, 0xF2));
    painter.setFont(font);
    painter.setPen(Qt::black);
    painter.drawText(QRect(10, 1, client.width() - 20, barHeight - 1),
                     Qt::AlignVCenter | Qt::AlignLeft, window.windowTitle());
    painter.drawPixmap(1, barHeight, client);
    return image;
}

bool SavePng(const QImage& image, const std::string& file) {
    const QString name = QString::fromStdString(file);
    QDir().mkpath(QFileInfo(name).absolutePath());
    return image.save(name, "PNG");
}

// Two windows as they stand on a desktop, the second at the first's right edge.
QImage SideBySide(const QImage& left, const QImage& right) {
    QImage image(left.width() + right.width(), std::max(left.height(), right.height()),
                 QImage::Format_RGB32);
    image.fill(QColor(0x3A, 0x4A, 0x5C));
    QPainter painter(&image);
    painter.drawImage(0, 0, left);
    painter.drawImage(left.width(), 0, right);
    return image;
}

// The windows beside the workbench that are showing (the program's side windows), in the order
// they were made.
QList<QWidget*> VisibleToolWindows(QWidget& workbench) {
    QList<QWidget*> shown;
    for (QWidget* child : workbench.findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
        if (child->isWindow() && child->isVisible())
            shown.push_back(child);
    return shown;
}

// The item picker the pick button showed: a visible tool window of the workbench.
QWidget* VisiblePicker(QWidget& workbench) {
    const QList<QWidget*> shown = VisibleToolWindows(workbench);
    return shown.isEmpty() ? nullptr : shown.front();
}

// The user's pick of the first bill the picker lists: the row selected, then "选用". The
// bill number dialog it opens comes back through the modal hook. False when nothing is listed.
bool PickFirstBill(QWidget& picker) {
    auto* items = picker.findChild<QTreeWidget*>(QStringLiteral("pickerItems"));
    auto* choose = picker.findChild<QPushButton*>(QStringLiteral("pickerChoose"));
    if (!items || !choose || items->topLevelItemCount() == 0)
        return false;
    items->setCurrentItem(items->topLevelItem(0));
    choose->click();
    return true;
}

// Before the workbench opens the current configuration: a file that does not load would be
// replaced by the current specialty alone on close, so a dated copy of it is made first and
// the user told where it is. The workbench then goes on as it always does.
void BackUpUnloadableConfiguration(const CString& file) {
    const std::string reason = ConfigLoadError(file);
    if (reason.empty())
        return;
    const CString backup = BackupBeside(file);
    std::fprintf(stderr, "koqdde-workbench: %s\nkoqdde-workbench: %s\n", reason.c_str(),
                 backup.IsEmpty() ? "no backup could be made"
                                  : ("a copy is kept as " + ToUtf8(backup)).c_str());
    // 当前配置文件无法读取 / 已备份为 / 备份失败
    const CString text =
        CString(L"\u5F53\u524D\u914D\u7F6E\u6587\u4EF6\u65E0\u6CD5\u8BFB\u53D6\uFF1A\n") +
        FromUtf8(reason) + L"\n\n" +
        (backup.IsEmpty() ? CString(L"\u5907\u4EFD\u5931\u8D25")
                          : CString(L"\u5DF2\u5907\u4EFD\u4E3A\uFF1A\n") + backup);
    ShowWarning(text);
}

// Opens the workbench, the wizard's page or the attribute dialog, as the options say.
void RunChosenDialog(const Options& options, bool printResult) {
    if (options.attrDialog) {
        // The application writes the attribute settings before anything reads them.
        if (!PathExists(QvKoSettings::GetAppProfile().GetConfigPath() + L"/AttrConfig.xml"))
            CAutoQdDeConfigFacade::AttrConfig();
        CDlgAttConfig dialog(nullptr);
        dialog.DoModal();
        return;
    }
    if (options.wizard) {
        int result = CAutoQdDeConfigFacade::StartOnlineConfig(options.wizardFile, options.qdLib,
                                                              options.deLib, options.description,
                                                              options.canGoBack, nullptr);
        if (printResult)
            std::printf("%d\n", result);
        return;
    }
    RunDesktopWorkbench(options.side);
}

// The picture's place when none is named: the user's cache folder, made when missing; the
// temporary folder when there is no cache to write to; the current folder only as a last resort.
std::string DefaultPicturePath() {
    namespace fs = std::filesystem;
    std::vector<fs::path> folders;
    if (const char* cache = std::getenv("XDG_CACHE_HOME"); cache && cache[0] == '/')
        folders.push_back(fs::path(cache) / "koqdde");
    if (const char* home = std::getenv("HOME"); home && home[0] == '/')
        folders.push_back(fs::path(home) / ".cache/koqdde");
    std::error_code error;
    if (fs::path temp = fs::temp_directory_path(error); !error)
        folders.push_back(temp / "koqdde");
    for (const fs::path& folder : folders) {
        fs::create_directories(folder, error);
        if (fs::is_directory(folder, error) && access(folder.c_str(), W_OK) == 0)
            return (folder / "workbench.png").string();
    }
    return fs::absolute("workbench.png", error).string();
}

// An input file the program can't use ends it: the reason goes to standard error and, when the
// program runs for someone rather than rendering, into a message box as well.
int StopOnUnusableFile(const Options& options, const std::string& what) {
    std::fprintf(stderr, "koqdde-workbench: %s\n", what.c_str());
    if (options.screenshot.empty())
        QMessageBox::critical(nullptr, QStringLiteral("koqdde-workbench"),
                              QString::fromStdString(what));
    return 2;
}

} // namespace

int main(int argc, char** argv) {
    std::setlocale(LC_ALL, "C.UTF-8");
    Options options;
    std::string error;
    if (!ParseOptions(argc, argv, options, error)) {
        std::fprintf(stderr, "koqdde-workbench: %s\n%s", error.c_str(), kHelp);
        return 2;
    }
    if (options.help) {
        std::fputs(kHelp, stdout);
        return 0;
    }
    if (options.version) {
        std::puts("koqdde-workbench " KOQDDE_VERSION);
        return 0;
    }
    if (!HasDisplay()) {
        if (options.screenshot.empty())
            options.screenshot = DefaultPicturePath();
        std::error_code error;
        std::printf("koqdde-workbench: no display; rendering the workbench offscreen into %s\n",
                    std::filesystem::absolute(options.screenshot, error).c_str());
        setenv("QT_QPA_PLATFORM", "offscreen", 1);
    } else if (options.screenshot.empty() && IsOffscreen()) {
        // Nobody could answer a modal loop on a platform that shows nothing.
        options.screenshot = DefaultPicturePath();
        std::printf("koqdde-workbench: offscreen; rendering the workbench into %s\n",
                    options.screenshot.c_str());
    }

    QApplication app(argc, argv);
    // The findings and verdicts beside the workbench are in its language.
    SetUpTranslationIn("koqdde", "zh_CN");
    HostData host;
    CString packError;
    if (!LoadDataPack(options.pack, host, packError))
        return StopOnUnusableFile(options, "cannot load the data pack: " + ToUtf8(packError));
    if (!options.cloudDir.IsEmpty())
        host.cloudDir = options.cloudDir;
    HostDataScope hostScope(&host);
    // Every dialog here reads the attribute settings; a file it can't use would pass for one
    // without settings.
    if (std::string why = CAttrConfigStore(host.project.currentSpec).LastError(); !why.empty())
        return StopOnUnusableFile(options, "cannot use the attribute settings: " + why);
    koqdde::ui::QtMessageBoxHandler messages;
    MessageBoxHandlerScope messageScope(&messages);
    SetActiveWindowProvider(koqdde::ui::QtActiveWindow);

    if (options.screenshot.empty()) {
        if (!options.wizard && !options.attrDialog) {
            // Held while the user reads about the copy, as the workbench holds its file after.
            FileLock opening;
            const CString current = CQdDeConfigPresenter::GetCurConfigDetailPath();
            opening.LockShared(current);
            BackUpUnloadableConfiguration(current);
        }
        // A failure a dialog does not handle itself (the attribute dialog's save raises one by
        // design) ends the program with its reason, not a crash.
        try {
            RunChosenDialog(options, true);
        } catch (const std::exception& e) {
            SetActiveWindowProvider(nullptr);
            std::fprintf(stderr, "koqdde-workbench: the dialog failed: %s\n", e.what());
            return 3;
        }
        SetActiveWindowProvider(nullptr);
        return 0;
    }

    // Render instead of running: the dialog is opened as usual, drawn once and left without
    // its way out, so the files stay as they were.
    bool saved = false;
    bool pickedSaved = false;
    std::string failed = options.screenshot;
    koqdde::ui::ModalHookScope hook([&](CDialog& dialog) {
        QWidget* window = dialog.widget();
        if (!window)
            return IDCANCEL;
        window->show();
        QApplication::processEvents();
        if (dialog.GetTemplateId() == CAutoConfigDlg::IDD && options.picker) {
            // The user's click on the pick button, then the picker beside the workbench.
            koqdde::ui::ClickDlgItem(dialog, AutoConfigIds::kPick);
            QApplication::processEvents();
            QWidget* picker = VisiblePicker(*window);
            QImage image = RenderWindow(*window);
            if (picker)
                image = SideBySide(image, RenderWindow(*picker));
            saved = SavePng(image, options.screenshot);
            if (saved && !options.pickBill.empty()) {
                failed = options.pickBill;
                saved = picker && PickFirstBill(*picker) && pickedSaved;
            }
            return IDCANCEL;
        }
        if (dialog.GetTemplateId() != CAutoConfigDlg::IDD && !options.pickBill.empty()) {
            pickedSaved = SavePng(RenderWindow(*window), options.pickBill);
            return IDCANCEL;
        }
        QImage image = RenderWindow(*window);
        for (QWidget* side : VisibleToolWindows(*window))
            image = SideBySide(image, RenderWindow(*side));
        saved = SavePng(image, options.screenshot);
        return IDCANCEL;
    });
    try {
        RunChosenDialog(options, false);
    } catch (const std::exception& e) {
        SetActiveWindowProvider(nullptr);
        std::fprintf(stderr, "koqdde-workbench: the dialog failed: %s\n", e.what());
        return 3;
    }
    SetActiveWindowProvider(nullptr);
    if (!saved) {
        std::fprintf(stderr, "koqdde-workbench: cannot write %s\n", failed.c_str());
        return 3;
    }
    return 0;
}
