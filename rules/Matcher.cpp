#include "rules/Matcher.h"

#include "model/ConditionNode.h"
#include "model/ConfigNode.h"

#include <charconv>
#include <string>

namespace {

const wchar_t* const kNotEqual = L"\u2260"; // ≠
const wchar_t* const kAbove = L"\uFF1E";    // ＞
const wchar_t* const kBelow = L"\uFF1C";    // ＜

std::string Trimmed(const CString& text) {
    const std::string utf8 = ToUtf8(text);
    const size_t first = utf8.find_first_not_of(" \t");
    if (first == std::string::npos)
        return {};
    return utf8.substr(first, utf8.find_last_not_of(" \t") - first + 1);
}

// A bound's verdict: `value` against `bound`, strict when the operator excludes the bound.
bool Within(double value, double bound, bool strict, bool lower) {
    if (lower)
        return strict ? value > bound : value >= bound;
    return strict ? value < bound : value <= bound;
}

} // namespace

std::optional<double> ReadNumber(const CString& text) {
    const std::string number = Trimmed(text);
    size_t digits = 0, points = 0, at = 0;
    if (at < number.size() && (number[at] == '+' || number[at] == '-'))
        ++at;
    for (size_t i = at; i < number.size(); ++i) {
        if (number[i] == '.')
            ++points;
        else if (number[i] >= '0' && number[i] <= '9')
            ++digits;
        else
            return std::nullopt;
    }
    if (digits == 0 || points > 1)
        return std::nullopt;
    // from_chars takes no '+'; the checks above leave it nothing else to refuse.
    const char* begin = number.data() + (number[0] == '+' ? 1 : 0);
    double value = 0;
    std::from_chars(begin, number.data() + number.size(), value);
    return value;
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
        if (Trimmed(bound.text).empty())
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
