#include "xml/XmlName.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

TEST(XmlNameTest, NamesOfXmlOneFifthEditionWithoutAColon) {
    constexpr auto kName = std::string_view::npos;
    // Text, then the byte offset of the first character that keeps it from being a name.
    const std::pair<std::string, size_t> cases[] = {
        {"a", kName},
        {"_x", kName},
        {"给排水", kName},
        {"导线·导管", kName}, // U+00B7 may follow the first character
        {"xmlData", kName},   // reserved for later standards, yet well-formed
        {"XML-1.0", kName},
        {"a\u0300\u203F\u2040b", kName},
        {"\u00C0\u00D8\u00F8\u0370\u037F\u200C\u2070\u2C00\u3001\uF900\uFDF0\uFFFD", kName},
        {"\U00010000\U000EFFFF", kName},
        {"", 0},
        {"1a", 0},
        {"-a", 0},
        {".a", 0},
        {"·a", 0},
        {"\u0300a", 0},
        {"\u00D7", 0},
        {":a", 0},
        {"a b", 1},
        {"a:b", 1},
        {"a\\b", 1},
        {"管 道", 3},
        {"a\u00F7", 1},
        {"a\u037E", 1},
        {"a\u2000", 1},
        {"a\uFDD0", 1},
        {"a\uFFFE", 1},
        {"a\U000F0000", 1},
        {"a\xC0\x80", 1},         // overlong
        {"a\xED\xA0\x80", 1},     // surrogate
        {"a\xF4\x90\x80\x80", 1}, // past U+10FFFF
        {"ab\xE7\xBB", 2},        // cut short
        {std::string("a\0b", 3), 1},
    };
    for (const auto& [text, fault] : cases) {
        EXPECT_EQ(XmlNameFaultAt(text), fault) << text;
        EXPECT_EQ(IsXmlName(text), fault == kName) << text;
    }
}
