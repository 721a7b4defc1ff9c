// The rules the condition editor and the tool share: a range's width in double precision, what
// counts as a number, and which bill numbers a library's encoding rule allows.
#include "presenter/ConditionRules.h"
#include "presenter/BillNumbering.h"

#include <gtest/gtest.h>

TEST(ConditionRules, RangesAreAsWideAsTheirDifferenceComputedInDoubles) {
    struct Case {
        const wchar_t* lower;
        const wchar_t* upper;
        RangeFault fault;
    };
    for (const Case& c :
         {Case{L"10", L"10", RangeFault::kTooNarrow}, Case{L"20", L"10", RangeFault::kSwapped},
          Case{L"1", L"1.01", RangeFault::kNone}, // 0.010000000000000009
          Case{L"0.1", L"0.11", RangeFault::kTooNarrow},
          Case{L"0", L"0.01", RangeFault::kNone}, // exactly 0.01 is wide enough
          Case{L"abc", L"5", RangeFault::kNone},  // read as 0, as the editor does
          Case{L"", L"x", RangeFault::kNone}, Case{L"", L"", RangeFault::kNoBound}})
        EXPECT_EQ(CheckRangeWidth(c.lower, c.upper), c.fault)
            << ToUtf8(CString(c.lower)) << " .. " << ToUtf8(CString(c.upper));
    for (const wchar_t* number : {L"50", L"-1.5", L".5", L" 7 ", L"+3", L"2."})
        EXPECT_TRUE(IsDecimalNumber(number)) << ToUtf8(CString(number));
    for (const wchar_t* text : {L"", L"DN50", L"1e3", L"1.2.3", L"-", L".", L"5mm"})
        EXPECT_FALSE(IsDecimalNumber(text)) << ToUtf8(CString(text));
}

TEST(ConditionRules, ABillNumberHasTheDialogsLengthInDigits) {
    struct Case {
        const wchar_t* number;
        int code;
        int suffix;
        bool follows;
    };
    for (const Case& c : {Case{L"031001001001", 9, 3, true}, Case{L"031001001", 9, 3, false},
                          Case{L"03100100100A", 9, 3, false}, Case{L"031001001001", 10, 2, true},
                          Case{L"031001001001", 12, 3, true}, Case{L"031001001001", 12, 1, true},
                          Case{L"0310010010011", 12, 1, false}, Case{L"0123456789", 8, 2, true},
                          Case{L"任何", -1, 3, true}})
        EXPECT_EQ(FollowsEncodingRule(c.number, c.code, c.suffix), c.follows)
            << ToUtf8(CString(c.number)) << " " << c.code << "/" << c.suffix;
}
