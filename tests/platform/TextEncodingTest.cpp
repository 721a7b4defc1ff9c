#include "platform/TextEncoding.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace std::string_literals;

namespace {

std::vector<char32_t> g_unencodable;

std::string Mark(char32_t cp) {
    g_unencodable.push_back(cp);
    return "<?>";
}

} // namespace

TEST(TextEncodingTest, DetectsByteOrderMarks) {
    EXPECT_EQ(DetectBom("\xEF\xBB\xBF[a]"), TextEncoding::Utf8Bom);
    EXPECT_EQ(DetectBom("\xFF\xFE[\0"), TextEncoding::Utf16LeBom);
    EXPECT_EQ(DetectBom("\xFE\xFF\0["), TextEncoding::Utf16BeBom);
    EXPECT_EQ(DetectBom("\xEF\xBB"), TextEncoding::Utf8);
    EXPECT_EQ(DetectBom(""), TextEncoding::Utf8);
}

TEST(TextEncodingTest, ChineseLegacyEncodingsRoundTrip) {
    const std::string gb = "\xB8\xF8\xC5\xC5\xCB\xAE=1"; // 给排水=1
    EXPECT_EQ(Utf8ToLegacy("给排水=1", "GB2312", Mark), gb);
    EXPECT_EQ(LegacyToUtf8(gb, "GB2312"), "给排水=1");
    EXPECT_EQ(LegacyToUtf8(gb, "gbk"), "给排水=1");
    // A GB2312-labelled file holding a GB18030-only character still reads.
    EXPECT_EQ(LegacyToUtf8("\x94\x39\xFC\x36", "GB2312"), "\U0001F600");
    EXPECT_EQ(LegacyToUtf8("\xB8", "GB18030"), std::nullopt); // cut-off character
    EXPECT_EQ(LegacyToUtf8("x", "NO-SUCH-CHARSET"), std::nullopt);
    EXPECT_EQ(Utf8ToLegacy("x", "NO-SUCH-CHARSET", Mark), std::nullopt);

    EXPECT_TRUE(IsLegacyChineseEncoding("gb2312"));
    EXPECT_TRUE(IsLegacyChineseEncoding("GB18030"));
    EXPECT_FALSE(IsLegacyChineseEncoding("UTF-8"));
    EXPECT_FALSE(IsLegacyChineseEncoding("GB"));
}

TEST(TextEncodingTest, UnencodableCharactersGoToTheFallback) {
    g_unencodable.clear();
    EXPECT_EQ(Utf8ToLegacy("水€b\U0001F600", "GB2312", Mark), "\xCB\xAE<?>b<?>");
    EXPECT_EQ(g_unencodable, (std::vector<char32_t>{0x20AC, 0x1F600}));
    // GB18030 holds every character, so nothing falls back there.
    g_unencodable.clear();
    EXPECT_EQ(Utf8ToLegacy("€", "GB18030", Mark), "\xA2\xE3");
    EXPECT_TRUE(g_unencodable.empty());
    // Bytes that are not UTF-8 are replaced one by one.
    EXPECT_EQ(Utf8ToLegacy("a\xFF\x62", "GB2312", Mark), "a<?>b");
    EXPECT_EQ(g_unencodable, std::vector<char32_t>{0xFFFD});
}

TEST(TextEncodingTest, Utf16SurrogatePairsAndStrayHalves) {
    const std::string le = "A\0\x3D\xD8\x00\xDE"s; // "A😀"
    EXPECT_EQ(Utf16LeToUtf8(le), "A\U0001F600");
    EXPECT_EQ(Utf8ToUtf16Le("A\U0001F600"), le);
    EXPECT_EQ(Utf16BeToUtf8("\0A\xD8\x3D\xDE\x00"s), "A\U0001F600");
    EXPECT_EQ(Utf8ToUtf16Le("暖"), "\x96\x66");

    EXPECT_EQ(Utf16LeToUtf8("\x3D\xD8\x41\0"s), "\uFFFDA"); // lone high half
    EXPECT_EQ(Utf16LeToUtf8("\x00\xDE\x41\0"s), "\uFFFDA"); // lone low half
    EXPECT_EQ(Utf16LeToUtf8("A\0\x3D\xD8"s), "A\uFFFD");    // high half at end
    EXPECT_EQ(Utf16LeToUtf8("A\0B"s), "A\uFFFD");           // odd byte
}
