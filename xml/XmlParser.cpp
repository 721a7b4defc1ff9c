#include "xml/XmlParser.h"

#include <expat.h>

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <sys/mman.h>
#include <utility>

namespace {

// Separates namespace, local name and prefix in the names expat reports; no XML name or
// namespace name can hold it.
constexpr char kNsSeparator = '\x01';

// The name as written ("p:local", "local") from expat's "uri<sep>local[<sep>prefix]".
std::string QualifiedName(const char* reported) {
    const std::string_view name = reported;
    const size_t first = name.find(kNsSeparator);
    if (first == std::string_view::npos)
        return std::string(name);
    const size_t second = name.find(kNsSeparator, first + 1);
    if (second == std::string_view::npos) // in a default namespace: no prefix
        return std::string(name.substr(first + 1));
    return std::string(name.substr(second + 1)) + ":" +
           std::string(name.substr(first + 1, second - first - 1));
}

// As QualifiedName, without a copy for a name in no namespace, which most are.
const char* WrittenName(const char* reported, std::string& scratch) {
    if (!std::strchr(reported, kNsSeparator))
        return reported;
    scratch = QualifiedName(reported);
    return scratch.c_str();
}

bool IsBlank(std::string_view text) {
    return std::all_of(text.begin(), text.end(),
                       [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; });
}

// Expat's memory, with its buffer on huge pages: a file is read whole into that buffer, and
// handing out tens of megabytes in 4 KiB pages, each a fault that clears it, costs as much
// system time as a tenth of the parse. Every block carries a header saying how it was got.
namespace expat_memory {

struct alignas(std::max_align_t) Header {
    std::size_t size;   // what was asked for
    std::size_t mapped; // the length of the mapping; 0 for a block of malloc
};
constexpr std::size_t kMapFrom = std::size_t{4} << 20;
constexpr std::size_t kHugePage = std::size_t{2} << 20;

void* Allocate(std::size_t size) {
    if (size > SIZE_MAX - kHugePage - sizeof(Header))
        return nullptr;
    void* block = nullptr;
    std::size_t mapped = 0;
    if (size >= kMapFrom) {
        mapped = (size + sizeof(Header) + kHugePage - 1) / kHugePage * kHugePage;
        block = ::mmap(nullptr, mapped, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (block == MAP_FAILED)
            return nullptr;
        ::madvise(block, mapped, MADV_HUGEPAGE); // advice only: without it, small pages
    } else {
        block = std::malloc(sizeof(Header) + size);
        if (!block)
            return nullptr;
    }
    return new (block) Header{size, mapped} + 1;
}

void Free(void* pointer) {
    if (!pointer)
        return;
    Header* header = static_cast<Header*>(pointer) - 1;
    if (header->mapped)
        ::munmap(header, header->mapped);
    else
        std::free(header);
}

void* Reallocate(void* pointer, std::size_t size) {
    if (!pointer)
        return Allocate(size);
    const Header* header = static_cast<Header*>(pointer) - 1;
    void* moved = Allocate(size);
    if (moved) {
        std::memcpy(moved, pointer, std::min(size, header->size));
        Free(pointer);
    }
    return moved;
}

const XML_Memory_Handling_Suite kSuite = {&Allocate, &Reallocate, &Free};

} // namespace expat_memory

} // namespace

struct XmlParser::State {
    State(pugi::xml_document& dom, Build build, std::string childName)
        : dom(dom), build(build), childName(std::move(childName)),
          parser(XML_ParserCreate_MM("UTF-8", &expat_memory::kSuite, &kNsSeparator)) {
        if (!parser)
            return;
        XML_SetUserData(parser, this);
        XML_SetReturnNSTriplet(parser, XML_TRUE);
        XML_SetElementHandler(parser, &State::OnStart, &State::OnEnd);
        XML_SetSkippedEntityHandler(parser, &State::OnSkippedEntity);
        if (build == Build::Everything) {
            XML_SetXmlDeclHandler(parser, &State::OnDeclaration);
            XML_SetDoctypeDeclHandler(parser, &State::OnDoctypeStart, &State::OnDoctypeEnd);
            Building(dom);
        }
        if (build != Build::Nothing)
            XML_SetNamespaceDeclHandler(parser, &State::OnNamespace, nullptr);
    }
    ~State() {
        if (parser)
            XML_ParserFree(parser);
    }

    // Where new nodes go; null while the parse is outside what is built. The text, comment
    // and section handlers are set only meanwhile, so that the parts not built cost expat
    // no calls.
    void Building(pugi::xml_node into) {
        const bool was = static_cast<bool>(current);
        current = into;
        if (was == static_cast<bool>(into))
            return;
        const bool on = static_cast<bool>(into);
        XML_SetCharacterDataHandler(parser, on ? &State::OnText : nullptr);
        XML_SetCommentHandler(parser, on ? &State::OnComment : nullptr);
        XML_SetProcessingInstructionHandler(parser, on ? &State::OnInstruction : nullptr);
        XML_SetCdataSectionHandler(parser, on ? &State::OnCdataStart : nullptr,
                                   on ? &State::OnCdataEnd : nullptr);
    }

    void Stop(std::string why) {
        if (error.empty())
            error = std::move(why) + Where();
        XML_StopParser(parser, XML_FALSE);
    }

    std::string Where() const {
        return " at line " + std::to_string(XML_GetCurrentLineNumber(parser)) + ", column " +
               std::to_string(XML_GetCurrentColumnNumber(parser) + 1) + " (offset " +
               std::to_string(XML_GetCurrentByteIndex(parser)) + ")";
    }

    bool Finish(XML_Status status) {
        if (status == XML_STATUS_ERROR && error.empty())
            error = std::string(XML_ErrorString(XML_GetErrorCode(parser))) + Where();
        failed = failed || status == XML_STATUS_ERROR;
        return !failed;
    }

    // Text is gathered until the next node: expat hands it over in pieces.
    void FlushText() {
        if (!text.empty() && (inCdata || !IsBlank(text)))
            current.append_child(inCdata ? pugi::node_cdata : pugi::node_pcdata)
                .set_value(text.c_str());
        text.clear();
    }

    static State& Of(void* data) { return *static_cast<State*>(data); }

    static void OnStart(void* data, const XML_Char* name, const XML_Char** attributes) {
        State& s = Of(data);
        if (++s.depth > kMaxXmlDepth)
            return s.Stop("elements are nested deeper than " + std::to_string(kMaxXmlDepth) +
                          " levels");
        const auto at = static_cast<std::uint64_t>(XML_GetCurrentByteIndex(s.parser));
        const auto count = static_cast<std::uint64_t>(XML_GetCurrentByteCount(s.parser));
        if (s.depth == 1) {
            s.layout.rootName = QualifiedName(name);
            s.layout.rootStartTag = {at, at + count};
            if (s.build == Build::OneChild)
                s.Building(s.dom);
        } else if (s.depth == 2) {
            XmlTopChild child;
            child.span = {at, at + count};
            child.inText = count > 0; // a start tag an entity produced has no bytes of its own
            for (const XML_Char** a = attributes; *a; a += 2)
                if (std::string_view(a[0]) == "name")
                    child.name = a[1];
            if (s.build == Build::OneChild && !s.chosen && child.name == s.childName) {
                s.chosen = true;
                s.Building(s.root);
                s.buildTop = 2;
            }
            s.layout.children.push_back(std::move(child));
        }
        if (s.current)
            s.AddElement(name, attributes);
        else
            s.namespaces.clear(); // declared on an element that is not built
    }

    void AddElement(const XML_Char* name, const XML_Char** attributes) {
        FlushText();
        pugi::xml_node element = current.append_child(pugi::node_element);
        element.set_name(WrittenName(name, scratch));
        for (const auto& [prefix, uri] : namespaces)
            element.append_attribute(prefix.empty() ? "xmlns" : ("xmlns:" + prefix).c_str())
                .set_value(uri.c_str());
        namespaces.clear();
        for (const XML_Char** a = attributes; *a; a += 2)
            element.append_attribute(WrittenName(a[0], scratch)).set_value(a[1]);
        if (depth == 1)
            root = element;
        current = element;
        // In OneChild, the document element's children are built only from the chosen one.
        if (build == Build::OneChild && depth == 1)
            Building(pugi::xml_node());
    }

    static void OnEnd(void* data, const XML_Char*) {
        State& s = Of(data);
        const auto at = static_cast<std::uint64_t>(XML_GetCurrentByteIndex(s.parser));
        const auto count = static_cast<std::uint64_t>(XML_GetCurrentByteCount(s.parser));
        if (s.current) {
            s.FlushText();
            if (s.build == Build::OneChild && s.depth == s.buildTop)
                s.Building(pugi::xml_node());
            else
                s.current = s.current.parent();
        }
        // An empty-element tag ends with no bytes of its own: its span is its start tag.
        if (s.depth == 2 && count > 0 && s.layout.children.back().inText)
            s.layout.children.back().span.end = at + count;
        else if (s.depth == 1)
            s.layout.rootEndTag =
                count > 0 ? XmlSpan{at, at + count}
                          : XmlSpan{s.layout.rootStartTag.end, s.layout.rootStartTag.end};
        --s.depth;
    }

    static void OnText(void* data, const XML_Char* text, int length) {
        Of(data).text.append(text, static_cast<size_t>(length));
    }

    static void OnComment(void* data, const XML_Char* text) {
        State& s = Of(data);
        s.FlushText();
        s.current.append_child(pugi::node_comment).set_value(text);
    }

    static void OnInstruction(void* data, const XML_Char* target, const XML_Char* value) {
        State& s = Of(data);
        s.FlushText();
        pugi::xml_node node = s.current.append_child(pugi::node_pi);
        node.set_name(target);
        node.set_value(value);
    }

    static void OnCdataStart(void* data) {
        State& s = Of(data);
        s.FlushText();
        s.inCdata = true;
    }

    static void OnCdataEnd(void* data) {
        State& s = Of(data);
        s.FlushText();
        s.inCdata = false;
    }

    static void OnNamespace(void* data, const XML_Char* prefix, const XML_Char* uri) {
        Of(data).namespaces.emplace_back(prefix ? prefix : "", uri ? uri : "");
    }

    static void OnDeclaration(void* data, const XML_Char* version, const XML_Char* encoding,
                              int standalone) {
        State& s = Of(data);
        if (!version) // a text declaration, which only external entities have
            return;
        pugi::xml_node node = s.dom.append_child(pugi::node_declaration);
        node.append_attribute("version").set_value(version);
        if (encoding)
            node.append_attribute("encoding").set_value(encoding);
        if (standalone >= 0)
            node.append_attribute("standalone").set_value(standalone ? "yes" : "no");
    }

    static void OnDoctypeStart(void* data, const XML_Char*, const XML_Char*, const XML_Char*, int) {
        State& s = Of(data);
        s.doctypeAt = static_cast<std::uint64_t>(XML_GetCurrentByteIndex(s.parser));
    }

    // The declaration is kept as written, so that a save keeps the entities it declares.
    // expat reports its events inside the declaration (at "[" and "]"), so its ends are
    // found in the text around them.
    static void OnDoctypeEnd(void* data) {
        State& s = Of(data);
        constexpr std::string_view kOpen = "<!DOCTYPE";
        const auto at = static_cast<std::uint64_t>(XML_GetCurrentByteIndex(s.parser));
        if (s.whole.empty() || at > s.whole.size())
            return;
        const size_t begin = s.whole.rfind(kOpen, s.doctypeAt);
        const size_t close = s.whole.find('>', at);
        if (begin == std::string_view::npos || close == std::string_view::npos)
            return;
        // pugixml writes the blank after the keyword itself.
        const size_t from = s.whole.find_first_not_of(" \t\r\n", begin + kOpen.size());
        const std::string_view inner = s.whole.substr(from, close - from);
        s.dom.append_child(pugi::node_doctype).set_value(std::string(inner).c_str());
    }

    // A reference to an entity declared where nothing is read (an external subset): what it
    // stands for is unknown, and a DOM without it would lose text on the next save.
    static void OnSkippedEntity(void* data, const XML_Char* name, int) {
        Of(data).Stop(std::string("the entity \"") + name +
                      "\" is declared outside the file, where it is not read");
    }

    pugi::xml_document& dom;
    Build build;
    std::string childName;
    XML_Parser parser;
    pugi::xml_node current; // where nodes are being built, or null
    pugi::xml_node root;    // the document element once built
    unsigned depth = 0;
    unsigned buildTop = 0; // in OneChild, the depth of the chosen child while it is built
    bool chosen = false;
    bool inCdata = false;
    bool failed = false;
    std::string text;
    std::string scratch; // a name rewritten for the DOM
    std::vector<std::pair<std::string, std::string>> namespaces;
    std::uint64_t doctypeAt = 0;
    std::string_view whole;
    XmlLayout layout;
    std::string error;
};

XmlParser::XmlParser(pugi::xml_document& dom, Build build, std::string childName)
    : m_state(std::make_unique<State>(dom, build, std::move(childName))) {
    if (!m_state->parser) {
        m_state->error = "out of memory for the XML parser";
        m_state->failed = true;
    }
}

XmlParser::~XmlParser() = default;

bool XmlParser::Feed(std::string_view text, bool last) {
    State& s = *m_state;
    do {
        if (s.failed)
            return false;
        const size_t piece = std::min<size_t>(text.size(), INT_MAX / 2);
        const bool final = last && piece == text.size();
        s.Finish(XML_Parse(s.parser, text.data(), static_cast<int>(piece), final));
        text.remove_prefix(piece);
    } while (!text.empty());
    return !s.failed;
}

char* XmlParser::Buffer(std::size_t size) {
    if (m_state->failed || size > INT_MAX)
        return nullptr;
    return static_cast<char*>(XML_GetBuffer(m_state->parser, static_cast<int>(size)));
}

bool XmlParser::ParseBuffer(std::size_t filled, bool last) {
    State& s = *m_state;
    if (s.failed)
        return false;
    return s.Finish(XML_ParseBuffer(s.parser, static_cast<int>(filled), last));
}

bool XmlParser::ParseWhole(std::string_view text) {
    m_state->whole = text;
    const bool ok = Feed(text, true);
    m_state->whole = {};
    return ok;
}

const std::string& XmlParser::Error() const {
    return m_state->error;
}

const XmlLayout& XmlParser::Layout() const {
    return m_state->layout;
}
