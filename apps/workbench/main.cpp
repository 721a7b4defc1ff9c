// koqdde-workbench: plays the host application on a data pack and opens the auto-apply
// configuration workbench. Without a display it renders the workbench offscreen into an image
// and exits, so that the program can be looked at from a terminal.

#include "host/HostData.h"
#include "host/datapack/DataPack.h"
#include "platform/MessageBox.h"
#include "presenter/CAutoQdDeConfigFacade.h"
#include "ui/CDialog.h"
#include "ui/ModalHook.h"
#include "ui/QtMessageBox.h"
#include "ui/QtString.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QFontMetrics>
#include <QImage>
#include <QPainter>
#include <QPixmap>
#include <QWidget>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

const char* const kHelp =
    "usage: koqdde-workbench [--data DIR] [--project FILE] [--config-dir DIR]\n"
    "                        [--screenshot FILE]\n"
    "\n"
    "Opens the auto-apply configuration workbench on a data pack.\n"
    "\n"
    "  --data DIR         data pack (default: the per-user copy of the bundled pack)\n"
    "  --project FILE     project file (default: the pack's project)\n"
    "  --config-dir DIR   the application's configuration folder (created and seeded from\n"
    "                     the pack when missing)\n"
    "  --screenshot FILE  render the workbench into FILE (PNG) instead of running it, and\n"
    "                     exit; without a display this is what happens, into\n"
    "                     build/workbench.png\n";

struct Options {
    DataPackOptions pack;
    std::string screenshot;
    bool help = false;
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
                   arg == "--screenshot") {
            if (i + 1 >= argc) {
                error = arg + " needs a value";
                return false;
            }
            value = argv[++i];
        }
        if (arg == "--help" || arg == "-h")
            options.help = true;
        else if (arg == "--data")
            options.pack.dataDir = FromUtf8(value);
        else if (arg == "--project")
            options.pack.projectFile = FromUtf8(value);
        else if (arg == "--config-dir")
            options.pack.configDir = FromUtf8(value);
        else if (arg == "--screenshot")
            options.screenshot = value;
        else {
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
    if (!HasDisplay()) {
        if (options.screenshot.empty())
            options.screenshot = "build/workbench.png";
        std::printf("koqdde-workbench: no display; rendering the workbench offscreen into %s\n",
                    options.screenshot.c_str());
        setenv("QT_QPA_PLATFORM", "offscreen", 1);
    } else if (options.screenshot.empty() && IsOffscreen()) {
        // Nobody could answer a modal loop on a platform that shows nothing.
        options.screenshot = "build/workbench.png";
    }

    QApplication app(argc, argv);
    HostData host;
    CString packError;
    if (!LoadDataPack(options.pack, host, packError)) {
        std::fprintf(stderr, "koqdde-workbench: cannot load the data pack: %s\n",
                     ToUtf8(packError).c_str());
        return 2;
    }
    HostDataScope hostScope(&host);
    koqdde::ui::QtMessageBoxHandler messages;
    MessageBoxHandlerScope messageScope(&messages);
    SetActiveWindowProvider(koqdde::ui::QtActiveWindow);

    if (options.screenshot.empty()) {
        CAutoQdDeConfigFacade::StartQdDeConfig(nullptr, CRect());
        SetActiveWindowProvider(nullptr);
        return 0;
    }

    // Render instead of running: the workbench is opened as usual, drawn once and left
    // without its way out, so the files stay as they were.
    bool saved = false;
    koqdde::ui::ModalHookScope hook([&](CDialog& dialog) {
        QWidget* window = dialog.widget();
        if (window) {
            QDir().mkpath(QFileInfo(QString::fromStdString(options.screenshot)).absolutePath());
            window->show();
            QApplication::processEvents();
            saved = RenderWindow(*window).save(QString::fromStdString(options.screenshot), "PNG");
        }
        return IDCANCEL;
    });
    CAutoQdDeConfigFacade::StartQdDeConfig(nullptr, CRect());
    SetActiveWindowProvider(nullptr);
    if (!saved) {
        std::fprintf(stderr, "koqdde-workbench: cannot write %s\n", options.screenshot.c_str());
        return 3;
    }
    return 0;
}
