#include "xml/XmlSplice.h"

#include <algorithm>
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

// Passes what pugixml prints on to a sink as it comes.
class SinkWriter : public pugi::xml_writer {
public:
    explicit SinkWriter(const SpliceSink& out) : m_out(out) {}
    void write(const void* data, size_t size) override {
        m_out(std::string_view(static_cast<const char*>(data), size));
    }

private:
    const SpliceSink& m_out;
};

class TextSource : public SpliceSource {
public:
    explicit TextSource(std::string_view text) : m_text(text) {}
    std::uint64_t Size() const override { return m_text.size(); }
    void Copy(std::uint64_t begin, std::uint64_t end, const SpliceSink& out) override {
        out(m_text.substr(begin, end - begin));
    }
    bool Peek(std::uint64_t offset, std::size_t size, char* into) override {
        if (offset > m_text.size() || size > m_text.size() - offset)
            return false;
        m_text.copy(into, size, offset);
        return true;
    }

private:
    std::string_view m_text;
};

// Where the run of blanks that ends at `end` begins, not before `floor`. The source is read
// backwards a block at a time: runs are short, the text may be long.
std::uint64_t BlanksFrom(SpliceSource& source, std::uint64_t end, std::uint64_t floor) {
    char block[4096];
    while (end > floor) {
        const std::uint64_t from = end - std::min<std::uint64_t>(end - floor, sizeof block);
        const auto size = static_cast<std::size_t>(end - from);
        if (!source.Peek(from, size, block))
            return end; // what can't be read is kept; the source reports its own failure
        std::size_t at = size;
        while (at > 0 && IsBlank(block[at - 1]))
            --at;
        if (at > 0)
            return from + at;
        end = from;
    }
    return floor;
}

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

void SpliceDocument(SpliceSource& source, const XmlLayout& layout, const XmlTopChild* cut,
                    std::string_view startTag, pugi::xml_node appended, const SpliceSink& out) {
    const std::uint64_t contentBegin = layout.rootStartTag.end;
    const std::uint64_t contentEnd = layout.rootEndTag.begin;
    std::uint64_t firstEnd = contentEnd;
    std::uint64_t secondBegin = contentEnd;
    if (cut) {
        firstEnd = BlanksFrom(source, cut->span.begin, contentBegin);
        secondBegin = cut->span.end;
    }
    const std::uint64_t secondEnd = BlanksFrom(source, contentEnd, secondBegin);
    if (secondEnd == secondBegin)
        firstEnd = BlanksFrom(source, firstEnd, contentBegin);

    source.Copy(0, layout.rootStartTag.begin, out);
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
    source.Copy(contentBegin, firstEnd, out);
    source.Copy(secondBegin, secondEnd, out);
    out("\n");
    SinkWriter writer(out);
    appended.print(writer, "  ", pugi::format_indent, pugi::encoding_utf8, 1);
    if (layout.SelfClosed()) {
        out("</");
        out(layout.rootName);
        out(">");
    } else {
        source.Copy(layout.rootEndTag.begin, layout.rootEndTag.end, out);
    }
    source.Copy(layout.rootEndTag.end, source.Size(), out);
}

void SpliceDocument(std::string_view text, const XmlLayout& layout, const XmlTopChild* cut,
                    std::string_view startTag, pugi::xml_node appended, const SpliceSink& out) {
    TextSource source(text);
    SpliceDocument(source, layout, cut, startTag, appended, out);
}
