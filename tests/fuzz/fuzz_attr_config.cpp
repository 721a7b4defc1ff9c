// Attribute settings (AttrConfig.xml): the generator extends whatever file it finds. After
// it ran, the file loads, every record outside the categories it generates reads as before,
// a category that held nothing holds exactly the generated records, and running it again
// writes the same bytes.

#include "FuzzSupport.h"

#include "platform/ComError.h"
#include "store/CAttrConfigStore.h"
#include "xml/XmlDocument.h"
#include "xml/XmlVisitor.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace {

const wchar_t* const kRootName = L"属性类型配置信息";
// The one small category of the catalog with attributes outside the building specialty.
const wchar_t* const kGenerated = L"给排水\\管道\\给水管";

struct World {
    World() {
        HostSmallCategory& pipe = fuzz::AddCategory(data, 2, L"给排水", 1, L"管道", 101, L"给水管");
        pipe.attributes.push_back({L"F_CZ", L"材质", L"K_CZ", L"CZ"});
        pipe.attributes.push_back({L"F_GJ", L"管径", L"K_GJ", L"GJ"});
        fuzz::AddCategory(data, 3, L"电气", 3, L"配电箱柜", 301, L"配电箱");
        // The generator skips the building specialty, attributes and all.
        HostSmallCategory& wall = fuzz::AddCategory(data, 1, L"建筑", 1, L"墙", 101, L"砖墙");
        wall.attributes.push_back({L"F_HD", L"厚度", L"K_HD", L"HD"});
        data.project.path = fuzz::ScratchFile("project/test.kprj");
        data.project.currentSpec = L"给排水";
        data.profile.configPath = FromUtf8(fuzz::ScratchDir());
        data.profile.version = L"2.5.0";
        fuzz::WriteBytes(fuzz::ScratchPath("AttributeInformation.xml"),
                         "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<属性参数信息>\n"
                         "  <CZ type=\"9\"/>\n  <GJ type=\"3\"/>\n  <HD type=\"1\"/>\n"
                         "</属性参数信息>\n");
    }
    HostData data;
    HostDataScope scope{&data};
    fuzz::SilentMessages messages;
};

using Records = std::map<CString, std::string>;

std::string Text(const AttrConfig& r) {
    return ToUtf8(r.name) + "|" + ToUtf8(r.namecode) + "|" + std::to_string(r.vartype) + "|" +
           std::to_string(r.compar) + "|" + std::to_string(r.specrelation);
}

// The records of a specialty as the reader sees them.
Records Read(const CString& spec) {
    Records out;
    CAttrConfigStore reader(spec);
    for (const auto& [key, record] : reader.Records())
        out[key] = Text(record);
    return out;
}

bool Generated(const CString& key) {
    return key.Find(kGenerated) == 0;
}

std::string Show(const Records& records) {
    std::string out;
    for (const auto& [key, text] : records)
        out += ToUtf8(key) + " -> " + text + "\n";
    return out;
}

// The specialties to read: the catalog's, and those the file names among its first children.
std::vector<CString> Specialties(const XmlDocument& doc, bool loaded) {
    std::vector<CString> names = {L"给排水", L"电气", L"建筑"};
    if (!loaded)
        return names;
    int taken = 0;
    for (XmlNode child : doc.DocumentElement().children()) {
        CString name = XmlVisitor::getNodeAttribute(child, L"name");
        bool known = false;
        for (const CString& n : names)
            known = known || n == name;
        if (!known && taken++ < 3)
            names.push_back(name);
    }
    return names;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static World world;
    const std::string path = fuzz::ScratchPath("AttrConfig.xml");
    fuzz::WriteBytes(path, std::string(reinterpret_cast<const char*>(data), size));

    XmlDocument doc;
    const bool loaded = doc.Load(FromUtf8(path));
    // Another document element: reader and generator refuse the file by raising.
    const bool foreign = loaded && doc.DocumentElement().name() != ToUtf8(CString(kRootName));
    const std::vector<CString> specs = Specialties(doc, loaded);

    std::map<CString, Records> before;
    try {
        for (const CString& spec : specs)
            before[spec] = Read(spec);
        CAttrConfigStore generator;
        fuzz::Check(generator.Save(), "the generator saves");
    } catch (const ComError& e) {
        fuzz::Check(foreign, "reader and generator raise only on another document element",
                    e.what());
        return 0;
    }
    fuzz::Check(!foreign, "a file with another document element is refused");
    const std::string saved = fuzz::ReadBytes(path);
    XmlDocument reloaded;
    fuzz::Check(reloaded.Load(FromUtf8(path)), "a generated file loads",
                reloaded.LastError() + "\n--- saved bytes:\n" + saved);

    for (const CString& spec : specs) {
        Records after;
        try {
            after = Read(spec);
        } catch (const ComError& e) {
            fuzz::Fail("a generated file reads without raising", e.what());
        }
        Records kept, expected;
        bool empty = true;
        for (const auto& [key, text] : before[spec]) {
            if (Generated(key))
                empty = false;
            else if (loaded)
                expected[key] = text;
        }
        if (spec == L"给排水" && empty) {
            expected[CString(kGenerated) + L"材质"] = "材质|CZ|1|1|0";
            expected[CString(kGenerated) + L"管径"] = "管径|GJ|1|1|1";
        }
        for (const auto& [key, text] : after)
            if (!Generated(key) || empty)
                kept[key] = text;
        fuzz::Check(kept == expected, "generation keeps other records and writes its own",
                    "specialty " + ToUtf8(spec) + "\n--- before:\n" + Show(before[spec]) +
                        "--- after:\n" + Show(after) + "--- saved bytes:\n" + saved);
    }

    try {
        CAttrConfigStore again;
        fuzz::Check(again.Save(), "the generator saves its own file");
    } catch (const ComError& e) {
        fuzz::Fail("the generator saves its own file without raising", e.what());
    }
    fuzz::Check(fuzz::ReadBytes(path) == saved, "generating twice writes the same bytes",
                "--- first:\n" + saved + "\n--- second:\n" + fuzz::ReadBytes(path));
    return 0;
}
