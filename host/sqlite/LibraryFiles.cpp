#include "host/sqlite/LibraryFiles.h"

#include "platform/FileSystem.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <string>
#include <system_error>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {
fs::path ToPath(const CString& path) {
    return fs::path(ToUtf8(path));
}
CString FromPath(const fs::path& path) {
    return FromUtf8(path.string());
}
} // namespace

bool BuildLibraryDatabase(const CString& schemaFile, const CString& sourceFile,
                          const CString& dbPath, CString& error) {
    const auto schema = ReadFileBytes(schemaFile);
    if (!schema) {
        error = schemaFile + L": can't be read";
        return false;
    }
    const auto source = ReadFileBytes(sourceFile);
    if (!source) {
        error = sourceFile + L": can't be read";
        return false;
    }
    // Named for this process: two programs loading one pack may build at the same time, and
    // the rename makes whichever finishes last the one that stays.
    const CString temporary = dbPath + L".building-" + FromUtf8(std::to_string(::getpid()));
    std::remove(ToUtf8(temporary).c_str());
    bool ok = false;
    {
        SqliteDb db;
        CString why;
        ok = db.Open(temporary, false, why) && db.Exec(*schema, why) &&
             db.Exec("BEGIN;" + *source + "\nCOMMIT;", why);
        if (!ok)
            error = sourceFile + L": " + why;
    }
    std::error_code ec;
    if (ok) {
        fs::rename(ToPath(temporary), ToPath(dbPath), ec);
        if (ec) {
            error = dbPath + L": " + FromUtf8(ec.message());
            ok = false;
        }
    }
    if (!ok)
        fs::remove(ToPath(temporary), ec);
    return ok;
}

bool BuildStaleDatabases(const CString& folder, const CString& schemaFile, const CString& outFolder,
                         std::vector<CString>& built, CString& error) {
    std::error_code ec;
    fs::create_directories(ToPath(outFolder), ec);
    std::vector<fs::path> sources;
    for (const auto& entry : fs::directory_iterator(ToPath(folder), ec)) {
        const fs::path& p = entry.path();
        if (p.extension() == ".sql" && p != ToPath(schemaFile))
            sources.push_back(p);
    }
    std::sort(sources.begin(), sources.end());
    for (const fs::path& source : sources) {
        fs::path target = ToPath(outFolder) / source.filename();
        target.replace_extension(".db");
        std::error_code timeError;
        const bool fresh =
            fs::exists(target, timeError) &&
            fs::last_write_time(target, timeError) >= fs::last_write_time(source, timeError) &&
            fs::last_write_time(target, timeError) >=
                fs::last_write_time(ToPath(schemaFile), timeError);
        if (fresh && !timeError)
            continue;
        if (!BuildLibraryDatabase(schemaFile, FromPath(source), FromPath(target), error))
            return false;
        built.push_back(FromPath(target));
    }
    return true;
}

std::vector<CString> DatabaseFilesIn(const CString& folder) {
    std::vector<CString> files;
    std::error_code ec;
    for (const auto& entry : fs::directory_iterator(ToPath(folder), ec))
        if (entry.path().extension() == ".db")
            files.push_back(FromPath(entry.path()));
    std::sort(files.begin(), files.end());
    return files;
}

CString LibraryFact(const SqliteDb& db, const wchar_t* key) {
    SqliteQuery query(db, "SELECT value FROM library WHERE key = ?");
    query.Bind(1, CString(key));
    return query.Step() ? query.Text(0) : CString();
}

bool OpenLibraryWith(const std::vector<CString>& files, const wchar_t* key, const CString& value,
                     SqliteDb& db) {
    for (const CString& file : files) {
        SqliteDb candidate;
        CString error;
        if (!candidate.Open(file, true, error))
            continue;
        if (!value.IsEmpty() && LibraryFact(candidate, key) == value) {
            db = std::move(candidate);
            return true;
        }
    }
    return false;
}
