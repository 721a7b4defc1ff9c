#pragma once
// How the bytes of an XML file become the UTF-8 text the parser reads, and how UTF-8 text goes
// back to the file's own encoding: UTF-8 with or without BOM, UTF-16 with BOM (or shown by its
// first "<?"), and the legacy Chinese encodings a declaration may name.

#include "platform/TextEncoding.h"

#include <optional>
#include <string>
#include <string_view>

// The XML declaration at the start of a text, read as its grammar has it: "version" first,
// then optionally "encoding", then optionally "standalone", each once and in that order.
struct XmlDeclaration {
    bool present = false;
    std::string encoding; // as written; empty when the declaration names none
    std::string error;    // why the declaration is malformed
};
XmlDeclaration ReadXmlDeclaration(std::string_view text);

// How a file's bytes are encoded, told from its first bytes (a few hundred are plenty).
struct XmlFileEncoding {
    TextEncoding encoding = TextEncoding::Utf8;
    std::string legacyName;     // upper-case iconv name when encoding is Legacy
    std::size_t markLength = 0; // bytes of the byte-order mark
    std::string error;          // why the file can't be read as XML here
    // Whether the parser can read the bytes as they are (UTF-8, with its mark skipped).
    bool IsUtf8() const {
        return encoding == TextEncoding::Utf8 || encoding == TextEncoding::Utf8Bom;
    }
};
XmlFileEncoding SniffXmlEncoding(std::string_view start);

// The file's bytes as UTF-8 text without a mark; nothing, with `why`, when they can't be.
std::optional<std::string> DecodeXmlBytes(std::string bytes, const XmlFileEncoding& how,
                                          std::string* why);

// UTF-8 text (declaration included) in the given encoding, with its mark. A legacy text
// holding a character its encoding lacks is written in GB18030 with its declaration saying
// so; nothing, with `why`, when even that fails.
std::optional<std::string> EncodeXmlText(std::string utf8, TextEncoding encoding,
                                         const std::string& legacyName, std::string* why);
