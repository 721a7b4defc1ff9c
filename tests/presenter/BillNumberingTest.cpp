#include "presenter/BillNumbering.h"

#include <gtest/gtest.h>

#include <algorithm>

TEST(BillNumbering, RulesSplitThePickedNumberAndChooseTheProposer) {
    auto check = [](int code, int suffix, const wchar_t* prefix, const wchar_t* rest,
                    SuffixProposer proposer) {
        const BillNumberSplit split = SplitBillNumber(L"031001006005", code, suffix);
        EXPECT_EQ(split.prefix, prefix) << code << "/" << suffix;
        EXPECT_EQ(split.suffix, rest) << code << "/" << suffix;
        EXPECT_EQ(split.proposer, proposer) << code << "/" << suffix;
    };
    check(9, 3, L"031001006005", L"", SuffixProposer::kNext);
    check(10, 2, L"031001006005", L"", SuffixProposer::kNext);
    check(12, 3, L"031001006", L"005", SuffixProposer::kFree);
    check(12, 1, L"03100100600", L"5", SuffixProposer::kNext);
    check(12, 2, L"031001006005", L"", SuffixProposer::kNone);
}

TEST(BillNumbering, NextSuffixContinuesAfterTheHighestAndWrapsPastTheLargest) {
    EXPECT_EQ(ProposeNextSuffix({}, 3), L"001");
    EXPECT_EQ(ProposeNextSuffix({L"031001001007", L"031001001003"}, 3), L"008");
    EXPECT_EQ(ProposeNextSuffix({L"031001001999"}, 3), L"000");
    EXPECT_EQ(ProposeNextSuffix({L"031001001998"}, 3), L"999");
    EXPECT_EQ(ProposeNextSuffix({L"03100100604"}, 2), L"05");
    // A sequence part that is no number counts 0.
    EXPECT_EQ(ProposeNextSuffix({L"031001001abc"}, 3), L"001");
}

TEST(BillNumbering, FreeSuffixKeepsAFreePickAndSkipsUsedAndLibraryNumbers) {
    const std::vector<CString> library = {L"031001006006", L"031001006007"};
    auto inLibrary = [&](const CString& number) {
        return std::find(library.begin(), library.end(), number) != library.end();
    };
    EXPECT_EQ(ProposeFreeSuffix(L"031001006", L"", {}, inLibrary), L"001");
    EXPECT_EQ(ProposeFreeSuffix(L"031001006", L"5", {}, inLibrary), L"005") << "padded";
    EXPECT_EQ(ProposeFreeSuffix(L"031001006", L"006", {L"031001006003"}, inLibrary), L"006")
        << "a pick the project has not used stays, even a library bill";
    // Used: the next ones are library bills, so the first free one after them.
    EXPECT_EQ(ProposeFreeSuffix(L"031001006", L"005", {L"031001006005"}, inLibrary), L"008");
    EXPECT_EQ(
        ProposeFreeSuffix(L"031001006", L"005", {L"031001006005", L"031001006008"}, inLibrary),
        L"009");
}
