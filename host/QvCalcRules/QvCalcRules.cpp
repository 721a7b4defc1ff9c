#include "host/QvCalcRules/QvCalcRules.h"

#include "host/HostData.h"
#include "host/sqlite/LibraryFiles.h"

namespace {
bool OpenRuleBook(CalcRuleBook& book) {
    const HostData* host = CurrentHostData();
    return host && book.Open(host->libraryFiles);
}
} // namespace

bool CalcRuleBook::Open(const std::vector<CString>& files) {
    return OpenLibraryWith(files, L"kind", L"rules", m_db);
}

bool CalcRuleBook::Items(const CString& smallCategoryPath, CStringArray& names,
                         CStringArray& codes) const {
    SqliteQuery query(m_db,
                      "SELECT name, code FROM calc_item WHERE category = ? ORDER BY position");
    query.Bind(1, smallCategoryPath);
    while (query.Step()) {
        names.Add(query.Text(0));
        codes.Add(query.Text(1));
    }
    return !names.IsEmpty();
}

bool CalcRuleBook::Find(const CString& name, RuleCodeStruct& rule) const {
    SqliteQuery query(m_db, "SELECT name, position, formula, code FROM calc_item WHERE name = ? "
                            "ORDER BY category, position LIMIT 1");
    query.Bind(1, name);
    if (!query.Step())
        return false;
    rule.strName = query.Text(0);
    rule.nKind = query.Int(1);
    rule.strFormula = query.Text(2);
    rule.strCode = query.Text(3);
    return true;
}

bool CFaceSysRule::GetCalItems(const CString& smallCategoryPath, CStringArray& names,
                               CStringArray& codes) {
    names.RemoveAll();
    codes.RemoveAll();
    CalcRuleBook book;
    return OpenRuleBook(book) && book.Items(smallCategoryPath, names, codes);
}

bool CFaceSysRule::GetCalItemInfo(const CString& name, RuleCodeStruct& rule) {
    CalcRuleBook book;
    return OpenRuleBook(book) && book.Find(name, rule);
}
