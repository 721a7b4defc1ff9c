#include "xml/XmlDocument.h"

#include "platform/FileSystem.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstdio>
#include <iterator>
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

bool IsXmlChar(std::uint32_t cp) {
    return cp == 0x9 || cp == 0xA || cp == 0xD || (cp >= 0x20 && cp <= 0xD7FF) ||
           (cp >= 0xE000 && cp <= 0xFFFD) || (cp >= 0x10000 && cp <= 0x10FFFF);
}

// Empty when every character reference names a character XML allows; otherwise why not. The
// parser turns "&#xFFFF;" into the character without asking, and a save would then write a
// file no parser reads. Comments, CDATA sections and processing instructions hold no
// references, only text that looks like them.
std::string CheckReferences(std::string_view text) {
    if (text.find("&#") == std::string_view::npos)
        return {};
    static constexpr std::pair<std::string_view, std::string_view> kLiteral[] = {
        {"<!--", "-->"}, {"<![CDATA[", "]]>"}, {"<?", "?>"}};
    size_t at = 0;
    while ((at = text.find_first_of("<&", at)) != std::string_view::npos) {
        const std::string_view rest = text.substr(at);
        if (rest[0] == '<') {
            size_t skip = 1;
            for (const auto& [open, close] : kLiteral) {
                if (!rest.starts_with(open))
                    continue;
                const size_t end = rest.find(close, open.size());
                if (end == std::string_view::npos)
                    return {}; // the parser reports the unclosed section
                skip = end + close.size();
                break;
            }
            at += skip;
            continue;
        }
        if (!rest.starts_with("&#")) {
            ++at;
            continue;
        }
        const bool hex = rest.size() > 2 && rest[2] == 'x';
        size_t digitsEnd = hex ? 3 : 2;
        std::uint32_t cp = 0;
        while (digitsEnd < rest.size() && rest[digitsEnd] != ';') {
            const char c = rest[digitsEnd];
            int digit = -1;
            if (c >= '0' && c <= '9')
                digit = c - '0';
            else if (hex && c >= 'a' && c <= 'f')
                digit = c - 'a' + 10;
            else if (hex && c >= 'A' && c <= 'F')
                digit = c - 'A' + 10;
            if (digit < 0)
                return "malformed character reference" + AtOffset(at);
            cp = std::min<std::uint32_t>(cp * (hex ? 16 : 10) + static_cast<unsigned>(digit),
                                         0x110000);
            ++digitsEnd;
        }
        if (digitsEnd >= rest.size() || digitsEnd == (hex ? 3u : 2u))
            return "malformed character reference" + AtOffset(at);
        if (!IsXmlChar(cp))
            return "character reference " + std::string(rest.substr(0, digitsEnd + 1)) +
                   " names a character XML does not allow" + AtOffset(at);
        at += digitsEnd + 1;
    }
    return {};
}

// Empty when no element lies deeper than kMaxXmlDepth and every comment is one XML allows;
// otherwise why not. Walked without recursion, since the point is to refuse a depth that would
// exhaust a stack. The parser takes "--" inside a comment, which a save could only write back
// changed.
std::string CheckTree(const pugi::xml_document& doc) {
    unsigned depth = 1; // of `node`: the document's children are at level 1
    pugi::xml_node node = doc.first_child();
    while (node) {
        if (node.type() == pugi::node_comment) {
            const std::string_view text = node.value();
            if (text.find("--") != std::string_view::npos || text.ends_with('-'))
                return "a comment holds \"--\" or ends with \"-\"";
        }
        if (node.first_child()) {
            node = node.first_child();
            if (++depth > kMaxXmlDepth)
                return "elements are nested deeper than " + std::to_string(kMaxXmlDepth) +
                       " levels";
            continue;
        }
        while (node && !node.next_sibling() && depth > 1) {
            node = node.parent();
            --depth;
        }
        node = node.next_sibling();
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

bool IsBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

// The XML declaration at the start of a text, read as its grammar has it: "version" first,
// then optionally "encoding", then optionally "standalone", each once and in that order. The
// load takes the encoding from here and the save writes the declaration the parser kept, and
// both must mean the same one.
struct Declaration {
    bool present = false;
    std::string encoding; // as written; empty when the declaration names none
    std::string error;    // why the declaration is malformed
};

Declaration ReadDeclaration(std::string_view text) {
    Declaration out;
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

    const Declaration declaration = ReadDeclaration(body);
    if (!declaration.error.empty()) {
        out.error = declaration.error;
        return out;
    }
    const std::string& declared = declaration.encoding;
    if (declared.empty() || Upper(declared) == "UTF-8") {
        out.text = std::move(bytes);
        return out;
    }
    if (!IsLegacyChineseEncoding(declared)) {
        out.error = "the file declares the encoding \"" + declared +
                    "\", which is not read here (UTF-8, UTF-16, GB2312, GBK and GB18030 are)";
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

// Puts another encoding name into the declaration that starts the serialised text. False
// when the text has no declaration naming an encoding.
bool UpgradeDeclaration(std::string& text, std::string_view encoding) {
    const Declaration declaration = ReadDeclaration(text);
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

XmlDocument::XmlDocument() = default;
XmlDocument::~XmlDocument() = default;

bool XmlDocument::Fail(std::string message) {
    m_doc.reset();
    m_failure = XmlLoadFailure::Malformed;
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
    if (std::string error = CheckReferences(utf8); !error.empty())
        return Fail(std::move(error));
    if (std::string error = ReadDeclaration(utf8).error; !error.empty())
        return Fail(std::move(error));
    const pugi::xml_parse_result result =
        m_doc.load_buffer(utf8.data(), utf8.size(), kParseOptions, pugi::encoding_utf8);
    if (!result)
        return Fail(result.description() + AtOffset(static_cast<size_t>(result.offset)));
    if (std::string error = CheckTopLevel(m_doc, utf8); !error.empty())
        return Fail(std::move(error));
    if (std::string error = CheckTree(m_doc); !error.empty())
        return Fail(std::move(error));
    m_encoding = encoding;
    m_legacyName = legacyName;
    m_lastError.clear();
    m_failure = XmlLoadFailure::None;
    return true;
}

bool XmlDocument::Load(const CString& path) {
    const std::string where = ToUtf8(path);
    FileBytes read = ReadRegularFile(path, kMaxXmlFileBytes);
    if (!read) {
        std::string reason = read.Reason();
        if (read.failure == ReadFailure::TooLarge)
            reason += " (more than " + std::to_string(kMaxXmlFileBytes >> 20) + " MiB)";
        Fail(where + ": " + reason);
        m_failure = read.failure == ReadFailure::Missing ? XmlLoadFailure::Missing
                                                         : XmlLoadFailure::Unreadable;
        return false;
    }
    Decoded decoded = DecodeFile(std::move(read.bytes));
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

bool XmlDocument::Save(const CString& path, std::string* why) const {
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

    std::string text = ToUtf8String();
    std::string bytes;
    switch (encoding) {
    case TextEncoding::Utf8:
        bytes = std::move(text);
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
        std::optional<std::string> encoded = Utf8ToLegacy(text, legacyName, nullptr);
        // A character the declared encoding lacks (GB2312 holds no "€") takes the file to
        // GB18030, which holds every character and reads the old bytes the same. A character
        // reference instead would be wrong where it lands in a name.
        if (!encoded && UpgradeDeclaration(text, "GB18030"))
            encoded = Utf8ToLegacy(text, "GB18030", nullptr);
        if (!encoded) {
            if (why)
                *why = "the text can't be written in " + legacyName;
            return false;
        }
        bytes = std::move(*encoded);
        break;
    }
    }
    return WriteFileAtomically(path, bytes, why);
}

XmlNode XmlDocument::DocumentElement() const {
    return m_doc.document_element();
}
