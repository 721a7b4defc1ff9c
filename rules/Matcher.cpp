#include "rules/Matcher.h"

#include "model/ConditionNode.h"
#include "model/ConfigNode.h"
#include "platform/NumParse.h"
#include "presenter/ConditionRules.h"

#include <algorithm>
#include <string>

namespace {

using ConditionOperator::kAbove;
using ConditionOperator::kBelow;
using ConditionOperator::kNotEqual;

// A bound's verdict: `value` against `bound`, strict when the operator excludes the bound.
bool Within(double value, double bound, bool strict, bool lower) {
    if (lower)
        return strict ? value > bound : value >= bound;
    return strict ? value < bound : value <= bound;
}

} // namespace

std::optional<double> ReadNumber(const CString& text) {
    if (!IsDecimalNumber(text))
        return std::nullopt;
    return WToF(text);
}

RuleCondition::RuleCondition(const ConditionNode& condition)
    : attribute(condition.GetCFType()), isValue(condition.IsEqual()),
      notEqual(condition.GetEqualOperator() == kNotEqual), value(condition.GetValue()) {
    if (isValue)
        return;
    const CString texts[] = {condition.GetRange1(), condition.GetRange2()};
    const bool strict[] = {condition.GetRangeOperator1() == kAbove,
                           condition.GetRangeOperator2() == kBelow};
    for (int i = 0; i < 2; ++i) {
        CString blank = texts[i];
        if (blank.Trim().IsEmpty())
            continue; // an open bound
        const std::optional<double> limit = ReadNumber(texts[i]);
        if (!limit) {
            badBounds[i] = true;
            continue;
        }
        bounds[i] = *limit;
        strictBounds[i] = strict[i];
    }
}

Verdict RuleCondition::Judge(const CString& text) const {
    if (isValue) {
        const bool same = text == value;
        if (notEqual)
            return same ? Verdict::kValueEquals : Verdict::kHeld;
        return same ? Verdict::kHeld : Verdict::kValueDiffers;
    }
    const std::optional<double> number = ReadNumber(text);
    if (!number)
        return Verdict::kNotANumber;
    // Lower bound first, as the condition reads.
    for (int i = 0; i < 2; ++i) {
        if (badBounds[i])
            return Verdict::kBadBound;
        if (bounds[i] && !Within(*number, *bounds[i], strictBounds[i], i == 0))
            return i == 0 ? Verdict::kBelowLower : Verdict::kAboveUpper;
    }
    return Verdict::kHeld;
}

const CString& RuleCondition::TextIn(const Component& component) const {
    static const CString kAbsent;
    const auto it = component.find(attribute);
    return it == component.end() ? kAbsent : it->second;
}

ConditionTrial TryCondition(const ConditionNode& condition, const Component& component) {
    const RuleCondition rule(condition);
    ConditionTrial trial;
    trial.condition = &condition;
    trial.attributeText = rule.TextIn(component);
    trial.verdict = rule.Judge(trial.attributeText);
    return trial;
}

bool ConfigTrial::Matched() const {
    for (const ConditionTrial& trial : conditions)
        if (!trial.Held())
            return false;
    return true;
}

ConfigTrial TryConfig(const ConfigNode& config, const Component& component) {
    ConfigTrial trial;
    trial.config = &config;
    // The default configuration has no conditions of its own that count: it takes what is left.
    if (config.IfDefault())
        return trial;
    for (const ConditionNode* condition : config.GetCondition())
        trial.conditions.push_back(TryCondition(*condition, component));
    return trial;
}

const ConfigNode* MatchResult::Winner() const {
    return !trials.empty() && trials.back().Matched() ? trials.back().config : nullptr;
}

MatchResult Match(const std::vector<ConfigNode*>& configs, const Component& component) {
    MatchResult result;
    for (const ConfigNode* config : configs) {
        result.trials.push_back(TryConfig(*config, component));
        if (result.trials.back().Matched())
            break;
    }
    return result;
}

RuleList::RuleList(const std::vector<ConfigNode*>& configs) {
    for (const ConfigNode* config : configs) {
        Entry entry{config, {}};
        for (const ConditionNode* condition : config->GetCondition())
            entry.conditions.emplace_back(*condition);
        m_entries.push_back(std::move(entry));
    }
}

const ConfigNode* RuleList::Winner(const Component& component) const {
    for (const Entry& entry : m_entries) {
        if (entry.config->IfDefault())
            return entry.config;
        bool all = true;
        for (const RuleCondition& condition : entry.conditions)
            if (condition.Judge(condition.TextIn(component)) != Verdict::kHeld) {
                all = false;
                break;
            }
        if (all)
            return entry.config;
    }
    return nullptr;
}

std::vector<CString> TestedAttributes(const std::vector<ConfigNode*>& configs) {
    std::vector<CString> names;
    for (const ConfigNode* config : configs)
        for (const ConditionNode* condition : config->GetCondition())
            if (std::find(names.begin(), names.end(), condition->GetCFType()) == names.end())
                names.push_back(condition->GetCFType());
    return names;
}
