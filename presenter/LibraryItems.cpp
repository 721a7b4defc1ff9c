#include "presenter/LibraryItems.h"

#include "host/QvCalcRules/QvCalcRules.h"
#include "platform/NumParse.h"

namespace {
const wchar_t* AnnexText(int flag) {
    return flag != 0 ? L"是" : L"否";
}
} // namespace

QdStruct QdFromLibrary(const SQdInfo& info, const CString& number, const CString& libraryCode) {
    QdStruct qd;
    qd.strQdId = number;
    qd.strName = info.strName;
    qd.strUnit = info.strUnit;
    qd.strUnitCode = IntToText(info.nUnitCoef);
    qd.strQdCode = libraryCode;
    qd.strFormula = info.strFormula;
    qd.strAnnex = AnnexText(info.nAnnex);
    return qd;
}

DeStruct DeFromLibrary(const SDeInfo& info, const CString& libraryCode) {
    DeStruct de;
    de.strDeId = info.strDeNum;
    de.strName = info.strName;
    de.strUnit = info.strUnit;
    de.strDeCode = libraryCode;
    de.strUnitCode = IntToText(info.nUnitCoef);
    de.strFormula = info.strFormula;
    de.strAnnex = AnnexText(info.nAnnex);
    return de;
}

bool DefaultFormulaOf(const CString& smallCategoryPath, CString& formula) {
    CStringArray names;
    CStringArray codes;
    CFaceSysRule::GetCalItems(smallCategoryPath, names, codes);
    if (names.GetSize() == 0)
        return false;
    RuleCodeStruct rule;
    if (CFaceSysRule::GetCalItemInfo(names.GetAt(0), rule))
        formula = rule.strFormula;
    return true;
}
