#include "platform/ComError.h"
#include "platform/FileSystem.h"
#include "presenter/CAutoQdDeConfigFacade.h"
#include "presenter/CQdDeConfigPresenter.h"
#include "store/CAttrConfigStore.h"
#include "support/TestHost.h"
#include "xml/XmlDocument.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

namespace {

const char* const kSmallPath = "给排水\\管道\\给水管";

// Appends an attribute to a small category already in the host catalog.
void AddAttr(TestHost& host, const CString& spec, const CString& large, const CString& small,
             const CString& name, const CString& code) {
    for (auto& m : host.AddLarge(spec, large).smalls)
        if (m.name == small)
            m.attributes.push_back({L"F_" + code, name, L"K_" + code, code});
}

// AttributeInformation.xml from code/type pairs.
void WriteAttrInfo(TestHost& host, const std::vector<std::pair<std::string, std::string>>& types) {
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<属性参数信息>\n";
    for (const auto& [code, type] : types)
        text += "  <" + code + " type=\"" + type + "\"/>\n";
    text += "</属性参数信息>\n";
    host.dir.Write(L"config/AttributeInformation.xml", text);
}

CString AttrFile(const TestHost& host) {
    return host.ConfigDir() + L"/AttrConfig.xml";
}

std::string ReadAttrFile(const TestHost& host) {
    return host.dir.Read(AttrFile(host));
}

// The serialised element at a path of element names below the document, or "" when absent.
std::string ElementAt(const TestHost& host, const std::vector<std::string>& names) {
    XmlDocument doc;
    if (!doc.Load(AttrFile(host)))
        return "";
    XmlNode node = doc.Doc();
    for (const auto& name : names) {
        node = node.child(name.c_str());
        if (!node)
            return "";
    }
    std::ostringstream out;
    node.print(out, "", pugi::format_raw);
    return out.str();
}

// The water supply pipe with one attribute of each kind the tests need.
void PipeCatalog(TestHost& host) {
    host.Add(L"给排水", L"管道", L"给水管", 1, 101);
    AddAttr(host, L"给排水", L"管道", L"给水管", L"材质", L"CZ");
    AddAttr(host, L"给排水", L"管道", L"给水管", L"管径", L"GJ");
    host.Add(L"电气", L"配电箱柜", L"配电箱", 3, 301);
    AddAttr(host, L"电气", L"配电箱柜", L"配电箱", L"安装高度", L"AZGD");
    WriteAttrInfo(host, {{"CZ", "9"}, {"GJ", "3"}, {"AZGD", "1"}});
}

// A record as one comparable text: name, code, vartype, compar, specrelation.
std::string Text(const AttrConfig& r) {
    return ToUtf8(r.name) + " " + ToUtf8(r.namecode) + " " + std::to_string(r.vartype) +
           std::to_string(r.compar) + std::to_string(r.specrelation);
}

// The record a store finds under a key, or "none".
template <class Store> std::string Lookup(const Store& store, const CString& key) {
    AttrConfig record;
    return store.GetAttConfig(key, record) ? Text(record) : "none";
}

CString Key(const char* name) {
    return FromUtf8(kSmallPath) + FromUtf8(name);
}

// The save raises E_POINTER with the message given, when one is.
void ExpectPointerError(const std::function<void()>& save, const std::string& what = "") {
    try {
        save();
        ADD_FAILURE() << "no error";
    } catch (const ComError& e) {
        EXPECT_EQ(e.Error(), E_POINTER);
        if (!what.empty()) {
            EXPECT_TRUE(std::string(e.what()).ends_with(": " + what)) << e.what();
        }
    }
}

} // namespace

TEST(AttrConfigGenerator, WritesEveryLevelAndTheReaderKeysByPathAndDisplayName) {
    TestHost host;
    PipeCatalog(host);
    CAutoQdDeConfigFacade::AttrConfig();

    EXPECT_EQ(ElementAt(host, {"属性类型配置信息", "给排水"}),
              "<给排水 id=\"2\" name=\"给排水\"><管道 id=\"1\" name=\"管道\">"
              "<给水管 id=\"101\" name=\"给水管\">"
              "<CZ name=\"材质\" namecode=\"CZ\" vartype=\"1\" compar=\"1\" specrelation=\"0\"/>"
              "<GJ name=\"管径\" namecode=\"GJ\" vartype=\"1\" compar=\"1\" specrelation=\"1\"/>"
              "</给水管></管道></给排水>");
    EXPECT_EQ(ElementAt(host, {"属性类型配置信息", "电气"}),
              "<电气 id=\"3\" name=\"电气\"><配电箱柜 id=\"3\" name=\"配电箱柜\">"
              "<配电箱 id=\"301\" name=\"配电箱\"><AZGD name=\"安装高度\" namecode=\"AZGD\" "
              "vartype=\"1\" compar=\"0\" specrelation=\"1\"/></配电箱></配电箱柜></电气>");

    CAttrConfigStore reader(L"给排水");
    EXPECT_EQ(reader.Records().size(), 2u) << "only the records of its own specialty";
    EXPECT_EQ(Lookup(reader, Key("材质")), "材质 CZ 110");
    EXPECT_EQ(Lookup(reader, Key("管径")), "管径 GJ 111");
    // The display name follows the path directly; the code is no key.
    for (const CString& miss : {Key("\\材质"), Key("CZ"), CString(L"给排水\\管道材质"),
                                CString(L"电气\\配电箱柜\\配电箱安装高度")})
        EXPECT_EQ(Lookup(reader, miss), "none") << ToUtf8(miss);
    AttrConfig record(L"x", L"x", 5, 5, 5);
    EXPECT_FALSE(reader.GetAttConfig(Key("CZ"), record));
    EXPECT_EQ(Text(record), "x x 555") << "a miss leaves the output alone";
}

TEST(AttrConfigGenerator, TypesDecideComparisonAndMaterialAndVartypeIsAlwaysOne) {
    // Type, then the record's vartype, compar and specrelation.
    const std::pair<const char*, const char*> cases[] = {
        {"1", "101"},  {"2", "101"},  {"10", "101"}, {"11", "101"}, {"3", "111"}, {"8", "111"},
        {"9", "110"},  {"4", "111"},  {"5", "111"},  {"6", "111"},  {"7", "111"}, {"0", "111"},
        {"12", "111"}, {"-1", "111"}, {"", "111"},   {"x9", "111"}, {" 9", "110"}};
    TestHost host;
    host.Add(L"给排水", L"管道", L"给水管", 1, 101);
    std::vector<std::pair<std::string, std::string>> types;
    for (size_t i = 0; i < std::size(cases); ++i) {
        const std::string code = "T" + std::to_string(i);
        AddAttr(host, L"给排水", L"管道", L"给水管", FromUtf8("属性" + code), FromUtf8(code));
        types.emplace_back(code, cases[i].first);
    }
    WriteAttrInfo(host, types);
    CAttrConfigStore generator;
    EXPECT_TRUE(generator.Save());
    EXPECT_TRUE(generator.Records().empty()) << "the generator holds no records";

    CAttrConfigStore reader(L"给排水");
    ASSERT_EQ(reader.Records().size(), std::size(cases));
    for (size_t i = 0; i < std::size(cases); ++i) {
        const std::string code = "T" + std::to_string(i);
        EXPECT_EQ(Lookup(reader, Key(("属性" + code).c_str())),
                  "属性" + code + " " + code + " " + cases[i].second)
            << "type \"" << cases[i].first << "\"";
    }
}

TEST(AttrConfigGenerator, RegeneratingRewritesTheSameBytesAndLeavesForeignElements) {
    TestHost host;
    PipeCatalog(host);
    CAttrConfigStore().Save();
    const std::string first = ReadAttrFile(host);
    ASSERT_FALSE(first.empty());
    CAttrConfigStore().Save();
    EXPECT_EQ(ReadAttrFile(host), first);

    // Hand edits of generated values are put back; elements of categories the project no
    // longer has, and attributes the generator doesn't write, stay as they are.
    std::string edited = first;
    const std::string generated = "<CZ name=\"材质\" namecode=\"CZ\" vartype=\"1\"";
    ASSERT_NE(edited.find(generated), std::string::npos);
    edited.replace(edited.find(generated), generated.size(),
                   "<CZ name=\"旧材质\" namecode=\"CZ\" vartype=\"2\" note=\"手工\"");
    const std::string gone = "<旧大类 id=\"9\" name=\"旧大类\"><旧小类 id=\"901\" name=\"旧小类\">"
                             "<CZ name=\"材质\" namecode=\"CZ\" vartype=\"2\" compar=\"0\" "
                             "specrelation=\"0\"/></旧小类></旧大类>";
    const std::string closeSpec = "</给排水>";
    ASSERT_NE(edited.find(closeSpec), std::string::npos);
    edited.insert(edited.find(closeSpec), gone);
    host.dir.Write(L"config/AttrConfig.xml", edited);

    CAutoQdDeConfigFacade::AttrConfig();
    EXPECT_EQ(ElementAt(host, {"属性类型配置信息", "给排水", "管道", "给水管", "CZ"}),
              "<CZ name=\"材质\" namecode=\"CZ\" vartype=\"1\" note=\"手工\" compar=\"1\" "
              "specrelation=\"0\"/>");
    EXPECT_EQ(ElementAt(host, {"属性类型配置信息", "给排水", "旧大类"}),
              "<旧大类 id=\"9\" name=\"旧大类\"><旧小类 id=\"901\" name=\"旧小类\">"
              "<CZ name=\"材质\" namecode=\"CZ\" vartype=\"2\" compar=\"0\" "
              "specrelation=\"0\"/></旧小类></旧大类>");
    EXPECT_EQ(Lookup(CAttrConfigStore(L"给排水"), L"给排水\\旧大类\\旧小类材质"), "材质 CZ 200");
}

TEST(AttrConfigGenerator, UnknownCodesLeaveBareElementsThatReadAsThePathAlone) {
    TestHost host;
    host.Add(L"给排水", L"管道", L"给水管", 1, 101);
    AddAttr(host, L"给排水", L"管道", L"给水管", L"材质", L"CZ");
    AddAttr(host, L"给排水", L"管道", L"给水管", L"颜色", L"YS");
    AddAttr(host, L"给排水", L"管道", L"给水管", L"厂家", L"CJ");
    WriteAttrInfo(host, {{"CZ", "3"}});
    CAttrConfigStore().Save();
    EXPECT_EQ(ElementAt(host, {"属性类型配置信息", "给排水", "管道", "给水管", "YS"}), "<YS/>");
    EXPECT_EQ(ElementAt(host, {"属性类型配置信息", "给排水", "管道", "给水管", "CJ"}), "<CJ/>");

    CAttrConfigStore reader(L"给排水");
    EXPECT_EQ(reader.Records().size(), 2u) << "both bare elements fall on one key";
    EXPECT_EQ(Lookup(reader, Key("")), "  000");
    EXPECT_EQ(Lookup(reader, Key("颜色")), "none");
    EXPECT_EQ(Lookup(reader, Key("材质")), "材质 CZ 111");
}

TEST(AttrConfigGenerator, BuildingSpecialtiesAreLeftOutAndFindNothing) {
    TestHost host;
    PipeCatalog(host);
    host.Add(L"建筑", L"墙", L"砌体墙", 1, 101);
    AddAttr(host, L"建筑", L"墙", L"砌体墙", L"材质", L"CZ");
    host.Add(L"装饰建筑", L"吊顶", L"板材吊顶", 1, 101);
    AddAttr(host, L"装饰建筑", L"吊顶", L"板材吊顶", L"材质", L"CZ");
    CAttrConfigStore().Save();

    for (const char* left : {"建筑", "装饰建筑"})
        EXPECT_EQ(ElementAt(host, {"属性类型配置信息", left}), "") << left;
    ASSERT_NE(ElementAt(host, {"属性类型配置信息", "电气"}), "");

    const std::string before = ReadAttrFile(host);
    host.data.project.currentSpec = L"建筑";
    CQdDeConfigPresenter presenter(host.dir.Write(
        L"cfg.xml", "<?xml version=\"1.0\" encoding=\"UTF-8\"?><自动套清单定额配置信息/>"));
    AttrConfig record;
    EXPECT_FALSE(presenter.GetAttConfig(L"建筑\\墙\\砌体墙", L"材质", record));
    EXPECT_FALSE(presenter.GetAttConfig(L"", L"", record));
    EXPECT_FALSE(presenter.SetAttConfig(L"建筑\\墙\\砌体墙", L"材质", record));
    CAttrConfigStore reader(L"装饰建筑");
    EXPECT_TRUE(reader.Records().empty());
    EXPECT_EQ(ReadAttrFile(host), before) << "the element made for reading is never saved";
}

TEST(AttrConfigGenerator, FailedGenerationsLeaveTheFileAsItWas) {
    TestHost host;
    PipeCatalog(host);
    const std::string existing =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<属性类型配置信息><给排水 id=\"2\" name=\"给排水\"/></属性类型配置信息>\n";
    host.dir.Write(L"config/AttrConfig.xml", existing);

    // A type file with another root.
    host.dir.Write(L"config/AttributeInformation.xml", "<属性信息><CZ type=\"1\"/></属性信息>");
    const std::string types = ToUtf8(host.ConfigDir()) + "/AttributeInformation.xml";
    ExpectPointerError([] { CAttrConfigStore().Save(); },
                       types + ": the root element is <属性信息>, not <属性参数信息>");
    EXPECT_EQ(ReadAttrFile(host), existing);

    // No type file, no attribute file.
    ASSERT_TRUE(std::filesystem::remove(ToUtf8(host.ConfigDir() + L"/AttributeInformation.xml")));
    ASSERT_TRUE(std::filesystem::remove(ToUtf8(AttrFile(host))));
    ExpectPointerError([] { CAttrConfigStore().Save(); }, types + ": file not found");
    EXPECT_FALSE(PathExists(AttrFile(host)));
}

TEST(AttrConfigReader, WalksElementsByTheirNamesAndSkipsOtherSpecialties) {
    TestHost host;
    host.Add(L"给排水", L"管道", L"给水管", 1, 101);
    // The reader takes the element names, not "id" or "name", and a later record of the same
    // key wins. The specialty is found by its "name", wherever it stands.
    host.dir.Write(
        L"config/AttrConfig.xml",
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<属性类型配置信息>"
        "<电气 id=\"3\" name=\"电气\"><管道 id=\"1\" name=\"管道\"><给水管>"
        "<CZ name=\"材质\" namecode=\"CZ\" vartype=\"2\" compar=\"1\" specrelation=\"1\"/>"
        "</给水管></管道></电气>"
        "<水 id=\"2\" name=\"给排水\"><管道 name=\"风管\"><给水管 name=\"x\">"
        "<A name=\"材质\" namecode=\"A\" vartype=\"0\" compar=\"1\" specrelation=\"1\"/>"
        "<B name=\"材质\" namecode=\"B\" vartype=\" 2\" compar=\"0\" specrelation=\"0\"/>"
        "<C name=\"管径\" namecode=\"C\" vartype=\"7x\"/>"
        "</给水管></管道></水>"
        "</属性类型配置信息>\n");
    CAttrConfigStore reader(L"给排水");
    EXPECT_EQ(reader.Records().size(), 2u);
    EXPECT_EQ(Lookup(reader, L"给排水\\管道\\给水管材质"), "材质 B 200");
    EXPECT_EQ(Lookup(reader, L"给排水\\管道\\给水管管径"), "管径 C 700");
    EXPECT_EQ(Lookup(reader, L"给排水\\风管\\x材质"), "none");
}

TEST(AttrConfigReader, FilesThatCantBeUsedGiveAnEmptyReaderThatSaysWhy) {
    TestHost host;
    PipeCatalog(host);
    const std::string path = ToUtf8(AttrFile(host));
    EXPECT_TRUE(CAttrConfigStore(L"给排水").Records().empty());
    EXPECT_EQ(CAttrConfigStore(L"给排水").LastError(), "") << "no file is no fault";
    EXPECT_FALSE(PathExists(AttrFile(host))) << "reading creates no file";

    const std::string record =
        "<CZ name=\"材质\" namecode=\"CZ\" vartype=\"2\" compar=\"0\" specrelation=\"1\"/>";
    auto file = [&](const std::string& body) {
        return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<属性类型配置信息>" + body +
               "</属性类型配置信息>\n";
    };
    // Content, then the fault after "<path>: ", or "" when the reader uses it.
    const std::pair<std::string, std::string> cases[] = {
        {"<属性信息/>", "the root element is <属性信息>, not <属性类型配置信息>"},
        {file("<给排水 name=\"给排水\">CZ<管道><给水管>" + record + "</给水管></管道></给排水>"),
         "text where the large categories of 给排水 belong"},
        {file("<给排水 name=\"给排水\"><管道><![CDATA[x]]><给水管>" + record +
              "</给水管></管道></给排水>"),
         "text where the small categories of 给排水\\管道 belong"},
        {file("<给排水 name=\"给排水\"><管道><给水管>" + record + "材质</给水管></管道></给排水>"),
         "text where the attribute records of 给排水\\管道\\给水管 belong"},
        // Another specialty's faults are not this reader's; comments are no records.
        {file("<电气 name=\"电气\">x</电气><给排水 name=\"给排水\"><!--a--><管道><!--b-->"
              "<给水管><!--c--><?pi x?>" +
              record + "</给水管></管道></给排水>"),
         ""},
    };
    for (const auto& [content, fault] : cases) {
        host.dir.Write(L"config/AttrConfig.xml", content);
        CAttrConfigStore reader(L"给排水");
        EXPECT_EQ(reader.LastError(), fault.empty() ? "" : path + ": " + fault) << content;
        EXPECT_EQ(Lookup(reader, Key("材质")), fault.empty() ? "材质 CZ 201" : "none") << content;
        EXPECT_EQ(reader.Records().size(), fault.empty() ? 1u : 0u) << content;
    }

    // A file that can't be parsed or read at all: the reader says so after the path, and the
    // generator leaves it for the user to mend instead of starting it afresh.
    auto expectRefused = [&](const std::string& what) {
        CAttrConfigStore reader(L"给排水");
        EXPECT_TRUE(reader.Records().empty()) << what;
        EXPECT_TRUE(reader.LastError().starts_with(path + ": ")) << what << reader.LastError();
        EXPECT_GT(reader.LastError().size(), path.size() + 2) << what;
        EXPECT_EQ(reader.LastError().find('\n'), std::string::npos) << reader.LastError();
        CAttrConfigStore generator;
        try {
            generator.Save();
            ADD_FAILURE() << "generated over " << what;
        } catch (const ComError& e) {
            EXPECT_EQ(e.Error(), E_FAIL) << what;
            EXPECT_TRUE(std::string(e.what()).ends_with(": " + reader.LastError())) << e.what();
            EXPECT_EQ(generator.LastError(), reader.LastError());
        }
    };
    host.dir.Write(L"config/AttrConfig.xml", "<属性信息/>");
    expectRefused("another root");
    host.dir.Write(L"config/AttrConfig.xml", "not xml");
    expectRefused("not xml");
    EXPECT_EQ(ReadAttrFile(host), "not xml");
    ASSERT_TRUE(std::filesystem::remove(path));
    ASSERT_TRUE(std::filesystem::create_directory(path));
    expectRefused("a folder");
    EXPECT_TRUE(std::filesystem::is_empty(path));
}

TEST(AttrConfigPresenter, JoinsTheTwoHalvesIntoTheKey) {
    TestHost host;
    PipeCatalog(host);
    CAutoQdDeConfigFacade::AttrConfig();
    CQdDeConfigPresenter presenter(host.dir.Write(
        L"cfg.xml", "<?xml version=\"1.0\" encoding=\"UTF-8\"?><自动套清单定额配置信息/>"));
    auto lookup = [&](const CString& path, const CString& name) {
        AttrConfig record;
        return presenter.GetAttConfig(path, name, record) ? Text(record) : "none";
    };
    const CString small = FromUtf8(kSmallPath);
    EXPECT_EQ(lookup(small, L"材质"), "材质 CZ 110");
    // Only the joined text matters, not where it is cut.
    EXPECT_EQ(lookup(L"给排水\\管道\\", L"给水管管径"), "管径 GJ 111");
    EXPECT_EQ(lookup(small, L"\\材质"), "none");
    EXPECT_EQ(lookup(small, L"CZ"), "none");

    // A set changes the numbers only, and only in memory; a key without a record is refused
    // and adds none.
    const std::string file = ReadAttrFile(host);
    EXPECT_TRUE(presenter.SetAttConfig(L"给排水\\管道", L"\\给水管材质",
                                       AttrConfig(L"别名", L"BM", 2, 0, 1)));
    EXPECT_EQ(lookup(small, L"材质"), "材质 CZ 201");
    EXPECT_EQ(lookup(small, L"管径"), "管径 GJ 111");
    for (const CString& refused : {CString(L"颜色"), CString(L"CZ"), CString()}) {
        EXPECT_FALSE(presenter.SetAttConfig(small, refused, AttrConfig(L"", L"", 2, 0, 1)));
        EXPECT_EQ(lookup(small, refused), "none");
    }
    EXPECT_EQ(Lookup(CAttrConfigStore(L"给排水"), Key("材质")), "材质 CZ 110");

    // The presenter's store is a reader: it can't generate.
    ExpectPointerError([&] { presenter.SaveAttConfig(); });
    EXPECT_EQ(ReadAttrFile(host), file);
}
