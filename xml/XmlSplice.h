#pragma once
// Rewrites a document in place of its text: one child of the document element replaced by new
// text, an attribute of the document element set, every other byte kept as it was. The text
// is the one an XmlParser laid out.

#include "xml/XmlParser.h"

#include <functional>
#include <string>
#include <string_view>

// The start tag with the attribute set to the value (escaped here): an attribute of that name
// keeps its place and quotes, a new one goes last.
std::string WithAttribute(std::string_view startTag, std::string_view name, std::string_view value);

// The element serialised as it stands `depth` levels down: indented by two blanks a level,
// ending with a line break.
std::string ElementText(pugi::xml_node element, unsigned depth);

// Hands `out` the text of a new document, piece by piece: the document element's start tag
// is `startTag`; its child `cut` (when not null) is gone together with the blanks before it;
// blanks before the end tag give way to `appended`, which goes last on a line of its own.
void SpliceDocument(std::string_view text, const XmlLayout& layout, const XmlTopChild* cut,
                    std::string_view startTag, std::string_view appended,
                    const std::function<void(std::string_view)>& out);
