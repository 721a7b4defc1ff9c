#pragma once
// A configuration file as the store reads and writes it. Only the current specialty becomes a
// DOM, for the model to read; the other specialties stay the bytes they are on disk, checked
// by the parse but never built, and a save writes them back byte for byte. That keeps the
// memory of an open near the size of one specialty and spares the save a parse of the file
// it has just read.

#include "platform/CString.h"
#include "xml/XmlDocument.h"
#include "xml/XmlEncoding.h"
#include "xml/XmlParser.h"

#include <cstdint>
#include <optional>
#include <string>

// The document element's name of a configuration file.
inline constexpr const wchar_t* kConfigRootName =
    L"\u81EA\u52A8\u5957\u6E05\u5355\u5B9A\u989D\u914D\u7F6E\u4FE1\u606F"; // 自动套清单定额配置信息

class ConfigFile {
public:
    // Reads and checks the whole file, building the document element with its attributes and
    // its first child element whose "name" attribute is `specName`. False when the file is
    // missing, can't be read or is not well-formed; Error() and Failure() then say which.
    bool Open(const CString& path, const CString& specName);
    // The DOM the last Open built (an empty document after a failed one). The store may add
    // to it; nothing of it is written back.
    const XmlDocPtr& Dom() const { return m_dom; }
    // Frees the DOM once the model has read it.
    void DropDom();
    const std::string& Error() const { return m_error; }
    XmlLoadFailure Failure() const { return m_failure; }
    // The document element's name as written, "" when the file did not load.
    const std::string& RootName() const { return m_rootName; }

    enum class Saved {
        Written,
        Unreadable, // the file is there but can't be read: nothing was written
        OtherRoot,  // the file is another kind of document: nothing was written
        Failed,     // the file could not be written; `why` says why
    };
    // Writes `spec` as the file's specialty `specName`, last in the document element, with
    // the document element's "Version" set to `version` when that is not empty. Everything
    // else is taken from the file as it is on disk now, in its encoding. A missing or
    // malformed file is replaced by a document element (Version "1.0.0" unless `version`
    // says otherwise) holding `spec` alone.
    Saved Save(const CString& path, pugi::xml_node spec, const CString& specName,
               const CString& version, std::string* why);

    // Checks the whole file as Open does without building anything.
    struct CheckResult {
        bool loaded = false;
        XmlLoadFailure failure = XmlLoadFailure::None;
        std::string error;
        std::string rootName;
    };
    static CheckResult Check(const CString& path);

private:
    // A save of the file the open read, its bytes going from disk to the new file piece by
    // piece where the open's layout says; nothing when that does not apply (nothing opened,
    // another encoding, a specialty an entity produced) or the file changed meanwhile.
    std::optional<Saved> SaveAsOpened(const CString& path, pugi::xml_node spec,
                                      const std::string& specName, const CString& version,
                                      std::string* why);

    // What the last Open saw of the file, so that a save of the same bytes needs no second
    // parse: the bytes' size and hash, their encoding, and where the parts lie.
    struct Snapshot {
        std::uint64_t size = 0;
        std::uint64_t hash = 0;
        XmlFileEncoding encoding;
        XmlLayout layout;
    };

    XmlDocPtr m_dom;
    std::optional<Snapshot> m_snapshot;
    std::string m_error;
    XmlLoadFailure m_failure = XmlLoadFailure::None;
    std::string m_rootName;
};
