#pragma once
// The checks of a configuration that tell a template keeper where the rules do not do what he
// means: a configuration that can never match, a range that is empty, a condition on an
// attribute the category lacks, an item the workbench hides or the host can't compute. Each
// finding names its place and kind; the programs word it.

#include "platform/CString.h"

#include <functional>
#include <string>
#include <vector>

class CQdDeConfigPresenter;
class ConfigNode;
class Spec;
struct AttrConfig;

enum class Severity { kError, kWarning };

enum class FindingKind {
    kShadowed,           // never matches: args {position, id} of the configuration above
    kNoConditions,       // not the default, yet no condition: shadows all below
    kConflictingRanges,  // two ranges on one attribute leave nothing: args {attribute}
    kOverlappingRanges,  // two ranges on one attribute overlap or touch: args {attribute}
    kEmptyRange,         // lower bound above the upper: args {condition text}
    kNarrowRange,        // bounds closer than 0.01: args {condition text}
    kBadBound,           // a bound is no number: args {condition text, bound}
    kUnknownAttribute,   // args {attribute}
    kValueNotInList,     // the list takes no typed value: args {value, attribute}
    kRangeOnWords,       // a range on an attribute whose list holds no number: args {attribute}
    kNoItems,            // not the default, and neither bills nor quotas
    kForeignLibrary,     // the workbench hides the item: args {number, item's code, project's}
    kBadBillNumber,      // args {number, length the rule asks}
    kDuplicateBill,      // args {number}
    kBadFormula,         // args {number, formula, parser's error}
    kSharedConditionId,  // args {id, how many}
    kDuplicateSpecialty, // a second element of one specialty: args {element name}
    kUnknownCategory,    // the project lacks it: args {path}
};

struct Finding {
    Severity severity = Severity::kWarning;
    FindingKind kind = FindingKind::kShadowed;
    CString category; // "专业\大类\小类", or the specialty alone for what is about the file
    int configId = 0; // 0: not about one configuration
    int position = 0; // the configuration's place in the list, from 1
    std::vector<std::string> args;
};

// What the checks need of the project, so that they run without the host where a test wants.
struct LintProject {
    bool quotaMode = false;
    CString billCode;      // the bill library's code
    CString billQuotaCode; // the quota library of the bill mode
    CString quotaCode;     // the quota library of the quota mode
    int codeLength = -1;   // the bill library's encoding rule; -1: unknown, nothing checked
    int suffixLength = -1;
    // The attribute setting of "专业\大类\小类"'s attribute, or null.
    std::function<const AttrConfig*(const CString& category, const CString& attribute)> setting;
};

// The project as the installed host data and libraries give it.
LintProject HostLintProject(std::function<const AttrConfig*(const CString&, const CString&)>);

// Every finding of the specialty's configurations, category by category, in list order.
std::vector<Finding> LintSpec(const Spec& spec, const LintProject& project);

// What only the file shows: specialties written twice, categories the project lacks. `xml` is
// the whole file's text; the catalog comes from the installed host data.
std::vector<Finding> LintFileText(const std::string& xml);

// Every finding of the file the presenter has open: its specialty as the presenter holds it
// now (edits not saved yet included), checked with the attribute settings the presenter reads
// and the project of the host data, then what only the file on disk shows. The tool and the
// desktop program check a configuration through this one call.
std::vector<Finding> LintOpenFile(CQdDeConfigPresenter& presenter);

// Gives conditions that share an id within a configuration fresh ids after the last one, the
// first of each keeping its own. Returns how many were renumbered.
int RenumberSharedConditionIds(ConfigNode& config);
