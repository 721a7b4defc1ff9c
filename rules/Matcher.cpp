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

ConditionTrial TryCondition(const ConditionNode& condition, const Component& component) {
    ConditionTrial trial;
    trial.condition = &condition;
    if (auto it = component.find(condition.GetCFType()); it != component.end())
        trial.attributeText = it->second;
    if (condition.IsEqual()) {
        const bool same = trial.attributeText == condition.GetValue();
        if (condition.GetEqualOperator() == kNotEqual)
            trial.verdict = same ? Verdict::kValueEquals : Verdict::kHeld;
        else
            trial.verdict = same ? Verdict::kHeld : Verdict::kValueDiffers;
        return trial;
    }
    const std::optional<double> value = ReadNumber(trial.attributeText);
    if (!value) {
        trial.verdict = Verdict::kNotANumber;
        return trial;
    }
    struct Bound {
        CString text;
        bool strict;
        bool lower;
        Verdict outside;
    };
    for (const Bound& bound : {Bound{condition.GetRange1(), condition.GetRangeOperator1() == kAbove,
                                     true, Verdict::kBelowLower},
                               Bound{condition.GetRange2(), condition.GetRangeOperator2() == kBelow,
                                     false, Verdict::kAboveUpper}}) {
        CString blank = bound.text;
        if (blank.Trim().IsEmpty())
            continue; // an open bound
        const std::optional<double> limit = ReadNumber(bound.text);
        if (!limit) {
            trial.verdict = Verdict::kBadBound;
            return trial;
        }
        if (!Within(*value, *limit, bound.strict, bound.lower)) {
            trial.verdict = bound.outside;
            return trial;
        }
    }
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

std::vector<CString> TestedAttributes(const std::vector<ConfigNode*>& configs) {
    std::vector<CString> names;
    for (const ConfigNode* config : configs)
        for (const ConditionNode* condition : config->GetCondition())
            if (std::find(names.begin(), names.end(), condition->GetCFType()) == names.end())
                names.push_back(condition->GetCFType());
    return names;
}
