#include "host/QvBillKit/QvBillKit.h"

#include "host/HostData.h"
#include "host/sqlite/LibraryFiles.h"
#include "platform/NumParse.h"

namespace {
// A fact given as a number; -1 when the library doesn't give it.
int RuleValue(const SqliteDb& db, const wchar_t* key) {
    const CString text = LibraryFact(db, key);
    return text.IsEmpty() ? -1 : WToI(text);
}
} // namespace

bool BillLibrary::Open(const std::vector<CString>& files, const CString& code) {
    return OpenLibraryWith(files, L"code", code, m_db);
}

bool BillLibrary::OpenProjectLibrary() {
    const HostData* host = CurrentHostData();
    return host && Open(host->libraryFiles, host->project.bill.code);
}

bool BillLibrary::Find(const CString& number, SQdInfo& info) const {
    SqliteQuery query(m_db, "SELECT rowid, unit_coefficient, annex, number, name, unit, formula, "
                            "feature, work FROM bill WHERE number = ?");
    query.Bind(1, number);
    if (!query.Step())
        return false;
    info.nId = query.Int(0);
    info.nUnitCoef = query.Int(1);
    info.nAnnex = query.Int(2);
    info.strQdNum = query.Text(3);
    info.strName = query.Text(4);
    info.strUnit = query.Text(5);
    info.strFormula = query.Text(6);
    info.strFeature = query.Text(7);
    info.strWork = query.Text(8);
    return true;
}

bool BillLibrary::Contains(const CString& number) const {
    SqliteQuery query(m_db, "SELECT 1 FROM bill WHERE number = ?");
    query.Bind(1, number);
    return query.Step();
}

void BillLibrary::EncodingRule(int& codeLength, int& suffixLength) const {
    codeLength = RuleValue(m_db, L"code_len");
    suffixLength = RuleValue(m_db, L"suffix_len");
}

CString BillLibrary::IndexPath(const CString& treePath) const {
    // The workbench's tree path ends with its separator ("给排水\管道\给水管\"); the map's
    // keys don't.
    CString key = treePath;
    while (key.GetLength() > 0 && key[key.GetLength() - 1] == L'\\')
        key = key.Left(key.GetLength() - 1);
    SqliteQuery query(m_db, "SELECT chapter_path FROM index_path WHERE tree_path = ?");
    query.Bind(1, key);
    return query.Step() ? query.Text(0) : CString();
}

bool IBillLib::GetQdInfo(const CString& number, SQdInfo& info) {
    BillLibrary library;
    return library.OpenProjectLibrary() && library.Find(number, info);
}

void IBillLib::GetEnCodeRule(int& codeLength, int& suffixLength) {
    codeLength = suffixLength = -1;
    BillLibrary library;
    if (library.OpenProjectLibrary())
        library.EncodingRule(codeLength, suffixLength);
}

bool IBillLib::IsInQdk(const CString& number) {
    BillLibrary library;
    return library.OpenProjectLibrary() && library.Contains(number);
}
