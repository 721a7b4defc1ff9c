#pragma once
// Checks of the files a command names, made before anything is written, so that a refused
// command changes nothing; and the one-generation backup of a file a command replaces.

#include "Cli.h"

#include <string>
#include <vector>

// The existing path that `path` means once the separators a shell took out of it (an unquoted
// "a\b\c") are put back; "" when `path` exists or no such path does.
std::string PathWithSeparatorsPutBack(const std::string& path);

// Refuses (usage error) a path that does not exist but would with its backslashes put back,
// and one whose folder does not exist. `role` names the path in the message ("--file").
void ExpectFolderOf(const CString& path, const std::string& role);

// Refuses (usage error) a file to read that does not exist, with the hint above when it fits.
void ExpectExisting(const CString& path);

// A command that would replace an existing file goes on only with --force (Refusal otherwise);
// true when the file exists and will be replaced.
bool MayReplace(const CliContext& ctx, const CString& file, const std::string& command);
// Keeps the content of `file` as "<file>.bak", replacing an older backup.
void KeepBackup(const CString& file);
CString BackupPath(const CString& file);

// Refuses --dry-run for a command that can't show its result without writing.
void RefuseDryRun(const CliContext& ctx, const std::string& command, const std::string& why);

// Reports what a command would have done under --dry-run: the lines on standard output, or
// {"ok", "saved": false, "file", "plan": [lines]} under --json; with `replaces`, a last line
// says that the file's content would be kept. `ok` gives the exit status.
int ReportPlan(const CliContext& ctx, bool ok, const CString& file, std::vector<std::string> lines,
               bool replaces = false);
