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

ConditionTrial TryCondition(const ConditionNode& condition, const Component& component);
ConfigTrial TryConfig(const ConfigNode& config, const Component& component);
// Tries the configurations in order and stops at the first that matches.
MatchResult Match(const std::vector<ConfigNode*>& configs, const Component& component);

// The attributes the conditions of `configs` test, each once, in the order first met. A
// component given for a match is described by the category's attributes and these, since a
// condition may test one the catalog lacks.
std::vector<CString> TestedAttributes(const std::vector<ConfigNode*>& configs);
