#pragma once
// The library databases of a data pack: built from text sources (a schema and one file of
// INSERT statements each), and found by the facts in their "library" table.

#include "host/sqlite/Sqlite.h"
#include "platform/CString.h"

#include <vector>

// Builds dbPath from the schema followed by the source. The database is written beside the
// target and renamed into place, so a reader never sees half a library. False with a one-line
// error naming the source file.
bool BuildLibraryDatabase(const CString& schemaFile, const CString& sourceFile,
                          const CString& dbPath, CString& error);

// For every "<name>.sql" of folder other than the schema, builds "<name>.db" in outFolder
// (made when missing) when it is missing or older than its source. The built databases'
// paths, in name order, go to built.
bool BuildStaleDatabases(const CString& folder, const CString& schemaFile, const CString& outFolder,
                         std::vector<CString>& built, CString& error);

// The "*.db" files of a folder, in name order; none when the folder doesn't exist.
std::vector<CString> DatabaseFilesIn(const CString& folder);

// A fact of the library ("kind", "name", "code", "code_len", ...), or "" when absent.
CString LibraryFact(const SqliteDb& db, const wchar_t* key);

// Opens, read-only, the first of files whose library has value for key (a library's code,
// say). False when none has.
bool OpenLibraryWith(const std::vector<CString>& files, const wchar_t* key, const CString& value,
                     SqliteDb& db);
