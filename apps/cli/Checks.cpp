#include "Checks.h"
#include "Translate.h"

#include "host/QvBillKit/QvBillKit.h"
#include "host/QvCalcRules/CalcFormula.h"
#include "model/ConfigNode.h"
#include "platform/NumParse.h"
#include "presenter/BillNumbering.h"
#include "presenter/ConditionRules.h"

#include <cstdio>

namespace {

std::string Listed(const CStringArray& items) {
    std::string text;
    for (const CString& item : items)
        text += (text.empty() ? "" : ", ") + ToUtf8(item);
    return text;
}

bool Contains(const CStringArray& items, const CString& text) {
    for (const CString& item : items)
        if (item == text)
            return true;
    return false;
}

void Note(const std::string& text) {
    std::fprintf(stderr, "koqdde: %s\n", text.c_str());
}

// The attribute's setting in AttrConfig.xml, when there is one to be had.
const AttrConfig* SettingOf(CliContext& ctx, const CString& category, const CString& attribute,
                            AttrConfig& record) {
    CQdDeConfigPresenter& p = ctx.Presenter();
    if (!p.AttConfigError().empty())
        Note(Tr("the attribute settings can't be used ({1}); the condition is checked without "
                "them",
                {p.AttConfigError()}));
    return p.GetAttConfig(category, attribute, record) ? &record : nullptr;
}

void CheckValue(const ConditionAttribute* attribute,
                const std::vector<ConditionAttribute>& attributes, const AttrConfig* setting,
                const CStringArray& s) {
    if (!IsEqualOperator(s[2]))
        throw UsageError(Tr("\"{1}\" is no operator of a value: use ＝ or ≠", {ToUtf8(s[2])}));
    if (s[5].IsEmpty())
        throw UsageError(Tr("a value condition needs a value"));
    CStringArray list;
    if (!attribute || !ValueListOf(*attribute, attributes, list) || Contains(list, s[5]))
        return;
    if (!TakesTypedValue(setting))
        throw UsageError(Tr("\"{1}\" is not in the list of {2}, which takes no typed value (its "
                            "setting is 下拉): {3}",
                            {ToUtf8(s[5]), ToUtf8(s[0]), Listed(list)}));
    Note(Tr("\"{1}\" is not in the list of {2}; it is written as typed, which the list allows",
            {ToUtf8(s[5]), ToUtf8(s[0])}));
}

void CheckRange(const AttrConfig* setting, const CStringArray& s) {
    if (!TakesRange(setting))
        throw UsageError(Tr("{1} is set to 不可比较 in AttrConfig.xml: it takes a value (--eq or "
                            "--ne), not a range",
                            {ToUtf8(s[0])}));
    const CString& lower = s[6];
    const CString& upper = s[7];
    for (const CString* bound : {&lower, &upper})
        if (!bound->IsEmpty() && !IsDecimalNumber(*bound))
            throw UsageError(Tr("the bound \"{1}\" is not a number", {ToUtf8(*bound)}));
    if (!lower.IsEmpty() && !IsLowerOperator(s[3]))
        throw UsageError(
            Tr("\"{1}\" is no operator of a lower bound: use ＞ or ≥", {ToUtf8(s[3])}));
    if (!upper.IsEmpty() && !IsUpperOperator(s[4]))
        throw UsageError(
            Tr("\"{1}\" is no operator of an upper bound: use ＜ or ≤", {ToUtf8(s[4])}));
    switch (CheckRangeWidth(lower, upper)) {
    case RangeFault::kNone:
        return;
    case RangeFault::kNoBound:
        throw UsageError(Tr("a range needs at least one bound"));
    case RangeFault::kSwapped:
        throw UsageError(Tr("the bounds are swapped: the upper bound {1} is below the lower "
                            "bound {2}, so no value lies between them",
                            {ToUtf8(upper), ToUtf8(lower)}));
    case RangeFault::kTooNarrow:
        throw UsageError(Tr("the range from {1} to {2} is narrower than 0.01, which the "
                            "workbench takes for no range; widen it",
                            {ToUtf8(lower), ToUtf8(upper)}));
    }
}

bool IsInteger(const CString& text) {
    const std::wstring& s = text.str();
    const size_t first = !s.empty() && s[0] == L'-' ? 1 : 0;
    if (s.size() <= first)
        return false;
    for (size_t i = first; i < s.size(); ++i)
        if (s[i] < L'0' || s[i] > L'9')
            return false;
    return true;
}

} // namespace

void CheckCondition(CliContext& ctx, const CPath& category, const CStringArray& strings,
                    bool allowUnknown) {
    if (strings.GetSize() < 8)
        return; // the presenter refuses it itself
    const CString path = ctx.SmallCategoryPath(category);
    const std::vector<ConditionAttribute> attributes = ConditionAttributes(path);
    const ConditionAttribute* attribute = nullptr;
    CStringArray names;
    for (const ConditionAttribute& a : attributes) {
        names.Add(a.name);
        if (a.name == strings[0])
            attribute = &a;
    }
    if (!attribute && !allowUnknown)
        throw UsageError(Tr("{1} has no attribute \"{2}\"; it has {3}. --allow-unknown writes "
                            "the condition all the same",
                            {ToUtf8(path), ToUtf8(strings[0]), Listed(names)}));
    AttrConfig record;
    const AttrConfig* setting = SettingOf(ctx, path, strings[0], record);
    if (WToI(strings[1]) != 0)
        CheckValue(attribute, attributes, setting, strings);
    else
        CheckRange(setting, strings);
}

ConditionNode* ConditionOn(const ConfigNode& config, const CString& attribute) {
    for (ConditionNode* condition : config.GetCondition())
        if (condition->GetCFType() == attribute)
            return condition;
    return nullptr;
}

bool HoldsCondition(const ConditionNode& c, const CStringArray& s) {
    return s.GetSize() >= 8 && c.GetCFType() == s[0] && c.IsEqual() == (WToI(s[1]) != 0) &&
           c.GetEqualOperator() == s[2] && c.GetRangeOperator1() == s[3] &&
           c.GetRangeOperator2() == s[4] && c.GetValue() == s[5] && c.GetRange1() == s[6] &&
           c.GetRange2() == s[7];
}

void CheckItemFields(CliContext& ctx, const CPath& category, const ParsedArgs& args) {
    if (auto it = args.values.find("--unit-code");
        it != args.values.end() && !IsInteger(Arg(it->second)))
        throw UsageError(
            Tr("--unit-code takes an integer (1 for m, 100 for 100m), not \"{1}\"", {it->second}));
    if (auto it = args.values.find("--annex");
        it != args.values.end() && it->second != "是" && it->second != "否")
        throw UsageError(Tr("--annex takes 是 or 否, not \"{1}\"", {it->second}));
    auto it = args.values.find("--formula");
    if (it == args.values.end())
        return;
    const std::vector<CalcVariable> variables = GetCalcVariables(ctx.SmallCategoryPath(category));
    CString error;
    if (CheckFormula(Arg(it->second), variables, error))
        return;
    std::string names;
    for (const CalcVariable& v : variables)
        names += (names.empty() ? "" : ", ") + ToUtf8(v.name) + " " + ToUtf8(v.description);
    throw UsageError(Tr("the formula \"{1}\" does not parse: {2}. It may use numbers, + - * / "
                        "( ) and {3}",
                        {it->second, ToUtf8(error), names}));
}

void CheckBillNumber(const ConfigNode& config, const CString& number, int self) {
    int codeLength = -1;
    int suffixLength = -1;
    IBillLib::GetEnCodeRule(codeLength, suffixLength);
    if (!FollowsEncodingRule(number, codeLength, suffixLength)) {
        const int length = RuleNumberLength(codeLength, suffixLength);
        throw UsageError(Tr("the bill number \"{1}\" does not follow the bill library's encoding "
                            "rule: {2} digits, a fixed part of {3} and a sequence part of {4}",
                            {ToUtf8(number), std::to_string(length),
                             std::to_string(length - suffixLength), std::to_string(suffixLength)}));
    }
    for (const QdNode* qd : config.GetQd())
        if (qd->GetId() != self && qd->m_qd.strQdId == number)
            throw UsageError(Tr("the configuration already has bill number {1} (bill item {2}); "
                                "a number is taken once per configuration",
                                {ToUtf8(number), std::to_string(qd->GetId())}));
}
