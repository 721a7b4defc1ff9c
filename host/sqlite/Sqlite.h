#pragma once
// A thin owner of an SQLite connection and of one prepared statement, for the host stand-ins
// that answer from the libraries' databases. Texts cross as UTF-8.

#include "platform/CString.h"
#include "platform/Export.h"

#include <string>

struct sqlite3;
struct sqlite3_stmt;

class SqliteDb {
public:
    SqliteDb() = default;
    KOQDDE_DIALOGS_API ~SqliteDb();
    SqliteDb(const SqliteDb&) = delete;
    SqliteDb& operator=(const SqliteDb&) = delete;
    SqliteDb(SqliteDb&& other) noexcept;
    SqliteDb& operator=(SqliteDb&& other) noexcept;

    // Read-only opens an existing file; otherwise the file is created when missing. False with
    // a one-line error naming the file.
    bool Open(const CString& path, bool readOnly, CString& error);
    // Runs statements that return no rows; false with SQLite's message.
    bool Exec(const std::string& sql, CString& error);
    bool IsOpen() const { return m_db != nullptr; }
    sqlite3* Handle() const { return m_db; }

private:
    void Close();
    sqlite3* m_db = nullptr;
};

// One statement, stepped row by row. A statement that fails to prepare steps no row.
class SqliteQuery {
public:
    SqliteQuery(const SqliteDb& db, const char* sql);
    ~SqliteQuery();
    SqliteQuery(const SqliteQuery&) = delete;
    SqliteQuery& operator=(const SqliteQuery&) = delete;

    bool Prepared() const { return m_stmt != nullptr; }
    // Parameters count from 1, as in the SQL text's "?" order.
    SqliteQuery& Bind(int index, const CString& value);
    SqliteQuery& Bind(int index, int value);
    // The next row; false at the end or on an error.
    bool Step();
    CString Text(int column) const;
    int Int(int column) const;

private:
    sqlite3_stmt* m_stmt = nullptr;
};
