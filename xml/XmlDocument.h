#pragma once
// An XML document as the module's DOM: pugixml underneath, built by the conforming parser of
// XmlParser, plus the file encoding it was read in so that a save writes it back the same way.
// Comments, processing instructions and the document type declaration are kept as nodes;
// whitespace-only text is not; entities of the internal subset are expanded.

#include "platform/CString.h"
#include "platform/TextEncoding.h"
#include "xml/XmlParser.h"

#include <cstdint>
#include <memory>
#include <pugixml.hpp>
#include <string>
#include <string_view>

// Node and element handles. pugixml uses one handle type for both; an element handle that
// refers to a non-element node behaves as a null element (reads give "", writes raise).
using XmlNode = pugi::xml_node;

// Files larger than this are refused before they are read: real configurations are tens of
// MiB, and a broken or hostile file must not exhaust memory.
inline constexpr std::uint64_t kMaxXmlFileBytes = std::uint64_t{512} << 20;

// Why the last load failed: the file is missing, can't be read (no permission, not a regular
// file, too large), or was read but is not a document we accept.
enum class XmlLoadFailure { None, Missing, Unreadable, Malformed };
using XmlElement = pugi::xml_node;

class XmlDocument {
public:
    XmlDocument();
    ~XmlDocument();
    XmlDocument(const XmlDocument&) = delete;
    XmlDocument& operator=(const XmlDocument&) = delete;

    // Parses the file. UTF-8 with or without BOM, UTF-16 with BOM, and the legacy encodings
    // named by the declaration (GB2312, GBK, GB18030) are understood; a declaration naming any
    // other is refused. On failure (missing, unreadable, beyond the limits above, not
    // well-formed, a reference to a character XML forbids, no or several document elements)
    // the document is left empty and the result is false; LastError() and LoadFailure() say
    // why.
    bool Load(const CString& path);
    // Parses UTF-8 text (for tests and in-memory use); same rules as Load. The declaration's
    // encoding is not applied to the text, but a legacy one still decides how Save writes.
    bool LoadString(const std::string& utf8);
    // Writes the document indented, in the encoding it was read in (UTF-8 for a new document,
    // unless its declaration names a legacy one), replacing the file atomically. A legacy file
    // holding a character its encoding lacks is written in GB18030, its declaration saying so.
    // False when the file can't be written; `why` (when given) then says why.
    bool Save(const CString& path, std::string* why = nullptr) const;
    // The document serialised as UTF-8 (indented, declaration as held).
    std::string ToUtf8String() const;

    pugi::xml_document& Doc() { return m_doc; }
    const pugi::xml_document& Doc() const { return m_doc; }
    // The document element, or a null node.
    XmlNode DocumentElement() const;

    TextEncoding Encoding() const { return m_encoding; }
    const std::string& LegacyName() const { return m_legacyName; }
    const std::string& LastError() const { return m_lastError; }
    XmlLoadFailure LoadFailure() const { return m_failure; }

private:
    // Parses text already decoded to UTF-8 and, on success, records how the file was encoded.
    bool Parse(std::string_view utf8, TextEncoding encoding, const std::string& legacyName);
    bool Fail(std::string message);

    pugi::xml_document m_doc;
    TextEncoding m_encoding = TextEncoding::Utf8;
    std::string m_legacyName; // iconv name when m_encoding is Legacy
    std::string m_lastError;
    XmlLoadFailure m_failure = XmlLoadFailure::None;
};

using XmlDocPtr = std::shared_ptr<XmlDocument>;
