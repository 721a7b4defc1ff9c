#include "xml/XmlName.h"

#include "platform/CString.h"

namespace {

bool IsNameStartChar(char32_t c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' ||
           (c >= 0xC0 && c <= 0xD6) || (c >= 0xD8 && c <= 0xF6) || (c >= 0xF8 && c <= 0x2FF) ||
           (c >= 0x370 && c <= 0x37D) || (c >= 0x37F && c <= 0x1FFF) ||
           (c >= 0x200C && c <= 0x200D) || (c >= 0x2070 && c <= 0x218F) ||
           (c >= 0x2C00 && c <= 0x2FEF) || (c >= 0x3001 && c <= 0xD7FF) ||
           (c >= 0xF900 && c <= 0xFDCF) || (c >= 0xFDF0 && c <= 0xFFFD) ||
           (c >= 0x10000 && c <= 0xEFFFF);
}

bool IsNameChar(char32_t c) {
    return IsNameStartChar(c) || c == '-' || c == '.' || (c >= '0' && c <= '9') || c == 0xB7 ||
           (c >= 0x300 && c <= 0x36F) || (c >= 0x203F && c <= 0x2040);
}

} // namespace

std::size_t XmlNameFaultAt(std::string_view utf8) {
    if (utf8.empty())
        return 0;
    for (std::size_t at = 0; at < utf8.size();) {
        char32_t c = 0;
        const std::size_t length = DecodeUtf8(utf8.substr(at), c);
        if (length == 0 || !(at == 0 ? IsNameStartChar(c) : IsNameChar(c)))
            return at;
        at += length;
    }
    return std::string_view::npos;
}

bool IsXmlName(std::string_view utf8) {
    return XmlNameFaultAt(utf8) == std::string_view::npos;
}
