#pragma once
// Shared pieces of the koqdde command-line tool.

#include "host/HostData.h"
#include "model/CPath.h"
#include "platform/CString.h"
#include "platform/FileLock.h"
#include "presenter/CQdDeConfigPresenter.h"

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

enum ExitStatus { kExitTrue = 0, kExitFalse = 1, kExitUsage = 2, kExitError = 3, kExitRefused = 4 };

// Bad input on the command line: reported with exit status 2, nothing changed.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// The file is not worked on, to keep what it holds: it does not load as a configuration, a
// workbench has it open, or another edit holds it. Exit status 4, nothing changed.
class Refusal : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

struct GlobalOptions {
    CString dataDir;
    CString projectFile;
    CString configDir;
    CString file; // empty: the current configuration
    CString spec; // empty: the project's current specialty
    bool json = false;
    bool dryRun = false;
    bool force = false; // edit a file that does not load, or that a workbench has open
    bool help = false;
    bool version = false;
};

class Spec;
class SMember;

// One run of the tool: the options, the loaded host data and, made on first use, the
// presenter of the configuration file. A command that edits the file (`editing`) holds its
// edit lock from before the file is read until the run ends.
class CliContext {
public:
    explicit CliContext(GlobalOptions options, bool editing = false)
        : m_options(std::move(options)), m_editing(editing) {}
    // Under --dry-run, removes the configuration file that reading it created.
    ~CliContext();
    CliContext(const CliContext&) = delete;
    CliContext& operator=(const CliContext&) = delete;
    const GlobalOptions& Options() const { return m_options; }
    CQdDeConfigPresenter& Presenter();
    // A command's FILE operand in place of --file, before the presenter is made.
    void UseFile(const CString& file);
    // The configuration file the presenter works on: --file or the current configuration.
    CString File() const;
    bool HasPresenter() const { return m_presenter != nullptr; }
    // The tree held by the presenter's store.
    const Spec& Tree();
    // Takes the edit lock of `file` and refuses it, as Presenter() does for its own file, when
    // it does not load; for commands that reach a file through the facade.
    void GuardEdit(const CString& file);
    // Resolves "专业\大类\小类" or "大类\小类" in the current specialty; UsageError otherwise.
    CPath ResolveCategory(const CString& text, const SMember** found = nullptr);
    // A configuration of the small category at `path`: its id, or "#N" for the N-th in the
    // list as the workbench shows it. UsageError when there is none.
    int ResolveConfig(const CPath& path, const std::string& text);
    // "专业\大类\小类" of a resolved small category, as the host's lists name it.
    CString SmallCategoryPath(const CPath& path);
    // Holds the edit lock of a file the command is about to write, until the run ends;
    // Refusal when a workbench has it open (unless --force) or another edit holds it.
    void LockForEdit(const CString& file);

private:
    // Refuses a file that exists but does not load as a configuration (an edit may go on
    // with --force, as the store would).
    void CheckLoaded(const CString& file, const std::string& loadError);

    GlobalOptions m_options;
    bool m_editing;
    FileLock m_lock; // released after the presenter, which may save on its way out
    std::unique_ptr<CQdDeConfigPresenter> m_presenter;
    CString m_createdByDryRun; // the file reading created, when --dry-run is given
};

struct CommandSpec {
    std::string name;
    std::string usage;   // arguments after the name
    std::string summary; // one line
    std::string help;    // details and examples
    std::function<int(CliContext&, const std::vector<std::string>&)> run;
    // Runs without the data pack (help, completion): its context has no host data.
    bool standalone = false;
};

// Every command of the tool, in the order the help lists them.
const std::vector<CommandSpec>& AllCommands();

// Command arguments split into positionals, valued options and flags. Unknown options and
// missing values are usage errors.
struct ParsedArgs {
    std::vector<std::string> positional;
    std::map<std::string, std::string> values;
    std::set<std::string> flags;
    bool Has(const std::string& option) const {
        return values.count(option) > 0 || flags.count(option) > 0;
    }
};
ParsedArgs ParseArgs(const std::vector<std::string>& args, const std::set<std::string>& valued,
                     const std::set<std::string>& flags = {});
// Takes the global options out of the arguments, wherever they stand.
GlobalOptions ParseGlobals(std::vector<std::string>& args);
// LARGE\SMALL of every small category in the project's current specialty, from its catalog.
std::vector<std::string> CatalogCategories(const HostData& host);
// What the shell completion scripts call (koqdde __complete WORDS...): prints the candidates
// for the last word, then ":files" when the shell should offer file names, else ":none".
int CompleteWords(const std::vector<std::string>& words);
// The nearest of `names` to a mistyped `typed`, or "" when none is near enough.
std::string ClosestName(const std::string& typed, const std::vector<std::string>& names);
// The global options, as written on the command line.
const std::vector<std::string>& GlobalOptionNames();
// A node id: decimal digits only; UsageError otherwise.
int ParseId(const std::string& text, const std::string& what);
// Prints one small category's configurations (as `show` does).
void PrintCategory(CliContext& ctx, const std::string& category);
// Ends an edit: saves unless --dry-run, then reports. `ok` is the operation's answer.
int FinishEdit(CliContext& ctx, bool ok, const std::string& category, int newId = 0);
// apply COMPONENTS.csv [-o BILL.csv]: the component list through the configuration.
int ApplyComponentList(CliContext& ctx, std::vector<std::string> raw);
// The bill as an .xlsx workbook (bill, uncovered components, problems with their texts);
// throws a UsageError where the tool was built without libxlsxwriter.
struct BillOfQuantities;
void WriteBillXlsx(const BillOfQuantities& boq, const std::vector<std::string>& problemTexts,
                   const CString& file);
bool CanWriteXlsx();
// Whether apply's arguments name a component list rather than bill|quota.
bool AppliesComponentList(const std::vector<std::string>& raw);

// "; did you mean X?" for the nearest of `names`, or "" when none is near.
std::string DidYouMean(const std::string& typed, const std::vector<std::string>& names);

// A hint for a category argument that names no small category: a large category given alone
// (with its small ones), or names run together by a shell that took out the backslashes; ""
// when none fits.
std::string CategoryHint(const Spec& spec, const CString& text);

// Writes a line of text or the JSON document to standard output.
void PrintLine(const std::string& text);
CString Arg(const std::string& utf8);
