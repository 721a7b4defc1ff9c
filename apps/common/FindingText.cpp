#include "FindingText.h"

#include "Translate.h"

namespace {

struct KindText {
    FindingKind kind;
    const char* name;
    const char* text;
};

// Each kind with its name for programs and its words for people; {1}, {2}... are its args.
const KindText kTexts[] = {
    {FindingKind::kShadowed, "shadowed",
     TrNoop("never matches: {1} (config {2}) above it catches every component it would")},
    {FindingKind::kNoConditions, "noConditions",
     TrNoop("has no condition: it catches every component, and those below it never match")},
    {FindingKind::kConflictingRanges, "conflictingRanges",
     TrNoop("never matches: two ranges on {1} have no number in common, and both must hold")},
    {FindingKind::kOverlappingRanges, "overlappingRanges",
     TrNoop("two ranges on {1} overlap or touch: both must hold, so only their common part "
            "matches")},
    {FindingKind::kEmptyRange, "emptyRange",
     TrNoop("the range {1} is empty: its lower bound is above its upper one")},
    {FindingKind::kNarrowRange, "narrowRange", TrNoop("the range {1} is narrower than 0.01")},
    {FindingKind::kBadBound, "badBound",
     TrNoop("the range {1} has a bound that is no number (\"{2}\"): it holds for nothing")},
    {FindingKind::kUnknownAttribute, "unknownAttribute",
     TrNoop("a condition tests \"{1}\", which the category lacks")},
    {FindingKind::kValueNotInList, "valueNotInList",
     TrNoop("\"{1}\" is not in the list of {2}, which takes no typed value")},
    {FindingKind::kRangeOnWords, "rangeOnWords",
     TrNoop("a range on {1}, whose list holds no number: no value picked from it is in range")},
    {FindingKind::kNoItems, "noItems", TrNoop("gives no bill and no quota")},
    {FindingKind::kForeignLibrary, "foreignLibrary",
     TrNoop("item {1} is of library {2}, not of the project's {3}: the workbench hides it")},
    {FindingKind::kBadBillNumber, "badBillNumber",
     TrNoop("bill number {1} does not follow the bill library's encoding rule ({2} digits)")},
    {FindingKind::kDuplicateBill, "duplicateBill", TrNoop("bill number {1} is given twice")},
    {FindingKind::kBadFormula, "badFormula",
     TrNoop("the formula \"{2}\" of {1} does not parse: {3}")},
    {FindingKind::kSharedConditionId, "sharedConditionId",
     TrNoop("{2} conditions share id {1}, so edits reach only the first of them (lint --fix "
            "renumbers them)")},
    {FindingKind::kDuplicateSpecialty, "duplicateSpecialty",
     TrNoop("the file holds this specialty twice; the second (<{1}>) is never read and goes "
            "stale")},
    {FindingKind::kUnknownCategory, "unknownCategory",
     TrNoop("the project has no category {1}: it disappears at the next save")},
};

const KindText& Of(FindingKind kind) {
    for (const KindText& text : kTexts)
        if (text.kind == kind)
            return text;
    return kTexts[0];
}

} // namespace

std::string FindingText(const Finding& finding) {
    return Substitute(Tr(Of(finding.kind).text), finding.args);
}

std::string SeverityText(Severity severity) {
    return severity == Severity::kError ? Tr("error") : Tr("warning");
}

const char* FindingKindName(FindingKind kind) {
    return Of(kind).name;
}
