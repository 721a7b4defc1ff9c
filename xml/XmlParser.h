#pragma once
// A conforming XML parse (expat underneath) that builds a pugixml DOM of the whole document or
// of one part of it, and records where the document element and its child elements lie in the
// text, so that a writer can keep the bytes of the parts it did not build.
//
// Everything XML calls a well-formedness error is refused: an attribute given twice, a bare
// "&", "<" in an attribute value, a reference to an undeclared entity, an undeclared namespace
// prefix, forbidden characters and character references, "--" in a comment, text or a second
// element outside the document element. Entities declared in the document's internal subset
// are expanded, as a DOM expands them; nothing is ever read from outside the text.

#include <pugixml.hpp>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

// Deeper nesting is refused: real configurations are about ten levels deep, and code that
// walks a DOM must not run out of stack on a hostile file.
inline constexpr unsigned kMaxXmlDepth = 256;

// Byte offsets into the text given to the parser: [begin, end).
struct XmlSpan {
    std::uint64_t begin = 0;
    std::uint64_t end = 0;
};

struct XmlTopChild {
    XmlSpan span;     // from its "<" to the end of its end tag
    std::string name; // its "name" attribute (entities expanded), "" when it has none
    // Written in the text itself, not produced by an entity reference: only then does the
    // span hold it.
    bool inText = true;
};

// Where the document element and its element children lie.
struct XmlLayout {
    std::string rootName;
    XmlSpan rootStartTag; // "<root ...>", or "<root .../>" when the element is empty
    XmlSpan rootEndTag;   // "</root>"; empty, at rootStartTag.end, for "<root .../>"
    std::vector<XmlTopChild> children;
    bool SelfClosed() const { return rootEndTag.begin == rootEndTag.end; }
};

class XmlParser {
public:
    enum class Build {
        Everything, // the DOM of the whole document
        OneChild,   // the document element with its attributes and, of its children, only the
                    // first element whose "name" attribute is the name given
        Nothing,    // the check and the layout only
    };

    XmlParser(pugi::xml_document& dom, Build build, std::string childName = {});
    ~XmlParser();
    XmlParser(const XmlParser&) = delete;
    XmlParser& operator=(const XmlParser&) = delete;

    // Parses the next piece of UTF-8 text (whatever its declaration names); `last` marks the
    // final piece. False once the text is found not to be a document we accept; Error() then
    // says why and where, and nothing more is parsed.
    bool Feed(std::string_view text, bool last);
    // Hands expat's own buffer of `size` bytes to fill, then parses what was put there: a
    // file read into it needs no copy. One final piece is cheapest; between pieces expat
    // counts lines over what it parsed. Null when expat can't give the buffer.
    char* Buffer(std::size_t size);
    bool ParseBuffer(std::size_t filled, bool last);
    // Parses a whole text in one go; a document type declaration is then kept in the DOM too.
    bool ParseWhole(std::string_view text);

    const std::string& Error() const;
    const XmlLayout& Layout() const;

private:
    struct State;
    std::unique_ptr<State> m_state;
};
