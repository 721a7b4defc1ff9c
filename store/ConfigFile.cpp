#include "store/ConfigFile.h"

#include "platform/FileSystem.h"
#include "xml/XmlSplice.h"

#include <functional>
#include <string_view>
#include <utility>

// Header-only: the hash is compiled in here, and no library is linked for it.
#define XXH_INLINE_ALL
#include <xxhash.h>

namespace {

// The save reads the file in pieces of this size.
constexpr std::size_t kPiece = std::size_t{1} << 20;
// A declaration or byte-order mark shows within this many bytes.
constexpr std::size_t kHeadBytes = 4096;

// XXH3 of bytes that arrive in pieces of any size: it tells the save whether the file is
// still the one the open read, at a fraction of the cost of reading it.
class ContentHash {
public:
    ContentHash() {
        XXH3_INITSTATE(&m_state);
        XXH3_64bits_reset(&m_state);
    }
    ContentHash& Add(std::string_view bytes) {
        XXH3_64bits_update(&m_state, bytes.data(), bytes.size());
        return *this;
    }
    std::uint64_t Value() const { return XXH3_64bits_digest(&m_state); }

private:
    XXH3_state_t m_state;
};

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

// Reads and parses the file, building into `dom` what `build` asks for. UTF-8 is read whole
// straight into the parser's buffer and parsed as one final piece: no copy, and none of the
// line counting expat does between pieces. Other encodings are read whole and converted first.
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
    // One byte to spare, so that the read that finds the end needs no second piece; a file
    // that grows meanwhile reads on in pieces.
    size_t room = static_cast<size_t>(reader.Size()) + 1;
    char* piece = parser.Buffer(room);
    if (!piece) {
        Parsed(scan, parser, where, false);
        return scan;
    }
    size_t got = reader.Read(piece, room);
    scan.encoding = SniffXmlEncoding(std::string_view(piece, std::min(got, kHeadBytes)));
    if (!scan.encoding.error.empty()) {
        scan.failure = XmlLoadFailure::Malformed;
        scan.error = where + ": " + scan.encoding.error;
        return scan;
    }
    ContentHash hash;
    if (!scan.encoding.IsUtf8()) {
        FileBytes whole = ReadRegularFile(path, kMaxXmlFileBytes);
        if (!whole) {
            ReadFailed(scan, where, whole.failure, whole.Reason());
            return scan;
        }
        scan.size = whole.bytes.size();
        scan.hash = hash.Add(whole.bytes).Value();
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
        hash.Add(std::string_view(piece, got));
        const bool last = got < room;
        ok = parser.ParseBuffer(got, last);
        if (!ok || last)
            break;
        room = kPiece;
        piece = parser.Buffer(room);
        if (!piece) {
            ok = false;
            break;
        }
        got = reader.Read(piece, room);
    }
    scan.hash = hash.Value();
    Parsed(scan, parser, where, ok);
    return scan;
}

// The file as a splice reads it: in order, a piece at a time, every byte hashed as the open
// hashed them, so that the save finds out whether the file is still the one the open laid out
// while it copies.
class FileSource : public SpliceSource {
public:
    FileSource(FileReader& reader, std::uint64_t size)
        : m_reader(reader), m_size(size), m_piece(new char[kPiece]) {}

    std::uint64_t Size() const override { return m_size; }

    void Copy(std::uint64_t begin, std::uint64_t end, const SpliceSink& out) override {
        while (begin < end && Reach(begin)) {
            const std::uint64_t stop = std::min(end, m_pieceBegin + m_pieceSize);
            out(std::string_view(m_piece.get() + (begin - m_pieceBegin), stop - begin));
            begin = stop;
        }
    }

    bool Peek(std::uint64_t offset, std::size_t size, char* into) override {
        return m_reader.ReadAt(into, size, offset) == size;
    }

    // Reads what is left; whether the file held exactly the bytes the open hashed.
    bool Unchanged(std::uint64_t hash) {
        Reach(UINT64_MAX);
        return m_reader.Failure() == ReadFailure::None && m_read == m_size &&
               m_hash.Value() == hash;
    }

private:
    // Reads the pieces up to the one holding `at`; false when the file ends before it.
    bool Reach(std::uint64_t at) {
        while (at >= m_pieceBegin + m_pieceSize) {
            if (m_ended)
                return false;
            m_pieceBegin += m_pieceSize;
            m_pieceSize = m_reader.Read(m_piece.get(), kPiece);
            m_ended = m_pieceSize < kPiece;
            m_hash.Add(std::string_view(m_piece.get(), m_pieceSize));
            m_read += m_pieceSize;
        }
        return true;
    }

    FileReader& m_reader;
    const std::uint64_t m_size;
    std::unique_ptr<char[]> m_piece;
    std::uint64_t m_pieceBegin = 0;
    std::size_t m_pieceSize = 0;
    std::uint64_t m_read = 0;
    ContentHash m_hash;
    bool m_ended = false;
};

const XmlTopChild* ChildNamed(const XmlLayout& layout, const std::string& name) {
    for (const XmlTopChild& child : layout.children)
        if (child.name == name)
            return &child;
    return nullptr;
}

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
    const std::string name = ToUtf8(specName);
    if (std::optional<Saved> saved = SaveAsOpened(path, spec, name, version, why))
        return *saved;

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
        m_snapshot->hash == ContentHash().Add(read.bytes).Value()) {
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

    const XmlTopChild* cut = ChildNamed(layout, name);
    const XmlSpan& tag = layout.rootStartTag;
    std::string startTag(text.substr(tag.begin, tag.end - tag.begin));
    if (!version.IsEmpty())
        startTag = WithAttribute(startTag, "Version", ToUtf8(version));

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
        SpliceDocument(text, layout, cut, startTag, spec,
                       [&writer](std::string_view piece) { writer.Write(piece); });
        return writer.Commit() ? Saved::Written : failed(writer.Error());
    }
    std::string whole;
    whole.reserve(text.size());
    SpliceDocument(text, layout, cut, startTag, spec,
                   [&whole](std::string_view piece) { whole += piece; });
    std::string reason;
    std::optional<std::string> bytes =
        EncodeXmlText(std::move(whole), encoding.encoding, encoding.legacyName, &reason);
    if (!bytes)
        return failed(reason);
    return WriteFileAtomically(path, *bytes, &reason) ? Saved::Written : failed(reason);
}

std::optional<ConfigFile::Saved> ConfigFile::SaveAsOpened(const CString& path, pugi::xml_node spec,
                                                          const std::string& specName,
                                                          const CString& version,
                                                          std::string* why) {
    if (!m_snapshot || !m_snapshot->encoding.IsUtf8())
        return std::nullopt;
    const XmlLayout& layout = m_snapshot->layout;
    if (layout.rootName != ToUtf8(CString(kConfigRootName)))
        return std::nullopt;
    const XmlTopChild* cut = ChildNamed(layout, specName);
    if (cut && !cut->inText)
        return std::nullopt;
    FileReader reader(path, kMaxXmlFileBytes);
    if (!reader || reader.Size() != m_snapshot->size)
        return std::nullopt;
    const XmlSpan& tag = layout.rootStartTag;
    std::string startTag(tag.end - tag.begin, '\0');
    if (reader.ReadAt(startTag.data(), startTag.size(), tag.begin) != startTag.size())
        return std::nullopt;
    if (!version.IsEmpty())
        startTag = WithAttribute(startTag, "Version", ToUtf8(version));

    AtomicFileWriter writer(path);
    FileSource source(reader, m_snapshot->size);
    SpliceDocument(source, layout, cut, startTag, spec,
                   [&writer](std::string_view piece) { writer.Write(piece); });
    // Changed since the open: the temporary file goes with the writer, and the caller parses
    // the file as it is now.
    if (!source.Unchanged(m_snapshot->hash))
        return std::nullopt;
    if (writer.Commit())
        return Saved::Written;
    if (why)
        *why = writer.Error();
    return Saved::Failed;
}
