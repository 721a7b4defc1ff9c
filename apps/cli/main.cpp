// koqdde: every query and edit of an auto-apply configuration from the shell.
#include "Cli.h"

#include "host/datapack/DataPack.h"
#include "platform/ComError.h"
#include "platform/FileSystem.h"
#include "platform/MessageBox.h"

#include <clocale>
#include <cstdio>
#include <exception>
#include <map>
#include <set>

std::vector<CommandSpec> QueryCommands();
std::vector<CommandSpec> FileCommands();
std::vector<CommandSpec> EditCommands();
std::vector<CommandSpec> ToolCommands();
std::vector<CommandSpec> LibraryCommands();

const std::vector<CommandSpec>& AllCommands() {
    static const std::vector<CommandSpec> all = [] {
        std::vector<CommandSpec> list;
        for (auto group :
             {QueryCommands, FileCommands, EditCommands, LibraryCommands, ToolCommands})
            for (auto& command : group())
                list.push_back(std::move(command));
        return list;
    }();
    return all;
}

namespace {

// The module's message boxes go to standard error; questions are answered "no" since nobody
// is there to answer them.
class ConsoleMessages : public IMessageBoxHandler {
public:
    int Show(void*, const CString& text, const CString& caption, unsigned flags) override {
        std::fprintf(stderr, "%s: %s\n", ToUtf8(caption).c_str(), ToUtf8(text).c_str());
        return (flags & 0xF) == MB_YESNO ? IDNO : IDOK;
    }
};

const char* const kGlobalHelp =
    "usage: koqdde [GLOBAL OPTIONS] COMMAND [ARGS]\n"
    "\n"
    "Queries and edits the auto-apply configuration of bill and quota items.\n"
    "\n"
    "Global options:\n"
    "  --data DIR        data pack to play the host on (default: the per-user copy of the\n"
    "                    bundled pack)\n"
    "  --project FILE    project file (default: the pack's project)\n"
    "  --config-dir DIR  the application's configuration folder (created and seeded from the\n"
    "                    pack when missing)\n"
    "  --file FILE       configuration file to work on (default: the current configuration)\n"
    "  --json            machine-readable output\n"
    "  --dry-run         edits: show the result without saving\n"
    "  --force           edit a file that does not load (it is replaced by the current\n"
    "                    specialty alone) or that a workbench has open\n"
    "  --help            this text; COMMAND --help for a command's own\n"
    "\n"
    "Exit status: 0 the operation answered true, 1 it answered false, 2 usage error,\n"
    "3 unexpected failure, 4 refused to keep the file (it does not load, a workbench has it\n"
    "open, or another edit holds it).\n"
    "\n"
    "Commands:\n";

void PrintGlobalHelp() {
    std::string text = kGlobalHelp;
    for (const auto& command : AllCommands()) {
        std::string head = "  " + command.name + (command.usage.empty() ? "" : " " + command.usage);
        if (head.size() < 28)
            head.resize(28, ' ');
        else
            head += "\n" + std::string(28, ' ');
        text += head + command.summary + "\n";
    }
    std::fputs(text.c_str(), stdout);
}

void PrintCommandHelp(const CommandSpec& command) {
    std::string text = "usage: koqdde [GLOBAL OPTIONS] " + command.name +
                       (command.usage.empty() ? "" : " " + command.usage) + "\n\n" +
                       command.summary + ".\n\n" + command.help + "\n";
    std::fputs(text.c_str(), stdout);
}

// Takes the global options out of the arguments, wherever they stand.
GlobalOptions ParseGlobals(std::vector<std::string>& args) {
    GlobalOptions options;
    std::map<std::string, CString*> valued = {{"--data", &options.dataDir},
                                              {"--project", &options.projectFile},
                                              {"--config-dir", &options.configDir},
                                              {"--file", &options.file}};
    std::vector<std::string> rest;
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        if (a == "--") {
            // The command's own parser sees "--" too, so its operands may start with "--".
            rest.insert(rest.end(), args.begin() + static_cast<long>(i), args.end());
            break;
        }
        auto eq = a.find('=');
        std::string key = a.rfind("--", 0) == 0 && eq != std::string::npos ? a.substr(0, eq) : a;
        if (auto it = valued.find(key); it != valued.end()) {
            if (eq != std::string::npos) {
                *it->second = FromUtf8(a.substr(eq + 1));
            } else {
                if (i + 1 >= args.size())
                    throw UsageError(a + " needs a value");
                *it->second = FromUtf8(args[++i]);
            }
        } else if (a == "--json") {
            options.json = true;
        } else if (a == "--dry-run") {
            options.dryRun = true;
        } else if (a == "--force") {
            options.force = true;
        } else if (a == "--help" || a == "-h") {
            options.help = true;
        } else {
            rest.push_back(a);
        }
    }
    args = rest;
    return options;
}

int Run(std::vector<std::string> args) {
    GlobalOptions options = ParseGlobals(args);
    if (args.empty()) {
        PrintGlobalHelp();
        return options.help ? kExitTrue : kExitUsage;
    }
    if (args.front() == "--")
        args.erase(args.begin());
    if (args.empty())
        throw UsageError("no command after \"--\"");
    std::string name = args.front();
    args.erase(args.begin());
    const CommandSpec* command = nullptr;
    for (const auto& c : AllCommands())
        if (c.name == name)
            command = &c;
    if (!command)
        throw UsageError("unknown command \"" + name + "\" (koqdde --help lists them)");
    if (options.help) {
        PrintCommandHelp(*command);
        return kExitTrue;
    }

    HostData host;
    CString error;
    if (!LoadDataPack({options.dataDir, options.projectFile, options.configDir}, host, error))
        throw UsageError("cannot load the data pack: " + ToUtf8(error));
    HostDataScope hostScope(&host);
    // The commands that write the configuration file; they hold its edit lock.
    static const std::set<std::string> kEditing = {
        "config", "condition", "qd", "de", "apply", "open", "new", "save-as", "refresh"};
    CliContext ctx(options, kEditing.count(name) > 0);
    // Opening a missing file creates it; a refused command must not leave one behind.
    bool fileExisted = options.file.IsEmpty() || PathExists(options.file);
    try {
        return command->run(ctx, args);
    } catch (const UsageError&) {
        if (!fileExisted && PathExists(options.file))
            std::remove(ToUtf8(options.file).c_str());
        throw;
    }
}

} // namespace

int main(int argc, char** argv) {
    std::setlocale(LC_ALL, "C.UTF-8");
    ConsoleMessages messages;
    MessageBoxHandlerScope messageScope(&messages);
    std::vector<std::string> args(argv + 1, argv + argc);
    try {
        return Run(std::move(args));
    } catch (const UsageError& e) {
        std::fprintf(stderr, "koqdde: %s\n", e.what());
        return kExitUsage;
    } catch (const Refusal& e) {
        std::fprintf(stderr, "koqdde: %s\n", e.what());
        return kExitRefused;
    } catch (const ComError& e) {
        std::fprintf(stderr, "koqdde: failed: %s\n", e.what());
        return kExitError;
    } catch (const std::exception& e) {
        std::fprintf(stderr, "koqdde: unexpected error: %s\n", e.what());
        return kExitError;
    } catch (...) {
        std::fprintf(stderr, "koqdde: unexpected error\n");
        return kExitError;
    }
}
