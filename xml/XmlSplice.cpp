#include "xml/XmlSplice.h"

#include <cstdio>

namespace {

bool IsBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

std::string EscapeAttribute(std::string_view value) {
    std::string out;
    out.reserve(value.size());
    for (const char c : value) {
        switch (c) {
        case '&':
            out += "&amp;";
            break;
        case '<':
            out += "&lt;";
            break;
        case '>':
            out += "&gt;";
            break;
        case '"':
            out += "&quot;";
            break;
        case '\t':
        case '\n':
        case '\r': { // kept as characters, which a parser would turn into blanks
            char reference[8];
            std::snprintf(reference, sizeof reference, "&#%d;", c);
            out += reference;
            break;
        }
        default:
            out += c;
        }
    }
    return out;
}

class StringWriter : public pugi::xml_writer {
public:
    void write(const void* data, size_t size) override {
        text.append(static_cast<const char*>(data), size);
    }
    std::string text;
};

} // namespace

std::string WithAttribute(std::string_view startTag, std::string_view name,
                          std::string_view value) {
    // The tag is well-formed: "<" name, then blank-separated name="value" pairs, then ">" or
    // "/>". Values hold no quote of their own kind and no "<".
    size_t at = 1;
    while (at < startTag.size() && !IsBlank(startTag[at]) && startTag[at] != '>' &&
           startTag[at] != '/')
        ++at;
    for (;;) {
        while (at < startTag.size() && IsBlank(startTag[at]))
            ++at;
        if (at >= startTag.size() || startTag[at] == '>' || startTag[at] == '/')
            break;
        const size_t nameBegin = at;
        while (at < startTag.size() && !IsBlank(startTag[at]) && startTag[at] != '=')
            ++at;
        const std::string_view attribute = startTag.substr(nameBegin, at - nameBegin);
        const size_t open = startTag.find_first_of("\"'", at);
        const size_t close = open == std::string_view::npos
                                 ? std::string_view::npos
                                 : startTag.find(startTag[open], open + 1);
        if (close == std::string_view::npos)
            break;
        if (attribute == name)
            return std::string(startTag.substr(0, open + 1)) + EscapeAttribute(value) +
                   std::string(startTag.substr(close));
        at = close + 1;
    }
    // Blanks before the end of the tag stay where they were, after the new attribute.
    size_t end = startTag.ends_with("/>") ? startTag.size() - 2 : startTag.size() - 1;
    while (end > 0 && IsBlank(startTag[end - 1]))
        --end;
    return std::string(startTag.substr(0, end)) + " " + std::string(name) + "=\"" +
           EscapeAttribute(value) + "\"" + std::string(startTag.substr(end));
}

std::string ElementText(pugi::xml_node element, unsigned depth) {
    StringWriter writer;
    element.print(writer, "  ", pugi::format_indent, pugi::encoding_utf8, depth);
    return std::move(writer.text);
}

void SpliceDocument(std::string_view text, const XmlLayout& layout, const XmlTopChild* cut,
                    std::string_view startTag, std::string_view appended,
                    const std::function<void(std::string_view)>& out) {
    const size_t contentBegin = layout.rootStartTag.end;
    const size_t contentEnd = layout.rootEndTag.begin;
    size_t firstEnd = contentEnd;
    size_t secondBegin = contentEnd;
    if (cut) {
        firstEnd = cut->span.begin;
        while (firstEnd > contentBegin && IsBlank(text[firstEnd - 1]))
            --firstEnd;
        secondBegin = cut->span.end;
    }
    size_t secondEnd = contentEnd;
    while (secondEnd > secondBegin && IsBlank(text[secondEnd - 1]))
        --secondEnd;
    if (secondEnd == secondBegin)
        while (firstEnd > contentBegin && IsBlank(text[firstEnd - 1]))
            --firstEnd;

    out(text.substr(0, layout.rootStartTag.begin));
    if (layout.SelfClosed()) {
        // "<root .../>" opens instead, and its end tag comes with the new child.
        std::string_view open = startTag.substr(0, startTag.size() - 2);
        while (!open.empty() && IsBlank(open.back()))
            open.remove_suffix(1);
        out(open);
        out(">");
    } else {
        out(startTag);
    }
    out(text.substr(contentBegin, firstEnd - contentBegin));
    out(text.substr(secondBegin, secondEnd - secondBegin));
    out("\n");
    out(appended);
    if (layout.SelfClosed()) {
        out("</");
        out(layout.rootName);
        out(">");
    } else {
        out(text.substr(layout.rootEndTag.begin, layout.rootEndTag.end - layout.rootEndTag.begin));
    }
    out(text.substr(layout.rootEndTag.end));
}
