#include "host/sqlite/Sqlite.h"

#include <sqlite3.h>

#include <utility>

SqliteDb::~SqliteDb() {
    Close();
}

SqliteDb::SqliteDb(SqliteDb&& other) noexcept : m_db(std::exchange(other.m_db, nullptr)) {}

SqliteDb& SqliteDb::operator=(SqliteDb&& other) noexcept {
    if (this != &other) {
        Close();
        m_db = std::exchange(other.m_db, nullptr);
    }
    return *this;
}

void SqliteDb::Close() {
    if (m_db)
        sqlite3_close(m_db);
    m_db = nullptr;
}

bool SqliteDb::Open(const CString& path, bool readOnly, CString& error) {
    Close();
    const int flags = readOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
    sqlite3* db = nullptr;
    const int rc = sqlite3_open_v2(ToUtf8(path).c_str(), &db, flags, nullptr);
    if (rc != SQLITE_OK) {
        error = path + L": " + FromUtf8(db ? sqlite3_errmsg(db) : sqlite3_errstr(rc));
        sqlite3_close(db);
        return false;
    }
    m_db = db;
    return true;
}

bool SqliteDb::Exec(const std::string& sql, CString& error) {
    if (!m_db) {
        error = L"no database is open";
        return false;
    }
    char* message = nullptr;
    if (sqlite3_exec(m_db, sql.c_str(), nullptr, nullptr, &message) == SQLITE_OK)
        return true;
    error = FromUtf8(message ? message : sqlite3_errmsg(m_db));
    sqlite3_free(message);
    return false;
}

SqliteQuery::SqliteQuery(const SqliteDb& db, const char* sql) {
    if (db.Handle() && sqlite3_prepare_v2(db.Handle(), sql, -1, &m_stmt, nullptr) != SQLITE_OK) {
        sqlite3_finalize(m_stmt);
        m_stmt = nullptr;
    }
}

SqliteQuery::~SqliteQuery() {
    sqlite3_finalize(m_stmt);
}

SqliteQuery& SqliteQuery::Bind(int index, const CString& value) {
    if (m_stmt)
        sqlite3_bind_text(m_stmt, index, ToUtf8(value).c_str(), -1, SQLITE_TRANSIENT);
    return *this;
}

SqliteQuery& SqliteQuery::Bind(int index, int value) {
    if (m_stmt)
        sqlite3_bind_int(m_stmt, index, value);
    return *this;
}

bool SqliteQuery::Step() {
    return m_stmt && sqlite3_step(m_stmt) == SQLITE_ROW;
}

CString SqliteQuery::Text(int column) const {
    const unsigned char* text = m_stmt ? sqlite3_column_text(m_stmt, column) : nullptr;
    return text ? FromUtf8(reinterpret_cast<const char*>(text)) : CString();
}

int SqliteQuery::Int(int column) const {
    return m_stmt ? sqlite3_column_int(m_stmt, column) : 0;
}
