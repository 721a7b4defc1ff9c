// koqdde: every query and edit of an auto-apply configuration from the shell.
#include "Cli.h"
#include "Json.h"
#include "Translate.h"

#include "host/datapack/DataPack.h"
#include "platform/ComError.h"
#include "platform/FileSystem.h"
#include "platform/MessageBox.h"

#include <algorithm>
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
std::vector<CommandSpec> MainCommands();
std::vector<CommandSpec> CompletionCommands();
std::vector<CommandSpec> RuleCommands();

const std::vector<CommandSpec>& AllCommands() {
    static const std::vector<CommandSpec> all = [] {
        std::vector<CommandSpec> list;
        for (auto group : {QueryCommands, RuleCommands, FileCommands, EditCommands, LibraryCommands,
                           ToolCommands, CompletionCommands, MainCommands})
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

// Marked for the catalogue here, translated where it is printed.
const char* const kGlobalHelp = TrNoop(
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
    "  --spec NAME       the project's specialty to work on, by name or id (default: its\n"
    "                    current one)\n"
    "  --json            machine-readable output\n"
    "  --dry-run         edits: show the result without saving\n"
    "  --force           edit a file that does not load (it is replaced by the current\n"
    "                    specialty alone) or that a workbench has open\n"
    "  --help            this text; COMMAND --help or help COMMAND for a command's own\n"
    "  --version         the tool's version\n"
    "\n"
    "Exit status: 0 the operation answered true, 1 it answered false, 2 usage error,\n"
    "3 unexpected failure, 4 refused to keep the file (it does not load, a workbench has it\n"
    "open, or another edit holds it).\n"
    "\n"
    "Commands:\n");

void PrintGlobalHelp(std::FILE* out) {
    std::string text = Tr(kGlobalHelp);
    for (const auto& command : AllCommands()) {
        std::string head = "  " + command.name + (command.usage.empty() ? "" : " " + command.usage);
        if (head.size() < 28)
            head.resize(28, ' ');
        else
            head += "\n" + std::string(28, ' ');
        text += head + Tr(command.summary.c_str()) + "\n";
    }
    std::fputs(text.c_str(), out);
}

void PrintCommandHelp(const CommandSpec& command) {
    // The summary is a phrase; the help shows it as a sentence of its language.
    const std::string summary = Tr(command.summary.c_str());
    const bool ascii = !summary.empty() && static_cast<unsigned char>(summary.back()) < 0x80;
    std::string text = Tr("usage: koqdde [GLOBAL OPTIONS] ") + command.name +
                       (command.usage.empty() ? "" : " " + command.usage) + "\n\n" + summary +
                       (ascii ? "." : "。") + "\n\n" + Tr(command.help.c_str()) + "\n";
    std::fputs(text.c_str(), stdout);
}

const CommandSpec* FindCommand(const std::string& name) {
    for (const auto& command : AllCommands())
        if (command.name == name)
            return &command;
    return nullptr;
}

const CommandSpec& CommandNamed(const std::string& name) {
    if (const CommandSpec* command = FindCommand(name))
        return *command;
    std::vector<std::string> names;
    for (const auto& command : AllCommands())
        names.push_back(command.name);
    throw UsageError(Tr("unknown command \"{1}\"", {name}) + DidYouMean(name, names) +
                     Tr(" (koqdde --help lists them)"));
}

// --spec: the project's specialty to work on, by name or id, in place of its current one.
void SelectSpec(HostData& host, const CString& wanted) {
    std::string names;
    for (const HostSpecialty& spec : host.catalog) {
        if (spec.name == wanted || ToUtf8(wanted) == std::to_string(spec.id)) {
            host.project.currentSpec = spec.name;
            return;
        }
        names += (names.empty() ? "" : ", ") + ToUtf8(spec.name);
    }
    throw UsageError(
        Tr("the project has no specialty \"{1}\"; it has {2}", {ToUtf8(wanted), names}));
}

int Run(GlobalOptions options, std::vector<std::string> args) {
    if (options.version) {
        PrintLine("koqdde " KOQDDE_VERSION);
        return kExitTrue;
    }
    if (args.empty()) {
        // Asked for, the help is the answer; otherwise it explains a usage error.
        PrintGlobalHelp(options.help ? stdout : stderr);
        return options.help ? kExitTrue : kExitUsage;
    }
    if (args.front() == "--")
        args.erase(args.begin());
    if (args.empty())
        throw UsageError(Tr("no command after \"--\""));
    std::string name = args.front();
    args.erase(args.begin());
    if (name.size() > 1 && name[0] == '-') {
        throw UsageError(Tr("unknown option {1}", {name}) +
                         DidYouMean(name.substr(0, name.find('=')), GlobalOptionNames()));
    }
    const CommandSpec& command = CommandNamed(name);
    if (options.help) {
        PrintCommandHelp(command);
        return kExitTrue;
    }
    if (command.standalone) {
        CliContext ctx(options);
        return command.run(ctx, args);
    }

    HostData host;
    CString error;
    if (!LoadDataPack({options.dataDir, options.projectFile, options.configDir}, host, error))
        throw UsageError(Tr("cannot load the data pack: {1}", {ToUtf8(error)}));
    if (!options.spec.IsEmpty())
        SelectSpec(host, options.spec);
    HostDataScope hostScope(&host);
    // The commands that write the configuration file; they hold its edit lock.
    static const std::set<std::string> kEditing = {
        "config", "condition", "qd", "de", "apply", "open", "new", "save-as", "refresh"};
    // apply with a component list only reads the configuration.
    const bool readsList = name == "apply" && AppliesComponentList(args);
    CliContext ctx(options, kEditing.count(name) > 0 && !readsList);
    // Opening a missing file creates it; a refused command must not leave one behind.
    bool fileExisted = options.file.IsEmpty() || PathExists(options.file);
    try {
        return command.run(ctx, args);
    } catch (const UsageError&) {
        if (!fileExisted && PathExists(options.file))
            std::remove(ToUtf8(options.file).c_str());
        throw;
    }
}

int Help(CliContext&, const std::vector<std::string>& args) {
    if (args.size() > 1)
        throw UsageError(Tr("help takes at most one COMMAND"));
    if (args.empty())
        PrintGlobalHelp(stdout);
    else
        PrintCommandHelp(CommandNamed(args[0]));
    return kExitTrue;
}

// A failure as the user meets it: one line on standard error, or under --json one object
// there, so that a program reading standard output never mistakes it for a result.
int Fail(bool json, int status, const char* kind, const std::string& message) {
    if (json) {
        const std::string text = Json::MakeObject()
                                     .Set("error", Json::MakeObject()
                                                       .Set("status", status)
                                                       .Set("kind", kind)
                                                       .Set("message", message))
                                     .Dump();
        std::fprintf(stderr, "%s\n", text.c_str());
    } else {
        std::fprintf(stderr, "koqdde: %s\n", message.c_str());
    }
    return status;
}

} // namespace

int main(int argc, char** argv) {
    std::vector<std::string> args(argv + 1, argv + argc);
    // The completion scripts pass the line as typed: its options are not this run's. It reads
    // the commands' texts untranslated, as their options are written in them.
    if (!args.empty() && args.front() == "__complete")
        return CompleteWords({args.begin() + 1, args.end()});
    SetUpTranslation("koqdde");
    ConsoleMessages messages;
    MessageBoxHandlerScope messageScope(&messages);
    // Looked for before the options are parsed, so that a malformed line fails as JSON too.
    const auto end = std::find(args.begin(), args.end(), "--");
    const bool json = std::find(args.begin(), end, "--json") != end;
    try {
        GlobalOptions options = ParseGlobals(args);
        return Run(std::move(options), std::move(args));
    } catch (const UsageError& e) {
        return Fail(json, kExitUsage, "usage", e.what());
    } catch (const Refusal& e) {
        return Fail(json, kExitRefused, "refused", e.what());
    } catch (const ComError& e) {
        return Fail(json, kExitError, "failed", Tr("failed: {1}", {e.what()}));
    } catch (const std::exception& e) {
        return Fail(json, kExitError, "unexpected", Tr("unexpected error: {1}", {e.what()}));
    } catch (...) {
        return Fail(json, kExitError, "unexpected", Tr("unexpected error"));
    }
}

GlobalOptions ParseGlobals(std::vector<std::string>& args) {
    GlobalOptions options;
    std::map<std::string, CString*> valued = {{"--data", &options.dataDir},
                                              {"--project", &options.projectFile},
                                              {"--config-dir", &options.configDir},
                                              {"--file", &options.file},
                                              {"--spec", &options.spec}};
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
                    throw UsageError(Tr("{1} needs a value", {a}));
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
        } else if (a == "--version") {
            options.version = true;
        } else {
            rest.push_back(a);
        }
    }
    args = rest;
    return options;
}

const std::vector<std::string>& GlobalOptionNames() {
    static const std::vector<std::string> names = {"--data", "--project", "--config-dir", "--file",
                                                   "--spec", "--json",    "--dry-run",    "--force",
                                                   "--help", "--version"};
    return names;
}

std::vector<CommandSpec> MainCommands() {
    return {
        {"help", "[COMMAND]", TrNoop("the help of the tool, or of one command"),
         TrNoop(
             "koqdde help COMMAND is koqdde COMMAND --help.\n\nExample:\n  koqdde help condition"),
         Help, true},
    };
}
