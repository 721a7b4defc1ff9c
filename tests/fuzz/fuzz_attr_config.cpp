// Attribute settings (AttrConfig.xml): readers never raise and hold nothing from a file they
// can't use; the generator refuses such a file and leaves it alone, and extends any other.
// After it ran, the file loads, every record outside the category it generates reads as
// before, a category that held nothing holds exactly the generated records, and running it
// again writes the same bytes.

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

// What a reader of a specialty holds, and why it could not use the file (or "").
struct Reading {
    Records records;
    std::string error;
};

Reading Read(const CString& spec) {
    Reading out;
    try {
        CAttrConfigStore reader(spec);
        for (const auto& [key, record] : reader.Records())
            out.records[key] = Text(record);
        out.error = reader.LastError();
    } catch (const ComError& e) {
        fuzz::Fail("a reader never raises", e.what());
    }
    fuzz::Check(out.error.empty() || out.records.empty(),
                "a reader that can't use its file holds no records", out.error);
    return out;
}

bool Generated(const CString& key) {
    return key.Find(kGenerated) == 0;
}

std::string Show(const Reading& reading) {
    std::string out = reading.error.empty() ? "" : "error: " + reading.error + "\n";
    for (const auto& [key, text] : reading.records)
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
    // A file that does not load, or has another document element, is no settings file: the
    // readers say so and hold nothing, and the generator refuses it and leaves it alone.
    const bool usable = loaded && doc.DocumentElement().name() == ToUtf8(CString(kRootName));
    const std::vector<CString> specs = Specialties(doc, loaded);

    std::map<CString, Reading> before;
    for (const CString& spec : specs) {
        before[spec] = Read(spec);
        fuzz::Check(usable || !before[spec].error.empty(),
                    "a reader says why it can't use the file");
    }
    const std::string original = fuzz::ReadBytes(path);
    try {
        CAttrConfigStore generator;
        fuzz::Check(generator.Save(), "the generator saves");
    } catch (const ComError& e) {
        fuzz::Check(!usable, "the generator raises only on a file it can't use", e.what());
        fuzz::Check(fuzz::ReadBytes(path) == original, "a refused file is left as it was");
        return 0;
    }
    fuzz::Check(usable, "the generator refuses a file it can't use");
    const std::string saved = fuzz::ReadBytes(path);
    XmlDocument reloaded;
    fuzz::Check(reloaded.Load(FromUtf8(path)), "a generated file loads",
                reloaded.LastError() + "\n--- saved bytes:\n" + saved);

    for (const CString& spec : specs) {
        const Reading& old = before[spec];
        const Reading now = Read(spec);
        const std::string detail = "specialty " + ToUtf8(spec) + "\n--- before:\n" + Show(old) +
                                   "--- after:\n" + Show(now) + "--- saved bytes:\n" + saved;
        fuzz::Check(old.error.empty() == now.error.empty(),
                    "generation leaves a specialty as usable as it was", detail);
        Records kept, expected;
        bool empty = true;
        for (const auto& [key, text] : old.records) {
            if (Generated(key))
                empty = false;
            else
                expected[key] = text;
        }
        if (spec == L"给排水" && empty && old.error.empty()) {
            expected[CString(kGenerated) + L"材质"] = "材质|CZ|1|1|0";
            expected[CString(kGenerated) + L"管径"] = "管径|GJ|1|1|1";
        }
        for (const auto& [key, text] : now.records)
            if (!Generated(key) || empty)
                kept[key] = text;
        fuzz::Check(kept == expected, "generation keeps other records and writes its own", detail);
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
