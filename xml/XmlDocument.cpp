#include "xml/XmlDocument.h"

#include "platform/FileSystem.h"

#include <cctype>
#include <cstdio>
#include <optional>
#include <utility>

namespace {

// What a DOM keeps. Fragment mode is on only so that text outside the document element
// becomes visible as nodes; the top-level rules are then checked by CheckTopLevel.
constexpr unsigned kParseOptions = pugi::parse_default | pugi::parse_comments | pugi::parse_pi |
                                   pugi::parse_declaration | pugi::parse_doctype |
                                   pugi::parse_fragment;

constexpr const char* kIndent = "  ";

std::string Hex(char32_t value, int digits) {
    char text[16];
    std::snprintf(text, sizeof text, "%0*X", digits, static_cast<unsigned>(value));
    return text;
}

std::string AtOffset(size_t offset) {
    return " at offset " + std::to_string(offset);
}

// Empty when the text is well-formed UTF-8 holding only characters XML allows; otherwise why
// not. pugixml checks neither, and a DOM must refuse both.
std::string CheckCharacters(std::string_view text) {
    static constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
    size_t i = 0;
    while (i < text.size()) {
        const auto lead = static_cast<unsigned char>(text[i]);
        if (lead < 0x80) {
            if (lead < 0x20 && lead != '\t' && lead != '\n' && lead != '\r')
                return "character U+" + Hex(lead, 4) + " is not allowed in XML" + AtOffset(i);
            ++i;
            continue;
        }
        size_t length = 0;
        char32_t cp = 0;
        if ((lead & 0xE0) == 0xC0) {
            length = 2;
            cp = lead & 0x1F;
        } else if ((lead & 0xF0) == 0xE0) {
            length = 3;
            cp = lead & 0x0F;
        } else if ((lead & 0xF8) == 0xF0) {
            length = 4;
            cp = lead & 0x07;
        } else {
            return "invalid UTF-8" + AtOffset(i);
        }
        if (text.size() - i < length)
            return "invalid UTF-8" + AtOffset(i);
        for (size_t k = 1; k < length; ++k) {
            const auto next = static_cast<unsigned char>(text[i + k]);
            if ((next & 0xC0) != 0x80)
                return "invalid UTF-8" + AtOffset(i);
            cp = (cp << 6) | (next & 0x3F);
        }
        if (cp < kSmallest[length] || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF))
            return "invalid UTF-8" + AtOffset(i);
        if (cp == 0xFFFE || cp == 0xFFFF)
            return "character U+" + Hex(cp, 4) + " is not allowed in XML" + AtOffset(i);
        i += length;
    }
    return {};
}

// Empty when the nodes outside the document element are those XML permits there: the
// declaration first of all, a document type before the element, comments, processing
// instructions, and exactly one element.
std::string CheckTopLevel(const pugi::xml_document& doc, std::string_view text) {
    int elements = 0;
    bool first = true;
    for (pugi::xml_node node : doc.children()) {
        switch (node.type()) {
        case pugi::node_element:
            if (++elements > 1)
                return std::string("several document elements (another one is <") + node.name() +
                       ">)";
            break;
        case pugi::node_pcdata:
        case pugi::node_cdata:
            return "text outside the document element";
        case pugi::node_declaration:
            if (!first || !text.starts_with("<?xml"))
                return "the XML declaration is not at the start of the document";
            break;
        case pugi::node_doctype:
            if (elements > 0)
                return "document type declaration after the document element";
            break;
        default:
            break;
        }
        first = false;
    }
    if (elements == 0)
        return "No document element found";
    return {};
}

std::string Upper(std::string text) {
    for (char& ch : text)
        ch = static_cast<char>(std::toupper(static_cast<unsigned char>(ch)));
    return text;
}

// The encoding named by a declaration at the very start of the bytes, or "".
std::string DeclaredEncoding(std::string_view bytes) {
    if (!bytes.starts_with("<?xml"))
        return {};
    const size_t end = bytes.substr(0, 1024).find("?>");
    if (end == std::string_view::npos)
        return {};
    const std::string_view decl = bytes.substr(0, end);
    size_t at = decl.find("encoding");
    if (at == std::string_view::npos)
        return {};
    at += 8;
    auto skipBlanks = [&] {
        while (at < decl.size() && std::isspace(static_cast<unsigned char>(decl[at])))
            ++at;
    };
    skipBlanks();
    if (at >= decl.size() || decl[at] != '=')
        return {};
    ++at;
    skipBlanks();
    if (at >= decl.size() || (decl[at] != '"' && decl[at] != '\''))
        return {};
    const char quote = decl[at++];
    const size_t close = decl.find(quote, at);
    if (close == std::string_view::npos)
        return {};
    return std::string(decl.substr(at, close - at));
}

std::string DeclaredEncoding(const pugi::xml_document& doc) {
    for (pugi::xml_node node : doc.children())
        if (node.type() == pugi::node_declaration)
            return node.attribute("encoding").value();
    return {};
}

struct Decoded {
    std::string text; // UTF-8
    TextEncoding encoding = TextEncoding::Utf8;
    std::string legacyName;
    std::string error;
};

std::string SwapByteOrder(std::string_view bytes) {
    std::string swapped(bytes);
    for (size_t i = 0; i + 1 < swapped.size(); i += 2)
        std::swap(swapped[i], swapped[i + 1]);
    return swapped;
}

// Turns file bytes into UTF-8 text, telling how they were encoded.
Decoded DecodeFile(std::string bytes) {
    Decoded out;
    out.encoding = DetectBom(bytes);
    std::string_view body = bytes;
    // UTF-16 without a mark shows itself by the "<?" it must start with.
    if (out.encoding == TextEncoding::Utf8 && body.starts_with(std::string_view("<\0?\0", 4)))
        out.encoding = TextEncoding::Utf16LeBom;
    else if (out.encoding == TextEncoding::Utf8 && body.starts_with(std::string_view("\0<\0?", 4)))
        out.encoding = TextEncoding::Utf16BeBom;
    else if (out.encoding != TextEncoding::Utf8)
        body.remove_prefix(out.encoding == TextEncoding::Utf8Bom ? 3 : 2);

    switch (out.encoding) {
    case TextEncoding::Utf16LeBom:
    case TextEncoding::Utf16BeBom:
        if (body.size() % 2 != 0) {
            out.error = "UTF-16 text cut off in the middle of a character";
            return out;
        }
        out.text =
            out.encoding == TextEncoding::Utf16LeBom ? Utf16LeToUtf8(body) : Utf16BeToUtf8(body);
        return out;
    case TextEncoding::Utf8Bom:
        out.text = std::string(body);
        return out;
    default:
        break;
    }

    const std::string declared = DeclaredEncoding(body);
    if (!IsLegacyChineseEncoding(declared)) {
        out.text = std::move(bytes);
        return out;
    }
    out.encoding = TextEncoding::Legacy;
    out.legacyName = Upper(declared);
    std::optional<std::string> text = LegacyToUtf8(body, out.legacyName);
    if (!text)
        out.error = "the text is not valid " + out.legacyName;
    else
        out.text = std::move(*text);
    return out;
}

class StringWriter : public pugi::xml_writer {
public:
    void write(const void* data, size_t size) override {
        text.append(static_cast<const char*>(data), size);
    }
    std::string text;
};

// What a legacy encoding can't hold is written as a character reference, which any parser
// reads back as the character itself.
std::string CharacterReference(char32_t cp) {
    return "&#x" + Hex(cp, 4) + ";";
}

} // namespace

XmlDocument::XmlDocument() = default;
XmlDocument::~XmlDocument() = default;

bool XmlDocument::Fail(std::string message) {
    m_doc.reset();
    m_encoding = TextEncoding::Utf8;
    m_legacyName.clear();
    m_lastError = std::move(message);
    return false;
}

bool XmlDocument::Parse(std::string_view utf8, TextEncoding encoding,
                        const std::string& legacyName) {
    m_doc.reset();
    if (std::string error = CheckCharacters(utf8); !error.empty())
        return Fail(std::move(error));
    const pugi::xml_parse_result result =
        m_doc.load_buffer(utf8.data(), utf8.size(), kParseOptions, pugi::encoding_utf8);
    if (!result)
        return Fail(result.description() + AtOffset(static_cast<size_t>(result.offset)));
    if (std::string error = CheckTopLevel(m_doc, utf8); !error.empty())
        return Fail(std::move(error));
    m_encoding = encoding;
    m_legacyName = legacyName;
    m_lastError.clear();
    return true;
}

bool XmlDocument::Load(const CString& path) {
    const std::string where = ToUtf8(path);
    std::optional<std::string> bytes = ReadFileBytes(path);
    if (!bytes)
        return Fail(where + ": the file can't be read");
    Decoded decoded = DecodeFile(std::move(*bytes));
    if (!decoded.error.empty())
        return Fail(where + ": " + decoded.error);
    if (!Parse(decoded.text, decoded.encoding, decoded.legacyName))
        return Fail(where + ": " + m_lastError);
    return true;
}

bool XmlDocument::LoadString(const std::string& utf8) {
    std::string_view text = utf8;
    TextEncoding encoding = TextEncoding::Utf8;
    if (DetectBom(text) == TextEncoding::Utf8Bom) {
        text.remove_prefix(3);
        encoding = TextEncoding::Utf8Bom;
    }
    return Parse(text, encoding, {});
}

std::string XmlDocument::ToUtf8String() const {
    StringWriter writer;
    // The declaration is written only when the document holds one.
    m_doc.save(writer, kIndent, pugi::format_indent | pugi::format_no_declaration,
               pugi::encoding_utf8);
    return std::move(writer.text);
}

bool XmlDocument::Save(const CString& path) const {
    TextEncoding encoding = m_encoding;
    std::string legacyName = m_legacyName;
    // A plain UTF-8 document whose declaration names a legacy encoding is written in it, so
    // that the bytes always agree with the declaration.
    if (encoding == TextEncoding::Utf8) {
        const std::string declared = DeclaredEncoding(m_doc);
        if (IsLegacyChineseEncoding(declared)) {
            encoding = TextEncoding::Legacy;
            legacyName = Upper(declared);
        }
    }

    const std::string text = ToUtf8String();
    std::string bytes;
    switch (encoding) {
    case TextEncoding::Utf8:
        bytes = text;
        break;
    case TextEncoding::Utf8Bom:
        bytes = "\xEF\xBB\xBF" + text;
        break;
    case TextEncoding::Utf16LeBom:
        bytes = "\xFF\xFE" + Utf8ToUtf16Le(text);
        break;
    case TextEncoding::Utf16BeBom:
        bytes = "\xFE\xFF" + SwapByteOrder(Utf8ToUtf16Le(text));
        break;
    case TextEncoding::Legacy: {
        std::optional<std::string> encoded = Utf8ToLegacy(text, legacyName, CharacterReference);
        if (!encoded)
            return false;
        bytes = std::move(*encoded);
        break;
    }
    }
    return WriteFileAtomically(path, bytes);
}

XmlNode XmlDocument::DocumentElement() const {
    return m_doc.document_element();
}
