#pragma once
// Stand-in for the host's calculation rules: the calculation items of each small category,
// answered from the rules database among the installed host data's libraries (the one whose
// kind is "rules").

#include "host/sqlite/Sqlite.h"
#include "platform/CString.h"

#include <vector>

struct RuleCodeStruct {
    CString strName;
    int nKind = 0; // position of the item in its category
    CString strFormula;
    CString strCode;
};

class CFaceSysRule {
public:
    // The items of a small category (path "专业\大类\小类"), the default first. False, with
    // both lists empty, when the category has none.
    static bool GetCalItems(const CString& smallCategoryPath, CStringArray& names,
                            CStringArray& codes);
    // An item by its name. Names stand for one quantity everywhere, so the first item of that
    // name, by category path, answers. False when no category has it.
    static bool GetCalItemInfo(const CString& name, RuleCodeStruct& rule);
};

// The rules database.
class CalcRuleBook {
public:
    bool Open(const std::vector<CString>& files);
    bool Items(const CString& smallCategoryPath, CStringArray& names, CStringArray& codes) const;
    bool Find(const CString& name, RuleCodeStruct& rule) const;

private:
    SqliteDb m_db;
};
