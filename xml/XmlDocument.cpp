#include "xml/XmlDocument.h"

#include "platform/FileSystem.h"

#include "xml/XmlEncoding.h"
#include "xml/XmlParser.h"

#include <cctype>
#include <optional>
#include <utility>

namespace {

constexpr const char* kIndent = "  ";

std::string DeclaredEncoding(const pugi::xml_document& doc) {
    for (pugi::xml_node node : doc.children())
        if (node.type() == pugi::node_declaration)
            return node.attribute("encoding").value();
    return {};
}

class StringWriter : public pugi::xml_writer {
public:
    void write(const void* data, size_t size) override {
        text.append(static_cast<const char*>(data), size);
    }
    std::string text;
};

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
    XmlParser parser(m_doc, XmlParser::Build::Everything);
    if (!parser.ParseWhole(utf8))
        return Fail(parser.Error());
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
    const XmlFileEncoding how = SniffXmlEncoding(std::string_view(read.bytes).substr(0, 4096));
    std::string why;
    const std::optional<std::string> text = DecodeXmlBytes(std::move(read.bytes), how, &why);
    if (!text)
        return Fail(where + ": " + why);
    if (!Parse(*text, how.encoding, how.legacyName))
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
            legacyName = declared;
            for (char& ch : legacyName)
                ch = static_cast<char>(std::toupper(static_cast<unsigned char>(ch)));
        }
    }

    std::optional<std::string> bytes = EncodeXmlText(ToUtf8String(), encoding, legacyName, why);
    if (!bytes)
        return false;
    return WriteFileAtomically(path, *bytes, why);
}

XmlNode XmlDocument::DocumentElement() const {
    return m_doc.document_element();
}
