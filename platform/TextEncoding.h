#pragma once
// Conversions between the text encodings found in configuration, ini and data files.
// Legacy Chinese encodings go through glibc's iconv.

#include <optional>
#include <string>
#include <string_view>

enum class TextEncoding {
    Utf8,       // without BOM
    Utf8Bom,    // with BOM
    Utf16LeBom, // with BOM
    Utf16BeBom, // with BOM
    Legacy,     // a named legacy encoding (GB2312, GBK, GB18030), see LegacyName
};

// Detects a byte-order mark. Returns Utf8 when there is none.
TextEncoding DetectBom(std::string_view bytes);

// Decodes the bytes of a legacy encoding (iconv name such as "GB2312", "GBK", "GB18030") into
// UTF-8. GB2312 and GBK are decoded as GB18030, their superset, so a mislabelled file still
// reads. Returns nothing when the bytes are not valid in that encoding or iconv lacks it.
std::optional<std::string> LegacyToUtf8(std::string_view bytes, const std::string& encoding);

// Encodes UTF-8 into a legacy encoding. A character the encoding can't hold is handed to
// `fallback` (code point) and whatever it returns (ASCII) is written instead; without a
// fallback the conversion fails. Returns nothing when iconv lacks the encoding or, without a
// fallback, when a character can't be held.
std::optional<std::string> Utf8ToLegacy(std::string_view utf8, const std::string& encoding,
                                        std::string (*fallback)(char32_t));

// UTF-16LE/BE (no BOM in the input) <-> UTF-8. Unpaired surrogates become U+FFFD.
std::string Utf16LeToUtf8(std::string_view bytes);
std::string Utf16BeToUtf8(std::string_view bytes);
std::string Utf8ToUtf16Le(std::string_view utf8);

// True when the name is one of the legacy Chinese encodings we read (case-insensitive).
bool IsLegacyChineseEncoding(std::string_view name);
