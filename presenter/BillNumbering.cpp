#include "presenter/BillNumbering.h"

#include "platform/NumParse.h"

#include <algorithm>
#include <cmath>

namespace {
CString Padded(int value, int length) {
    CString text;
    text.Format(L"%d", value);
    while (text.GetLength() < length)
        text = L"0" + text;
    return text;
}

bool Contains(const std::vector<CString>& list, const CString& text) {
    return std::find(list.begin(), list.end(), text) != list.end();
}
} // namespace

BillNumberSplit SplitBillNumber(const CString& picked, int codeLength, int suffixLength) {
    BillNumberSplit split;
    split.prefix = picked;
    if ((codeLength == 9 && suffixLength == 3) || (codeLength == 10 && suffixLength == 2)) {
        split.proposer = SuffixProposer::kNext;
    } else if (codeLength == 12 && suffixLength == 3) {
        split.suffix = picked.Right(3);
        split.prefix = picked.Left(9);
        split.proposer = SuffixProposer::kFree;
    } else if (codeLength == 12 && suffixLength == 1) {
        split.suffix = picked.Right(1);
        split.prefix = picked.Left(11);
        split.proposer = SuffixProposer::kNext;
    }
    return split;
}

CString ProposeNextSuffix(const std::vector<CString>& used, int suffixLength) {
    int highest = 0;
    for (const CString& number : used)
        highest = std::max(highest, WToI(number.Right(suffixLength)));
    int next = highest + 1;
    // Compared in single precision, as the rule has always been applied.
    if (static_cast<float>(next) > std::pow(10.0f, static_cast<float>(suffixLength)) - 1.0f)
        next = 0;
    return Padded(next, suffixLength);
}

CString ProposeFreeSuffix(const CString& prefix, const CString& suffix,
                          const std::vector<CString>& used,
                          const std::function<bool(const CString&)>& inLibrary) {
    int sequence = suffix.IsEmpty() ? 1 : WToI(suffix);
    if (used.empty())
        return Padded(sequence, 3);
    CString text = suffix;
    if (!Contains(used, prefix + text))
        return text;
    while (inLibrary(prefix + text) || Contains(used, prefix + text)) {
        ++sequence;
        text = Padded(sequence, 3);
    }
    return text;
}

int RuleNumberLength(int codeLength, int suffixLength) {
    if (codeLength < 0 || suffixLength < 0)
        return -1;
    return SplitBillNumber(CString(L'0', codeLength), codeLength, suffixLength).prefix.GetLength() +
           suffixLength;
}

bool FollowsEncodingRule(const CString& number, int codeLength, int suffixLength) {
    const int length = RuleNumberLength(codeLength, suffixLength);
    if (length < 0)
        return true;
    if (number.GetLength() != length)
        return false;
    for (wchar_t c : number.str())
        if (c < L'0' || c > L'9')
            return false;
    return true;
}
