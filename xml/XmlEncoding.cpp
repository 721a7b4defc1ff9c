#include "xml/XmlEncoding.h"

#include <cctype>
#include <iterator>
#include <utility>

namespace {

std::string Upper(std::string text) {
    for (char& ch : text)
        ch = static_cast<char>(std::toupper(static_cast<unsigned char>(ch)));
    return text;
}

bool IsBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

std::string SwapByteOrder(std::string_view bytes) {
    std::string swapped(bytes);
    for (size_t i = 0; i + 1 < swapped.size(); i += 2)
        std::swap(swapped[i], swapped[i + 1]);
    return swapped;
}

// Puts another encoding name into the declaration that starts the text. False when the text
// has no declaration naming an encoding.
bool UpgradeDeclaration(std::string& text, std::string_view encoding) {
    const XmlDeclaration declaration = ReadXmlDeclaration(text);
    if (!declaration.present || declaration.encoding.empty())
        return false;
    const size_t end = text.find("?>");
    const size_t at = text.rfind(declaration.encoding, end);
    if (at == std::string::npos)
        return false;
    text.replace(at, declaration.encoding.size(), encoding);
    return true;
}

} // namespace

XmlDeclaration ReadXmlDeclaration(std::string_view text) {
    XmlDeclaration out;
    if (!text.starts_with("<?xml") || text.size() < 6 || (!IsBlank(text[5]) && text[5] != '?'))
        return out;
    out.present = true;
    size_t at = 5;
    static constexpr std::string_view kNames[] = {"version", "encoding", "standalone"};
    size_t nextName = 0;
    for (;;) {
        const size_t blanks = at;
        while (at < text.size() && IsBlank(text[at]))
            ++at;
        if (text.substr(at).starts_with("?>"))
            break;
        size_t nameEnd = at;
        while (nameEnd < text.size() && std::isalpha(static_cast<unsigned char>(text[nameEnd])))
            ++nameEnd;
        const std::string_view name = text.substr(at, nameEnd - at);
        size_t which = nextName;
        while (which < std::size(kNames) && kNames[which] != name)
            ++which;
        if (at == blanks || which == std::size(kNames) || (nextName == 0 && which != 0)) {
            out.error = name.empty()
                            ? "the XML declaration is not closed by \"?>\""
                            : "the XML declaration can't hold \"" + std::string(name) + "\" there";
            return out;
        }
        nextName = which + 1;
        at = nameEnd;
        while (at < text.size() && IsBlank(text[at]))
            ++at;
        if (at >= text.size() || text[at] != '=') {
            out.error = "the XML declaration's \"" + std::string(name) + "\" has no value";
            return out;
        }
        ++at;
        while (at < text.size() && IsBlank(text[at]))
            ++at;
        const size_t close = at < text.size() && (text[at] == '"' || text[at] == '\'')
                                 ? text.find(text[at], at + 1)
                                 : std::string_view::npos;
        if (close == std::string_view::npos) {
            out.error = "the XML declaration's \"" + std::string(name) + "\" is not quoted";
            return out;
        }
        if (which == 1)
            out.encoding = std::string(text.substr(at + 1, close - at - 1));
        at = close + 1;
    }
    if (nextName == 0)
        out.error = "the XML declaration has no version";
    return out;
}

XmlFileEncoding SniffXmlEncoding(std::string_view start) {
    XmlFileEncoding out;
    out.encoding = DetectBom(start);
    switch (out.encoding) {
    case TextEncoding::Utf8Bom:
        out.markLength = 3;
        return out;
    case TextEncoding::Utf16LeBom:
    case TextEncoding::Utf16BeBom:
        out.markLength = 2;
        return out;
    default:
        break;
    }
    // UTF-16 without a mark shows itself by the "<?" it must start with.
    if (start.starts_with(std::string_view("<\0?\0", 4))) {
        out.encoding = TextEncoding::Utf16LeBom;
        return out;
    }
    if (start.starts_with(std::string_view("\0<\0?", 4))) {
        out.encoding = TextEncoding::Utf16BeBom;
        return out;
    }
    const XmlDeclaration declaration = ReadXmlDeclaration(start);
    if (!declaration.error.empty()) {
        out.error = declaration.error;
        return out;
    }
    const std::string& declared = declaration.encoding;
    if (declared.empty() || Upper(declared) == "UTF-8")
        return out;
    if (!IsLegacyChineseEncoding(declared)) {
        out.error = "the file declares the encoding \"" + declared +
                    "\", which is not read here (UTF-8, UTF-16, GB2312, GBK and GB18030 are)";
        return out;
    }
    out.encoding = TextEncoding::Legacy;
    out.legacyName = Upper(declared);
    return out;
}

std::optional<std::string> DecodeXmlBytes(std::string bytes, const XmlFileEncoding& how,
                                          std::string* why) {
    auto fail = [why](std::string reason) -> std::optional<std::string> {
        if (why)
            *why = std::move(reason);
        return std::nullopt;
    };
    if (!how.error.empty())
        return fail(how.error);
    const std::string_view body = std::string_view(bytes).substr(how.markLength);
    switch (how.encoding) {
    case TextEncoding::Utf8:
        return bytes;
    case TextEncoding::Utf8Bom:
        return std::string(body);
    case TextEncoding::Utf16LeBom:
    case TextEncoding::Utf16BeBom:
        if (body.size() % 2 != 0)
            return fail("UTF-16 text cut off in the middle of a character");
        return how.encoding == TextEncoding::Utf16LeBom ? Utf16LeToUtf8(body) : Utf16BeToUtf8(body);
    case TextEncoding::Legacy:
        break;
    }
    std::optional<std::string> text = LegacyToUtf8(body, how.legacyName);
    if (!text)
        return fail("the text is not valid " + how.legacyName);
    return text;
}

std::optional<std::string> EncodeXmlText(std::string utf8, TextEncoding encoding,
                                         const std::string& legacyName, std::string* why) {
    switch (encoding) {
    case TextEncoding::Utf8:
        return utf8;
    case TextEncoding::Utf8Bom:
        return "\xEF\xBB\xBF" + utf8;
    case TextEncoding::Utf16LeBom:
        return "\xFF\xFE" + Utf8ToUtf16Le(utf8);
    case TextEncoding::Utf16BeBom:
        return "\xFE\xFF" + SwapByteOrder(Utf8ToUtf16Le(utf8));
    case TextEncoding::Legacy:
        break;
    }
    std::optional<std::string> encoded = Utf8ToLegacy(utf8, legacyName, nullptr);
    // A character the declared encoding lacks (GB2312 holds no "€") takes the file to
    // GB18030, which holds every character and reads the old bytes the same. A character
    // reference instead would be wrong where it lands in a name.
    if (!encoded && UpgradeDeclaration(utf8, "GB18030"))
        encoded = Utf8ToLegacy(utf8, "GB18030", nullptr);
    if (!encoded && why)
        *why = "the text can't be written in " + legacyName;
    return encoded;
}
