#include "store/ConfigFile.h"

#include "platform/FileSystem.h"
#include "xml/XmlSplice.h"

#include <functional>
#include <string_view>
#include <utility>

namespace {

// Pieces of this size are read straight into the parser's buffer; the hash works on the same
// pieces, so that a whole-file hash agrees with one taken while reading.
constexpr std::size_t kPiece = std::size_t{1} << 20;
// A declaration or byte-order mark shows within this many bytes.
constexpr std::size_t kHeadBytes = 4096;

std::uint64_t HashPiece(std::uint64_t hash, std::string_view piece) {
    const std::uint64_t value = std::hash<std::string_view>{}(piece);
    return (hash ^ value) * 0x100000001B3ULL + piece.size();
}

std::uint64_t HashOf(std::string_view bytes) {
    std::uint64_t hash = 0;
    for (size_t at = 0; at < bytes.size(); at += kPiece)
        hash = HashPiece(hash, bytes.substr(at, kPiece));
    return hash;
}

struct Scan {
    bool loaded = false;
    XmlLoadFailure failure = XmlLoadFailure::None;
    std::string error;
    std::uint64_t size = 0;
    std::uint64_t hash = 0;
    XmlFileEncoding encoding;
    XmlLayout layout;
};

void ReadFailed(Scan& scan, const std::string& where, ReadFailure failure, std::string reason) {
    if (failure == ReadFailure::TooLarge)
        reason += " (more than " + std::to_string(kMaxXmlFileBytes >> 20) + " MiB)";
    scan.failure =
        failure == ReadFailure::Missing ? XmlLoadFailure::Missing : XmlLoadFailure::Unreadable;
    scan.error = where + ": " + reason;
}

void Parsed(Scan& scan, XmlParser& parser, const std::string& where, bool ok) {
    scan.loaded = ok;
    if (ok) {
        scan.layout = parser.Layout();
    } else {
        scan.failure = XmlLoadFailure::Malformed;
        scan.error = where + ": " + parser.Error();
    }
}

// Reads and parses the file, building into `dom` what `build` asks for. UTF-8 goes to the
// parser piece by piece as it is read; other encodings are read whole and converted first.
Scan ScanFile(const CString& path, pugi::xml_document& dom, XmlParser::Build build,
              const std::string& specName) {
    Scan scan;
    const std::string where = ToUtf8(path);
    FileReader reader(path, kMaxXmlFileBytes);
    if (!reader) {
        ReadFailed(scan, where, reader.Failure(), FileBytes{{}, reader.Failure()}.Reason());
        return scan;
    }
    XmlParser parser(dom, build, specName);
    char* piece = parser.Buffer(kPiece);
    if (!piece) {
        Parsed(scan, parser, where, false);
        return scan;
    }
    size_t got = reader.Read(piece, kPiece);
    scan.encoding = SniffXmlEncoding(std::string_view(piece, std::min(got, kHeadBytes)));
    if (!scan.encoding.error.empty()) {
        scan.failure = XmlLoadFailure::Malformed;
        scan.error = where + ": " + scan.encoding.error;
        return scan;
    }
    if (!scan.encoding.IsUtf8()) {
        FileBytes whole = ReadRegularFile(path, kMaxXmlFileBytes);
        if (!whole) {
            ReadFailed(scan, where, whole.failure, whole.Reason());
            return scan;
        }
        scan.size = whole.bytes.size();
        scan.hash = HashOf(whole.bytes);
        std::string why;
        std::optional<std::string> text =
            DecodeXmlBytes(std::move(whole.bytes), scan.encoding, &why);
        if (!text) {
            scan.failure = XmlLoadFailure::Malformed;
            scan.error = where + ": " + why;
            return scan;
        }
        Parsed(scan, parser, where, parser.Feed(*text, true));
        return scan;
    }
    bool ok = true;
    for (;;) {
        if (reader.Failure() != ReadFailure::None) {
            ReadFailed(scan, where, reader.Failure(), FileBytes{{}, reader.Failure()}.Reason());
            return scan;
        }
        scan.size += got;
        if (scan.size > kMaxXmlFileBytes) {
            ReadFailed(scan, where, ReadFailure::TooLarge, "the file is too large");
            return scan;
        }
        scan.hash = HashPiece(scan.hash, std::string_view(piece, got));
        const bool last = got < kPiece;
        ok = parser.ParseBuffer(got, last);
        if (!ok || last)
            break;
        piece = parser.Buffer(kPiece);
        if (!piece) {
            ok = false;
            break;
        }
        got = reader.Read(piece, kPiece);
    }
    Parsed(scan, parser, where, ok);
    return scan;
}

class WriterSink {
public:
    explicit WriterSink(AtomicFileWriter& writer) : m_writer(writer) {}
    void operator()(std::string_view piece) { m_writer.Write(piece); }

private:
    AtomicFileWriter& m_writer;
};

} // namespace

bool ConfigFile::Open(const CString& path, const CString& specName) {
    m_dom = std::make_shared<XmlDocument>();
    m_snapshot.reset();
    m_rootName.clear();
    Scan scan = ScanFile(path, m_dom->Doc(), XmlParser::Build::OneChild, ToUtf8(specName));
    m_error = std::move(scan.error);
    m_failure = scan.failure;
    if (!scan.loaded) {
        m_dom->Doc().reset();
        return false;
    }
    m_rootName = scan.layout.rootName;
    m_snapshot = Snapshot{scan.size, scan.hash, std::move(scan.encoding), std::move(scan.layout)};
    return true;
}

void ConfigFile::DropDom() {
    m_dom->Doc().reset();
}

ConfigFile::CheckResult ConfigFile::Check(const CString& path) {
    pugi::xml_document none;
    Scan scan = ScanFile(path, none, XmlParser::Build::Nothing, {});
    return {scan.loaded, scan.failure, std::move(scan.error), std::move(scan.layout.rootName)};
}

ConfigFile::Saved ConfigFile::Save(const CString& path, pugi::xml_node spec,
                                   const CString& specName, const CString& version,
                                   std::string* why) {
    const std::string rootName = ToUtf8(CString(kConfigRootName));
    FileBytes read = ReadRegularFile(path, kMaxXmlFileBytes);
    if (!read && read.failure != ReadFailure::Missing) {
        if (why)
            *why = ToUtf8(path) + ": " + read.Reason();
        return Saved::Unreadable;
    }

    // The text to keep, in UTF-8, and where its parts lie: from the open when the bytes are
    // still the ones it read, from a parse when they changed, and a bare document element
    // when there is nothing to keep.
    std::string decoded;
    std::string_view text = read.bytes;
    XmlFileEncoding encoding;
    XmlLayout layout;
    bool laidOut = false;
    if (read && m_snapshot && m_snapshot->size == read.bytes.size() &&
        m_snapshot->hash == HashOf(read.bytes)) {
        encoding = m_snapshot->encoding;
        layout = m_snapshot->layout;
        laidOut = true;
    } else if (read) {
        encoding = SniffXmlEncoding(text.substr(0, kHeadBytes));
    }
    if (read && !encoding.IsUtf8()) {
        std::optional<std::string> converted = DecodeXmlBytes(read.bytes, encoding, nullptr);
        laidOut = laidOut && converted;
        decoded = converted.value_or(std::string());
        text = decoded;
    }
    if (read && !laidOut && encoding.error.empty()) {
        pugi::xml_document none;
        XmlParser parser(none, XmlParser::Build::Nothing);
        laidOut = parser.Feed(text, true);
        layout = parser.Layout();
    }
    std::string fresh;
    if (!laidOut) { // missing or malformed: the current specialty alone
        fresh = "<" + rootName + " Version=\"1.0.0\"/>\n";
        text = fresh;
        encoding = XmlFileEncoding();
        pugi::xml_document none;
        XmlParser parser(none, XmlParser::Build::Nothing);
        parser.Feed(text, true);
        layout = parser.Layout();
    }
    if (layout.rootName != rootName)
        return Saved::OtherRoot;

    const std::string name = ToUtf8(specName);
    const XmlTopChild* cut = nullptr;
    for (const XmlTopChild& child : layout.children)
        if (child.name == name) {
            cut = &child;
            break;
        }
    const XmlSpan& tag = layout.rootStartTag;
    std::string startTag(text.substr(tag.begin, tag.end - tag.begin));
    if (!version.IsEmpty())
        startTag = WithAttribute(startTag, "Version", ToUtf8(version));
    const std::string appended = ElementText(spec, 1);

    auto failed = [why](const std::string& reason) {
        if (why)
            *why = reason;
        return Saved::Failed;
    };
    // A specialty an entity reference produced has no bytes of its own to cut: the file is
    // then rewritten from its whole DOM, entities expanded.
    if (cut && !cut->inText) {
        XmlDocument whole;
        if (!whole.Load(path))
            return failed(whole.LastError());
        XmlNode root = whole.DocumentElement();
        for (XmlNode child : root.children())
            if (name == child.attribute("name").value()) {
                root.remove_child(child);
                break;
            }
        root.append_copy(spec);
        if (!version.IsEmpty()) {
            pugi::xml_attribute stamp = root.attribute("Version");
            (stamp ? stamp : root.append_attribute("Version")).set_value(ToUtf8(version).c_str());
        }
        std::string reason;
        return whole.Save(path, &reason) ? Saved::Written : failed(reason);
    }

    if (encoding.IsUtf8()) {
        AtomicFileWriter writer(path);
        SpliceDocument(text, layout, cut, startTag, appended, WriterSink(writer));
        return writer.Commit() ? Saved::Written : failed(writer.Error());
    }
    std::string whole;
    whole.reserve(text.size() + appended.size());
    SpliceDocument(text, layout, cut, startTag, appended,
                   [&whole](std::string_view piece) { whole += piece; });
    std::string reason;
    std::optional<std::string> bytes =
        EncodeXmlText(std::move(whole), encoding.encoding, encoding.legacyName, &reason);
    if (!bytes)
        return failed(reason);
    return WriteFileAtomically(path, *bytes, &reason) ? Saved::Written : failed(reason);
}
