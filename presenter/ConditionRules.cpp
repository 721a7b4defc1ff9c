#include "presenter/ConditionRules.h"

#include "host/QvKoProject/QvKoProject.h"
#include "platform/NumParse.h"

#include <initializer_list>

namespace {

bool ContainsAny(const CString& text, std::initializer_list<const wchar_t*> parts) {
    for (const wchar_t* part : parts)
        if (text.Find(part) >= 0)
            return true;
    return false;
}

ConditionAttribute Measured(const wchar_t* name, const wchar_t* code) {
    return {name, code, CString(), ConditionAttribute::Source::kMeasured};
}

// Quantities measured from the drawn shape; only the first rule that holds adds its rows.
std::vector<ConditionAttribute> MeasuredAttributes(const CString& categoryPath) {
    if (categoryPath.Find(L"暖通\\风管") >= 0)
        return {Measured(L"周长(mm)", L"AM_Perimeter"), Measured(L"长边(mm)", L"AM_LongEdge"),
                Measured(L"直径(mm)", L"AM_Diameter")};
    if ((categoryPath.Find(L"电气\\配电箱柜") >= 0 && categoryPath.Find(L"元件装置") < 0) ||
        categoryPath.Find(L"弱电\\箱柜\\接线箱") >= 0)
        return {Measured(L"半周长(mm)", L"AM_SemiPerimeter")};
    if (ContainsAny(categoryPath, {L"电气\\电缆桥架\\桥架", L"电气\\电缆桥架\\托盘",
                                   L"电气\\电缆桥架\\组合式桥架", L"弱电\\线槽桥架\\线槽",
                                   L"弱电\\线槽桥架\\桥架"}))
        return {Measured(L"宽+高(mm)", L"AM_SemiPerimeter"),
                Measured(L"宽+高×2(mm)", L"AM_SPerimeter")};
    return {};
}

} // namespace

std::vector<ConditionAttribute> ConditionAttributes(const CString& smallCategoryPath) {
    std::vector<ConditionAttribute> attributes;
    SQvKoSmallCategoryId id;
    SmallCategoryNameToId(smallCategoryPath, id);
    CStringArray records;
    CSysSmallCategoryMng(id).GetAttributeList(records);
    // Four strings a record: field, display name, drop-list key, attribute code. A list that
    // ends inside a record raises, as reading past its end always does.
    for (int k = 1; k - 1 < records.GetSize(); k += 4)
        attributes.push_back({records.GetAt(k), records.GetAt(k + 2), records.GetAt(k + 1),
                              ConditionAttribute::Source::kCatalog});
    for (ConditionAttribute& measured : MeasuredAttributes(smallCategoryPath))
        attributes.push_back(std::move(measured));
    attributes.push_back(
        {L"具体构件", CString(), CString(), ConditionAttribute::Source::kWholeComponent});
    return attributes;
}

bool ValueListOf(const ConditionAttribute& attribute,
                 const std::vector<ConditionAttribute>& categoryAttributes, CStringArray& items) {
    items.RemoveAll();
    if (attribute.code.IsEmpty())
        return false;
    CStringArray keys;
    for (const ConditionAttribute& a : categoryAttributes)
        if (a.source == ConditionAttribute::Source::kCatalog)
            keys.Add(a.dropKey);
    return CAtt().GetDropList(attribute.code, items, keys) && items.GetSize() > 0;
}

bool TakesRange(const AttrConfig* setting) {
    return !setting || setting->compar != 0;
}

bool TakesTypedValue(const AttrConfig* setting) {
    return !setting || setting->vartype != 0;
}

RangeFault CheckRangeWidth(const CString& lower, const CString& upper) {
    if (lower.IsEmpty() && upper.IsEmpty())
        return RangeFault::kNoBound;
    if (lower.IsEmpty() || upper.IsEmpty())
        return RangeFault::kNone;
    const double width = WToF(upper) - WToF(lower);
    if (width < 0)
        return RangeFault::kSwapped;
    return width < 0.01 ? RangeFault::kTooNarrow : RangeFault::kNone;
}

bool IsDecimalNumber(const CString& text) {
    CString trimmed = text;
    trimmed.Trim();
    const std::wstring& s = trimmed.str();
    size_t i = !s.empty() && (s[0] == L'+' || s[0] == L'-') ? 1 : 0;
    int digits = 0;
    int points = 0;
    for (; i < s.size(); ++i) {
        if (s[i] >= L'0' && s[i] <= L'9')
            ++digits;
        else if (s[i] == L'.')
            ++points;
        else
            return false;
    }
    return digits > 0 && points <= 1;
}

bool IsEqualOperator(const CString& op) {
    return op == ConditionOperator::kEqual || op == ConditionOperator::kNotEqual;
}

bool IsLowerOperator(const CString& op) {
    return op == ConditionOperator::kAbove || op == ConditionOperator::kAtLeast;
}

bool IsUpperOperator(const CString& op) {
    return op == ConditionOperator::kBelow || op == ConditionOperator::kAtMost;
}
