#pragma once
// Rewrites a document in place of its text: one child of the document element replaced by a
// new element, an attribute of the document element set, every other byte kept as it was.
// The text is the one an XmlParser laid out; it comes from a string or, piece by piece, from
// wherever a SpliceSource reads it.

#include "xml/XmlParser.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

using SpliceSink = std::function<void(std::string_view)>;

// The laid-out text a splice keeps bytes from.
class SpliceSource {
public:
    virtual ~SpliceSource() = default;
    virtual std::uint64_t Size() const = 0;
    // Hands `out` the bytes [begin, end); successive calls ask for later ranges only.
    virtual void Copy(std::uint64_t begin, std::uint64_t end, const SpliceSink& out) = 0;
    // Fills `into` with the `size` bytes at `offset`, out of turn; false when it can't.
    virtual bool Peek(std::uint64_t offset, std::size_t size, char* into) = 0;
};

// The start tag with the attribute set to the value (escaped here): an attribute of that name
// keeps its place and quotes, a new one goes last.
std::string WithAttribute(std::string_view startTag, std::string_view name, std::string_view value);

// Hands `out` the text of a new document, piece by piece: the document element's start tag
// is `startTag`; its child `cut` (when not null) is gone together with the blanks before it;
// blanks before the end tag give way to `appended`, serialised as it stands one level down
// (indented by two blanks a level), last on a line of its own.
void SpliceDocument(SpliceSource& source, const XmlLayout& layout, const XmlTopChild* cut,
                    std::string_view startTag, pugi::xml_node appended, const SpliceSink& out);
void SpliceDocument(std::string_view text, const XmlLayout& layout, const XmlTopChild* cut,
                    std::string_view startTag, pugi::xml_node appended, const SpliceSink& out);
