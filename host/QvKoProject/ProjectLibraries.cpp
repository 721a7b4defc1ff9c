// The parts of the project stand-in that answer from databases: the bill history and the
// position of a small category in the bill library's tree.

#include "host/HostData.h"
#include "host/QvKoProject/QvKoProject.h"
#include "host/sqlite/Sqlite.h"

bool CQdHistoryMng::GetQdInfoByQdNum(const CString& number, std::vector<SQdInfo>& records) const {
    const HostData* host = CurrentHostData();
    SqliteDb db;
    CString error;
    if (!host || host->historyFile.IsEmpty() || !db.Open(host->historyFile, true, error))
        return false;
    // A plain prefix test: LIKE would take "_" and "%" in a number as wildcards.
    SqliteQuery query(db, "SELECT rowid, number, name, unit FROM qd_history "
                          "WHERE substr(number, 1, length(?1)) = ?1 ORDER BY position");
    query.Bind(1, number);
    while (query.Step()) {
        SQdInfo info;
        info.nId = query.Int(0);
        info.strQdNum = query.Text(1);
        info.strName = query.Text(2);
        info.strUnit = query.Text(3);
        records.push_back(info);
    }
    return true;
}

CString CSys::GetIndexPath(const CString& treePath) {
    BillLibrary library;
    return library.OpenProjectLibrary() ? library.IndexPath(treePath) : CString();
}
