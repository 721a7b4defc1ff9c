#include "platform/CString.h"
#include "platform/NumParse.h"

#include <climits>
#include <gtest/gtest.h>

TEST(CStringTest, SubstringsClampOutOfRangeCounts) {
    CString s(L"给排水abc");
    EXPECT_EQ(s.Left(2), L"给排");
    EXPECT_EQ(s.Left(-1), L"");
    EXPECT_EQ(s.Left(99), s);
    EXPECT_EQ(s.Right(3), L"abc");
    EXPECT_EQ(s.Right(99), s);
    EXPECT_EQ(s.Right(-5), L"");
    EXPECT_EQ(s.Mid(3), L"abc");
    EXPECT_EQ(s.Mid(-2, 2), L"给排");
    EXPECT_EQ(s.Mid(4, 99), L"bc");
    EXPECT_EQ(s.Mid(99), L"");
    EXPECT_EQ(s.Mid(1, -1), L"");
}

TEST(CStringTest, SearchTrimReplaceAndCompare) {
    CString path(L"a\\b\\c.xml");
    EXPECT_EQ(path.Find(L'\\'), 1);
    EXPECT_EQ(path.Find(L'\\', 2), 3);
    EXPECT_EQ(path.Find(L'\\', 4), -1);
    EXPECT_EQ(path.Find(L"c.x"), 4);
    EXPECT_EQ(path.Find(L"b", 99), -1);
    EXPECT_EQ(path.ReverseFind(L'\\'), 3);
    EXPECT_EQ(path.ReverseFind(L'/'), -1);

    CString padded(L" \t x y \r\n");
    EXPECT_EQ(padded.Trim(), L"x y");

    CString text(L"aaa");
    EXPECT_EQ(text.Replace(L"a", L"aa"), 3); // must not rescan the replacement
    EXPECT_EQ(text, L"aaaaaa");
    EXPECT_EQ(text.Replace(L"", L"x"), 0);
    CString keys(L"a.b.c");
    EXPECT_EQ(keys.Replace(L'.', L'\\'), 2);
    EXPECT_EQ(keys, L"a\\b\\c");

    EXPECT_EQ(CString(L"QdDeConfigInfo").CompareNoCase(L"qddeconfiginfo"), 0);
    EXPECT_LT(CString(L"abc").CompareNoCase(L"ABD"), 0);
    EXPECT_GT(CString(L"abcd").CompareNoCase(L"ABC"), 0);
    EXPECT_NE(CString(L"abc").Compare(L"ABC"), 0);
}

TEST(CStringTest, FormatsNumbersAndWideStrings) {
    CString s;
    s.Format(L"%d-%ls-%d", -42, L"给排水", 7);
    EXPECT_EQ(s, L"-42-给排水-7");
    CString longText(L'x', 5000);
    s.Format(L"[%ls]", longText.GetString());
    EXPECT_EQ(s.GetLength(), 5002);
}

TEST(CStringTest, Utf8RoundTripAndInvalidBytes) {
    CString text(L"管道 \U0001F600 é");
    std::string utf8 = ToUtf8(text);
    EXPECT_EQ(utf8, "\xE7\xAE\xA1\xE9\x81\x93 \xF0\x9F\x98\x80 \xC3\xA9");
    EXPECT_EQ(FromUtf8(utf8), text);
    // A stray continuation byte, a cut-off sequence, an overlong form and an encoded
    // surrogate each become one replacement character per bad byte.
    EXPECT_EQ(FromUtf8("a\x80z"), L"a\uFFFDz");
    EXPECT_EQ(FromUtf8("\xE7\xAE"), L"\uFFFD\uFFFD");
    EXPECT_EQ(FromUtf8("\xC0\xAF"), L"\uFFFD\uFFFD");
    EXPECT_EQ(FromUtf8("\xED\xA0\x80").GetLength(), 3);
    EXPECT_EQ(ToUtf8(CString(std::wstring(1, wchar_t(0xD800)))), "\xEF\xBF\xBD");
}

TEST(NumParseTest, IntegersStopAtTheFirstNonDigitAndPrintAsPercentD) {
    EXPECT_EQ(WToI(L" -12abc"), -12);
    EXPECT_EQ(WToI(L"\t+7"), 7);
    EXPECT_EQ(WToI(L""), 0);
    EXPECT_EQ(WToI(L"abc"), 0);
    EXPECT_EQ(WToI(L"- 5"), 0);
    EXPECT_EQ(WToI(L"99999999999999999999"), INT_MAX);
    EXPECT_EQ(WToI(L"-99999999999999999999"), INT_MIN);
    EXPECT_EQ(WToI(L"-2147483648"), INT_MIN);
    EXPECT_EQ(WToI(L"2147483648"), INT_MAX);
    // And back as "%d" prints them.
    EXPECT_EQ(IntToText(0), L"0");
    EXPECT_EQ(IntToText(-305), L"-305");
    EXPECT_EQ(IntToText(INT_MIN), L"-2147483648");
    EXPECT_EQ(WToI(IntToText(INT_MAX)), INT_MAX);
}

TEST(NumParseTest, FloatsTakeTheDecimalPrefix) {
    EXPECT_DOUBLE_EQ(WToF(L"3.5kg"), 3.5);
    EXPECT_DOUBLE_EQ(WToF(L".5"), 0.5);
    EXPECT_DOUBLE_EQ(WToF(L" -1e3"), -1000.0);
    EXPECT_DOUBLE_EQ(WToF(L"2e"), 2.0);
    EXPECT_DOUBLE_EQ(WToF(L"2e+x"), 2.0);
    EXPECT_DOUBLE_EQ(WToF(L"e5"), 0.0);
    EXPECT_DOUBLE_EQ(WToF(L"."), 0.0);
    EXPECT_DOUBLE_EQ(WToF(L"0x10"), 0.0);
    EXPECT_DOUBLE_EQ(WToF(L"inf"), 0.0);
}
