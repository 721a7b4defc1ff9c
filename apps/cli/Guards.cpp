#include "Guards.h"
#include "Json.h"
#include "Translate.h"

#include "platform/ComError.h"
#include "platform/FileSystem.h"

#include <filesystem>
#include <string_view>

namespace fs = std::filesystem;

namespace {

// Looks under `folder` for entries whose names, run together, spell `rest`: the path a shell
// made of "a\b\c" by taking the backslashes out. Only entries whose name starts `rest` are
// followed, so the walk stays small.
bool Spell(const fs::path& folder, std::string_view rest, int depth, fs::path& found) {
    if (depth > 16 || rest.empty())
        return false;
    std::error_code ec;
    int looked = 0;
    for (fs::directory_iterator it(folder, ec), end; !ec && it != end && ++looked < 5000;
         it.increment(ec)) {
        const std::string name = it->path().filename().string();
        if (!rest.starts_with(name))
            continue;
        std::string_view after = rest.substr(name.size());
        const bool folderEntry = it->is_directory(ec);
        if (after.empty()) {
            if (!folderEntry) {
                found = it->path();
                return true;
            }
            continue;
        }
        if (after.front() == '/')
            after.remove_prefix(1);
        if (folderEntry && Spell(it->path(), after, depth + 1, found))
            return true;
    }
    return false;
}

} // namespace

std::string PathWithSeparatorsPutBack(const std::string& path) {
    std::error_code ec;
    if (path.empty() || fs::exists(path, ec))
        return "";
    // From the longest leading part that is a folder.
    fs::path folder = path.front() == '/' ? "/" : ".";
    size_t rest = path.front() == '/' ? 1 : 0;
    for (size_t slash = path.find('/', 1); slash != std::string::npos;
         slash = path.find('/', slash + 1)) {
        if (!fs::is_directory(path.substr(0, slash), ec))
            break;
        folder = path.substr(0, slash);
        rest = slash + 1;
    }
    fs::path found;
    if (!Spell(folder, std::string_view(path).substr(rest), 0, found))
        return "";
    return found.lexically_normal().string();
}

void ExpectFolderOf(const CString& path, const std::string& role) {
    const std::string text = ToUtf8(path);
    const std::string meant = PathWithSeparatorsPutBack(text);
    if (!meant.empty())
        throw UsageError(Tr("{1} does not exist, but {2} does: the shell took out the "
                            "backslashes. Quote the path or write it with /",
                            {text, meant}));
    const fs::path folder = fs::absolute(fs::path(text)).parent_path();
    std::error_code ec;
    if (!fs::is_directory(folder, ec))
        throw UsageError(Tr("the folder of {1} {2} does not exist; make it first (mkdir -p {3})",
                            {role, text, folder.string()}));
}

void ExpectExisting(const CString& path) {
    ExpectFolderOf(path, "FILE");
    if (!PathExists(path))
        throw UsageError(Tr("{1} does not exist", {ToUtf8(path)}));
}

bool MayReplace(const CliContext& ctx, const CString& file, const std::string& command) {
    std::error_code ec;
    if (!fs::exists(ToUtf8(file), ec))
        return false;
    if (fs::is_directory(ToUtf8(file), ec))
        throw UsageError(Tr("{1} is a folder; {2} writes a file", {ToUtf8(file), command}));
    if (!ctx.Options().force)
        throw Refusal(Tr("{1} exists; {2} would replace it. Give --force to replace it (its "
                         "content is then kept as {3})",
                         {ToUtf8(file), command, ToUtf8(BackupPath(file))}));
    return true;
}

CString BackupPath(const CString& file) {
    return file + L".bak";
}

void KeepBackup(const CString& file) {
    if (!CopyFileOverwrite(file, BackupPath(file)))
        throw ComError(E_FAIL, Tr("cannot keep {1} as {2}; nothing was replaced",
                                  {ToUtf8(file), ToUtf8(BackupPath(file))}));
}

void RefuseDryRun(const CliContext& ctx, const std::string& command, const std::string& why) {
    if (ctx.Options().dryRun)
        throw UsageError(Tr("--dry-run is not supported by {1}: {2}", {command, why}));
}

int ReportPlan(const CliContext& ctx, bool ok, const CString& file, std::vector<std::string> lines,
               bool replaces) {
    if (replaces)
        lines.push_back(Tr("dry run: the content of {1} would be kept as {2}",
                           {ToUtf8(file), ToUtf8(BackupPath(file))}));
    if (ctx.Options().json) {
        Json plan = Json::MakeArray();
        for (const std::string& line : lines)
            plan.Push(line);
        PrintLine(Json::MakeObject()
                      .Set("ok", ok)
                      .Set("saved", false)
                      .Set("file", file)
                      .Set("plan", std::move(plan))
                      .Dump());
    } else {
        for (const std::string& line : lines)
            PrintLine(line);
    }
    return ok ? kExitTrue : kExitFalse;
}
