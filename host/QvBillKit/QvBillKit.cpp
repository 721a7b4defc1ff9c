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
    return m_items.Open(files, code) && m_items.HoldsBills();
}

bool BillLibrary::OpenProjectLibrary() {
    const HostData* host = CurrentHostData();
    return host && Open(host->libraryFiles, host->project.bill.code);
}

bool BillLibrary::Find(const CString& number, SQdInfo& info) const {
    LibraryItem item;
    if (!m_items.Find(number, item))
        return false;
    info = ToBillInfo(item);
    return true;
}

bool BillLibrary::Contains(const CString& number) const {
    LibraryItem item;
    return m_items.Find(number, item);
}

void BillLibrary::EncodingRule(int& codeLength, int& suffixLength) const {
    codeLength = RuleValue(m_items.Database(), L"code_len");
    suffixLength = RuleValue(m_items.Database(), L"suffix_len");
}

CString BillLibrary::IndexPath(const CString& treePath) const {
    // The workbench's tree path ends with its separator ("给排水\管道\给水管\"); the map's
    // keys don't.
    CString key = treePath;
    while (key.GetLength() > 0 && key[key.GetLength() - 1] == L'\\')
        key = key.Left(key.GetLength() - 1);
    SqliteQuery query(m_items.Database(),
                      "SELECT chapter_path FROM index_path WHERE tree_path = ?");
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

SQdInfo ToBillInfo(const LibraryItem& item) {
    SQdInfo info;
    info.nId = item.rowId;
    info.nUnitCoef = item.unitCoefficient;
    info.nAnnex = item.annex;
    info.strQdNum = item.number;
    info.strName = item.name;
    info.strUnit = item.unit;
    info.strFormula = item.formula;
    info.strFeature = item.feature;
    info.strWork = item.work;
    return info;
}

SDeInfo ToQuotaPick(const LibraryItem& item) {
    SDeInfo pick;
    pick.nUnitCoef = item.unitCoefficient;
    pick.nAnnex = item.annex;
    pick.strDeNum = item.number;
    pick.strName = item.name;
    pick.strUnit = item.unit;
    pick.strFormula = item.formula;
    return pick;
}
