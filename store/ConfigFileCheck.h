#pragma once
// Checks the programs around the store make before they let it at a file: the store itself
// treats a file that does not load as empty and would save over it.

#include "platform/CString.h"

#include <string>

// Why the configuration file does not load as one (not well-formed, another document element,
// unreadable...); empty when it loads or does not exist.
std::string ConfigLoadError(const CString& file);

// Copies the file to "<file>.<YYYYMMDD-HHMMSS>.bak" beside it (a number is added when that
// name is taken) and gives the copy's path; empty when the copy failed.
CString BackupBeside(const CString& file);
