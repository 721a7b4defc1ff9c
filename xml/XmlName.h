#pragma once
// The names the module may give elements and attributes in its files.

#include <cstddef>
#include <string_view>

// Whether utf8 is an XML 1.0 (fifth edition) Name without a colon. A colon would make it a
// prefixed name, which needs a namespace declaration the module's files never carry. Names
// starting with "xml" are reserved for later standards but well-formed, so they pass. Text that
// is not well-formed UTF-8 is no name.
bool IsXmlName(std::string_view utf8);

// Where utf8 stops being such a name: the byte offset of the first character that can't stand
// where it does, or of the first byte of a malformed UTF-8 sequence; 0 for an empty text;
// std::string_view::npos when it is a name.
std::size_t XmlNameFaultAt(std::string_view utf8);
