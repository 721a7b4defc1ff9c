#pragma once
// The numbering of a bill that enters a configuration: a library number is split by the bill
// library's encoding rule into a fixed part and a sequence part, and a sequence part is
// proposed from the numbers already used. The bill number dialog and the command-line tool
// both number bills with these.

#include "platform/CString.h"
#include "platform/Export.h"

#include <functional>
#include <vector>

enum class SuffixProposer { kNone, kNext, kFree };

struct BillNumberSplit {
    CString prefix; // the fixed part
    CString suffix; // the sequence part taken from the number, or empty
    SuffixProposer proposer = SuffixProposer::kNone;
};

// Splits a picked number by the rule (code length, sequence length). Rules 9/3 and 10/2 keep
// the number whole and continue after the highest sequence used; 12/3 splits off the last
// three characters and looks for a free number from there; 12/1 splits off the last one and
// continues. Any other rule (-1 included) proposes nothing and keeps the number whole.
KOQDDE_DIALOGS_API BillNumberSplit SplitBillNumber(const CString& picked, int codeLength,
                                                   int suffixLength);

// One more than the highest sequence number among the last suffixLength characters of the
// numbers, back to 0 past the largest that length holds, padded with "0" to suffixLength.
KOQDDE_DIALOGS_API CString ProposeNextSuffix(const std::vector<CString>& used, int suffixLength);

// The picked sequence (1 when empty) if prefix + it is not used; else counts upward to the
// first that makes neither a used number nor a number of the library. Padded to 3 digits; a
// list with no number used gives the picked sequence padded.
KOQDDE_DIALOGS_API CString ProposeFreeSuffix(const CString& prefix, const CString& suffix,
                                             const std::vector<CString>& used,
                                             const std::function<bool(const CString&)>& inLibrary);

// The length of a number the numbering makes under the rule: the fixed part it keeps of a
// library number (codeLength characters, less the sequence part it splits off) and the
// sequence part; -1 when the rule is unknown (-1 in either value).
int RuleNumberLength(int codeLength, int suffixLength);
// Whether a number is one the numbering can make under the rule: digits only, of the length
// above. Every number follows an unknown rule.
bool FollowsEncodingRule(const CString& number, int codeLength, int suffixLength);
