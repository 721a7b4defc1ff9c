#pragma once
// Which configuration of a small category a component receives, and why: the rule the host
// applies when it puts the items on a drawn component, written once here for the preview, the
// lint and the bill of quantities. docs/matching.md states it.
//
// The configurations are tried in list order and the first whose conditions all hold wins;
// the default one (其它, always last) holds for any component.

#include "platform/CString.h"

#include <map>
#include <optional>
#include <vector>

class ConditionNode;
class ConfigNode;

// A component as the rule sees it: the text of each attribute, by its display name. An
// attribute the component lacks reads as empty text.
using Component = std::map<CString, CString>;

// The outcome of one condition on one component.
enum class Verdict {
    kHeld,
    kValueDiffers, // ＝: the attribute's text is not the value
    kValueEquals,  // ≠: the attribute's text is the value
    kNotANumber,   // a range: the attribute's text is no number
    kBadBound,     // a range: a bound is no number, so nothing lies within it
    kBelowLower,   // a range: under the lower bound (or on it, when it is excluded)
    kAboveUpper,   // a range: over the upper bound (or on it, when it is excluded)
};

struct ConditionTrial {
    const ConditionNode* condition = nullptr;
    CString attributeText; // what the component holds, as compared
    Verdict verdict = Verdict::kHeld;
    bool Held() const { return verdict == Verdict::kHeld; }
};

struct ConfigTrial {
    const ConfigNode* config = nullptr;
    // Every condition tried, also after one has failed, so a preview can show them all.
    std::vector<ConditionTrial> conditions;
    bool Matched() const;
};

struct MatchResult {
    // The configurations tried, up to and including the winner.
    std::vector<ConfigTrial> trials;
    // The winner: the last trial when one matched, else null (a list without its default).
    const ConfigNode* Winner() const;
};

// A number as an attribute or a bound writes it: an optional sign, digits with at most one
// point, blanks around. "DN25", "1e3" and "" are none.
std::optional<double> ReadNumber(const CString& text);

// A condition read once for many components: its bounds parsed, its texts copied out of the
// node. TryCondition and RuleList both judge through it, so the rule is written once.
struct RuleCondition {
    explicit RuleCondition(const ConditionNode& condition);
    // The component's text of the attribute; empty when it lacks it.
    const CString& TextIn(const Component& component) const;
    Verdict Judge(const CString& text) const;

    CString attribute;
    bool isValue;
    bool notEqual;
    CString value;
    std::optional<double> bounds[2]; // lower, upper; none for an open bound
    bool strictBounds[2] = {false, false};
    bool badBounds[2] = {false, false}; // a bound that is no number holds for nothing
};

ConditionTrial TryCondition(const ConditionNode& condition, const Component& component);
ConfigTrial TryConfig(const ConfigNode& config, const Component& component);
// Tries the configurations in order and stops at the first that matches.
MatchResult Match(const std::vector<ConfigNode*>& configs, const Component& component);

// The winner alone, without the reasons, for runs over many components: the configurations'
// conditions are read once. The configurations must outlive it and stay unchanged.
class RuleList {
public:
    explicit RuleList(const std::vector<ConfigNode*>& configs);
    // Null when nothing matches (a list without its default).
    const ConfigNode* Winner(const Component& component) const;

private:
    struct Entry {
        const ConfigNode* config;
        std::vector<RuleCondition> conditions;
    };
    std::vector<Entry> m_entries;
};

// The attributes the conditions of `configs` test, each once, in the order first met. A
// component given for a match is described by the category's attributes and these, since a
// condition may test one the catalog lacks.
std::vector<CString> TestedAttributes(const std::vector<ConfigNode*>& configs);
