// Configuration files: any bytes that load must survive a save and a reload as the same
// tree, and a second save must write the same bytes as the first; the store, on any bytes,
// must save a file that loads, reading that file back must give the same tree, and saving
// that tree must give the same file.

#include "FuzzSupport.h"

#include "platform/ComError.h"
#include "platform/TextEncoding.h"
#include "store/CXmlQdDeConfig.h"
#include "xml/XmlDocument.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace {

const wchar_t* const kSpec = L"给排水";

struct World {
    World() {
        fuzz::AddCategory(data, 2, kSpec, 1, L"管道", 101, L"给水管");
        fuzz::AddCategory(data, 2, kSpec, 1, L"管道", 102, L"排水管");
        fuzz::AddCategory(data, 2, kSpec, 2, L"阀门仪表", 201, L"阀门");
        fuzz::AddCategory(data, 3, L"电气", 1, L"配电箱柜", 101, L"配电箱柜");
        data.project.path = fuzz::ScratchFile("project/test.kprj");
        data.project.currentSpec = kSpec;
        data.profile.configPath = FromUtf8(fuzz::ScratchDir());
        data.profile.version = L"2.5.0";
    }
    HostData data;
    HostDataScope scope{&data};
    fuzz::SilentMessages messages;
};

std::string Describe(const char* what, const std::string& a, const std::string& b) {
    return std::string(what) + "\n--- first:\n" + a + "\n--- second:\n" + b;
}

pugi::xml_attribute DeclaredEncoding(const XmlDocument& doc) {
    for (XmlNode node : doc.Doc().children())
        if (node.type() == pugi::node_declaration)
            return node.attribute("encoding");
    return {};
}

std::string Upper(std::string text) {
    for (char& ch : text)
        if (ch >= 'a' && ch <= 'z')
            ch = static_cast<char>(ch - 'a' + 'A');
    return text;
}

void CheckDocumentRoundTrip(const std::string& path) {
    XmlDocument first;
    if (!first.Load(FromUtf8(path)))
        return;

    const std::string savedPath = fuzz::ScratchPath("saved.xml");
    std::string why;
    fuzz::Check(first.Save(FromUtf8(savedPath), &why), "a loaded document saves", why);
    XmlDocument second;
    fuzz::Check(second.Load(FromUtf8(savedPath)), "a saved document loads again",
                second.LastError() + "\n--- saved bytes:\n" + fuzz::ReadBytes(savedPath));

    // A legacy document holding a character its encoding lacks is written in GB18030 and
    // says so; only then may the declaration change, and only so.
    pugi::xml_attribute declared = DeclaredEncoding(first);
    pugi::xml_attribute redeclared = DeclaredEncoding(second);
    const std::string before = declared.value();
    if (declared && redeclared && before != redeclared.value()) {
        fuzz::Check(IsLegacyChineseEncoding(before) && Upper(before) != "GB18030" &&
                        std::string_view(redeclared.value()) == "GB18030",
                    "a save changes a declared encoding only from legacy to GB18030",
                    before + " -> " + redeclared.value());
        fuzz::Check(!Utf8ToLegacy(first.ToUtf8String(), Upper(before), nullptr),
                    "a save leaves a legacy encoding only for a character it lacks", before);
        declared.set_value(redeclared.value());
    }

    const std::string text = first.ToUtf8String();
    fuzz::Check(second.ToUtf8String() == text, "a saved document reloads as the same tree",
                Describe("texts", text, second.ToUtf8String()));

    const std::string savedBytes = fuzz::ReadBytes(savedPath);
    const std::string againPath = fuzz::ScratchPath("saved-again.xml");
    fuzz::Check(second.Save(FromUtf8(againPath), &why), "a reloaded document saves", why);
    fuzz::Check(fuzz::ReadBytes(againPath) == savedBytes,
                "saving a reloaded document writes the same bytes",
                Describe("bytes", savedBytes, fuzz::ReadBytes(againPath)));
}

// The saved file as text, without the small categories' LastConfigId: the reader recomputes
// that counter from the ids it reads, so a counter raised past them (a default added on
// reading) is rightly lower after a reload. Otherwise the tree read back from a saved file
// must write that file again, field for field.
std::string WithoutConfigCounters(const std::string& path) {
    XmlDocument doc;
    if (!doc.Load(FromUtf8(path)))
        return "(does not load: " + doc.LastError() + ")";
    for (XmlNode node = doc.Doc().first_child(); node;) {
        if (std::string_view(node.name()) == "SMember")
            node.remove_attribute("LastConfigId");
        if (node.first_child()) {
            node = node.first_child();
            continue;
        }
        while (node && !node.next_sibling())
            node = node.parent();
        if (node)
            node = node.next_sibling();
    }
    return doc.ToUtf8String();
}

void CheckStoreRoundTrip(const std::string& path) {
    const CString file = FromUtf8(path);
    try {
        CXmlQdDeConfig store(file, kSpec);
        if (!store.Save())
            return; // another document element: the store leaves the file alone
        const std::string saved = fuzz::ReadBytes(path);
        XmlDocument doc;
        fuzz::Check(doc.Load(file), "a file the store saved loads",
                    doc.LastError() + "\n--- saved bytes:\n" + saved);
        const std::string first = WithoutConfigCounters(path);

        // The tree read back from the saved file writes the same file again.
        CXmlQdDeConfig reread(file, kSpec);
        fuzz::Check(reread.LoadError().empty(), "the store opens a file it saved without error",
                    reread.LoadError());
        fuzz::Check(fuzz::ReadBytes(path) == saved, "opening a saved file writes nothing");
        fuzz::Check(reread.Save(), "a file the store saved saves again");
        const std::string second = WithoutConfigCounters(path);
        fuzz::Check(second == first, "a file the store saved saves to the same file",
                    Describe("saved files", first, second));
    } catch (const ComError& e) {
        fuzz::Fail("the store opens and saves any file without raising", e.what());
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static World world;
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    const std::string path = fuzz::ScratchPath("config.xml");

    fuzz::WriteBytes(path, bytes);
    CheckDocumentRoundTrip(path);

    fuzz::WriteBytes(path, bytes);
    CheckStoreRoundTrip(path);
    return 0;
}
