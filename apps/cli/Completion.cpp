// completion: the shell scripts, and the hidden __complete they call, which answers from the
// commands' own usage and help texts so that a new option or command completes without a
// second list to keep.
#include "Cli.h"
#include "Translate.h"

#include "host/datapack/DataPack.h"

#include <algorithm>
#include <cstdio>
#include <regex>

namespace {

const char* const kBash = R"(# bash completion for koqdde.
# Load it with: source <(koqdde completion bash)
# or install it as /usr/share/bash-completion/completions/koqdde.
_koqdde() {
    local out directive
    local -a lines
    out=$("${COMP_WORDS[0]}" __complete "${COMP_WORDS[@]:1:COMP_CWORD}" 2>/dev/null) || return 0
    mapfile -t lines <<<"$out"
    directive=${lines[-1]}
    unset 'lines[-1]'
    if [[ $directive == :files ]]; then
        compopt -o filenames 2>/dev/null
        mapfile -t COMPREPLY < <(compgen -f -- "${COMP_WORDS[COMP_CWORD]}")
    else
        COMPREPLY=("${lines[@]}")
    fi
}
complete -F _koqdde koqdde
)";

const char* const kZsh = R"(#compdef koqdde
# zsh completion for koqdde.
# Load it with: source <(koqdde completion zsh)
# or install it as _koqdde in a folder of $fpath.
_koqdde() {
    local -a lines
    lines=("${(@f)$("${words[1]}" __complete "${(@)words[2,CURRENT]}" 2>/dev/null)}")
    local directive=${lines[-1]}
    lines=("${(@)lines[1,-2]}")
    if [[ $directive == :files ]]; then
        _files
    else
        compadd -Q -- "${lines[@]}"
    fi
}
if [[ "${funcstack[1]}" == _koqdde ]]; then
    _koqdde "$@"
else
    compdef _koqdde koqdde
fi
)";

const char* const kFish = R"(# fish completion for koqdde.
# Load it with: koqdde completion fish | source
# or install it as ~/.config/fish/completions/koqdde.fish.
function __koqdde_complete
    set -l words (commandline -opc)
    set -l program $words[1]
    set -e words[1]
    set -l lines ($program __complete $words (commandline -ct) 2>/dev/null)
    set -l directive $lines[-1]
    set -e lines[-1]
    if test "$directive" = :files
        __fish_complete_path (commandline -ct)
    else
        printf '%s\n' $lines
    end
end
complete -c koqdde -f -a '(__koqdde_complete)'
)";

int Completion(CliContext&, const std::vector<std::string>& args) {
    const std::string shell = args.size() == 1 ? args[0] : "";
    const char* script = shell == "bash"   ? kBash
                         : shell == "zsh"  ? kZsh
                         : shell == "fish" ? kFish
                                           : nullptr;
    if (!script)
        throw UsageError(Tr("completion takes one SHELL: bash, zsh or fish"));
    std::fputs(script, stdout);
    return kExitTrue;
}

// The options a command's usage and help name: "--attr NAME" takes a value, "--strings" none.
struct Option {
    std::string name;
    bool valued = false;
};

std::vector<Option> OptionsOf(const CommandSpec& command) {
    static const std::regex kOption("--([a-z][a-z0-9-]*)(( |=)[A-Z])?");
    const std::string text = command.usage + "\n" + command.help;
    std::vector<Option> options;
    for (std::sregex_iterator it(text.begin(), text.end(), kOption), end; it != end; ++it) {
        Option option{"--" + (*it)[1].str(), (*it)[2].matched};
        auto same = std::find_if(options.begin(), options.end(),
                                 [&](const Option& o) { return o.name == option.name; });
        if (same == options.end())
            options.push_back(option);
        else
            same->valued = same->valued || option.valued;
    }
    return options;
}

// The operands of a usage, its bracketed options dropped: "add|copy CATEGORY [CONFIG-ID]" gives
// {"add|copy", "CATEGORY", "CONFIG-ID"}. A usage of alternatives ("write FILE | read FILE")
// gives the operands of the one whose first word is `sub`, or the first words all joined by |.
std::vector<std::string> Operands(const std::string& usage, const std::string& sub) {
    std::vector<std::vector<std::string>> alternatives(1);
    int optionDepth = 0;
    std::string word;
    auto flush = [&] {
        if (!word.empty() && word != "|")
            alternatives.back().push_back(word);
        else if (word == "|")
            alternatives.emplace_back();
        word.clear();
    };
    for (size_t i = 0; i < usage.size(); ++i) {
        const char c = usage[i];
        if (c == '[' && usage.compare(i, 3, "[--") == 0)
            ++optionDepth;
        if (optionDepth > 0) {
            optionDepth += c == '[' && usage.compare(i, 3, "[--") != 0 ? 1 : 0;
            optionDepth -= c == ']' ? 1 : 0;
            continue;
        }
        if (c == ' ')
            flush();
        else if (c != '[' && c != ']' && c != '.')
            word += c;
    }
    flush();
    if (alternatives.size() == 1)
        return alternatives.front();
    std::string firsts;
    for (const auto& alternative : alternatives) {
        if (alternative.empty())
            continue;
        if (alternative.front() == sub)
            return alternative;
        firsts += (firsts.empty() ? "" : "|") + alternative.front();
    }
    return {firsts};
}

std::vector<std::string> Split(const std::string& text, char separator) {
    std::vector<std::string> parts;
    size_t start = 0;
    for (size_t end; (end = text.find(separator, start)) != std::string::npos; start = end + 1)
        parts.push_back(text.substr(start, end - start));
    parts.push_back(text.substr(start));
    return parts;
}

// The categories as a shell offers them: '/' between the names, which needs no quoting.
std::vector<std::string> Categories(GlobalOptions options) {
    HostData host;
    CString error;
    if (!LoadDataPack({options.dataDir, options.projectFile, options.configDir}, host, error))
        return {};
    if (!options.spec.IsEmpty())
        for (const HostSpecialty& spec : host.catalog)
            if (spec.name == options.spec)
                host.project.currentSpec = spec.name;
    std::vector<std::string> lines = CatalogCategories(host);
    for (std::string& line : lines)
        std::replace(line.begin(), line.end(), '\\', '/');
    return lines;
}

const char* const kFiles = ":files";
const char* const kNone = ":none";

// The candidates for the last word; the last line says whether the shell adds file names.
std::vector<std::string> Candidates(std::vector<std::string> words) {
    const std::string current = words.empty() ? "" : words.back();
    if (!words.empty())
        words.pop_back();
    const std::vector<std::string>& globals = GlobalOptionNames();
    static const std::vector<std::string> kValuedGlobals = {"--data", "--project", "--config-dir",
                                                            "--file", "--spec"};
    if (!words.empty() && std::count(kValuedGlobals.begin(), kValuedGlobals.end(), words.back()))
        return {words.back() == "--spec" ? kNone : kFiles};
    GlobalOptions options = ParseGlobals(words);

    const CommandSpec* command = nullptr;
    if (!words.empty())
        for (const auto& c : AllCommands())
            if (c.name == words.front())
                command = &c;
    std::vector<std::string> offered;
    std::string directive = kNone;
    if (current.rfind("-", 0) == 0) {
        offered = globals;
        if (command)
            for (const Option& option : OptionsOf(*command))
                offered.push_back(option.name);
    } else if (words.empty()) {
        for (const auto& c : AllCommands())
            offered.push_back(c.name);
    } else if (command) {
        // The operand being written: the words after the command that are no option or
        // option value.
        std::vector<Option> commandOptions = OptionsOf(*command);
        std::vector<std::string> operands;
        for (size_t i = 1; i < words.size(); ++i) {
            auto option = std::find_if(commandOptions.begin(), commandOptions.end(),
                                       [&](const Option& o) { return o.name == words[i]; });
            if (option != commandOptions.end() && option->valued && i + 1 == words.size())
                return {kNone}; // the value of an option
            if (option != commandOptions.end())
                i += option->valued ? 1 : 0;
            else if (words[i].rfind("--", 0) != 0)
                operands.push_back(words[i]);
        }
        const std::vector<std::string> usage =
            Operands(command->usage, operands.empty() ? "" : operands.front());
        const std::string placeholder =
            operands.size() < usage.size() ? usage[operands.size()] : "";
        if (placeholder.find('|') != std::string::npos)
            offered = Split(placeholder, '|');
        else if (placeholder == "CATEGORY")
            offered = Categories(options);
        else if (placeholder == "COMMAND")
            return Candidates({current});
        else if (placeholder == "SHELL")
            offered = {"bash", "zsh", "fish"};
        else if (placeholder == "FILE" || placeholder == "OUT")
            directive = kFiles;
    }
    std::vector<std::string> lines;
    for (const std::string& candidate : offered)
        if (candidate.rfind(current, 0) == 0 && candidate != ":files" && candidate != ":none")
            lines.push_back(candidate);
    lines.push_back(directive);
    return lines;
}

} // namespace

int CompleteWords(const std::vector<std::string>& words) {
    for (const std::string& line : Candidates(words))
        PrintLine(line);
    return kExitTrue;
}

std::vector<CommandSpec> CompletionCommands() {
    return {
        {"completion", "SHELL", TrNoop("the shell completion script for bash, zsh or fish"),
         TrNoop(
             "Prints the script; it completes commands, options and, from the project's catalog,\n"
             "categories.\n\n"
             "Examples:\n  source <(koqdde completion bash)\n  source <(koqdde completion zsh)\n"
             "  koqdde completion fish | source"),
         Completion, true},
    };
}
