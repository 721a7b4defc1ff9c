#include "platform/ComError.h"
#include "platform/FileSystem.h"
#include "presenter/CAutoQdDeConfigFacade.h"
#include "presenter/CQdDeConfigPresenter.h"
#include "store/CAttrConfigStore.h"
#include "support/TestHost.h"
#include "xml/XmlDocument.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

namespace {

const char* const kSmallPath = "给排水\\管道\\给水管";

// Appends an attribute to a small category of the host catalog, which must exist.
void AddAttr(TestHost& host, const CString& spec, const CString& large, const CString& small,
             const CString& name, const CString& code) {
    for (auto& s : host.data.catalog)
        if (s.name == spec)
            for (auto& l : s.larges)
                if (l.name == large)
                    for (auto& m : l.smalls)
                        if (m.name == small) {
                            m.attributes.push_back({L"F_" + code, name, L"K_" + code, code});
                            return;
                        }
    FAIL() << "no such small category";
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

void ExpectRecord(const AttrConfig& r, const CString& name, const CString& code, int vartype,
                  int compar, int specrelation) {
    EXPECT_EQ(r.name, name);
    EXPECT_EQ(r.namecode, code);
    EXPECT_EQ(r.vartype, vartype);
    EXPECT_EQ(r.compar, compar);
    EXPECT_EQ(r.specrelation, specrelation);
}

} // namespace

TEST(AttrConfigGenerator, WritesEveryLevelAndTheReaderKeysByPathAndDisplayName) {
    TestHost host;
    PipeCatalog(host);
    CAutoQdDeConfigFacade::AttrConfig();

    EXPECT_EQ(ElementAt(host, {"属性类型配置信息", "给排水"})
                  .rfind("<给排水 id=\"2\" name=\"给排水\">", 0),
              0u);
    EXPECT_EQ(ElementAt(host, {"属性类型配置信息", "给排水", "管道"})
                  .rfind("<管道 id=\"1\" name=\"管道\">", 0),
              0u);
    EXPECT_EQ(ElementAt(host, {"属性类型配置信息", "给排水", "管道", "给水管", "CZ"}),
              "<CZ name=\"材质\" namecode=\"CZ\" vartype=\"1\" compar=\"1\" specrelation=\"0\"/>");
    EXPECT_EQ(ElementAt(host, {"属性类型配置信息", "给排水", "管道", "给水管"})
                  .rfind("<给水管 id=\"101\" name=\"给水管\">", 0),
              0u);
    EXPECT_EQ(ElementAt(host, {"属性类型配置信息", "电气", "配电箱柜", "配电箱", "AZGD"}),
              "<AZGD name=\"安装高度\" namecode=\"AZGD\" vartype=\"1\" compar=\"0\" "
              "specrelation=\"1\"/>");
    EXPECT_EQ(
        ElementAt(host, {"属性类型配置信息", "电气"}).rfind("<电气 id=\"3\" name=\"电气\">", 0),
        0u);

    CAttrConfigStore reader(L"给排水");
    EXPECT_EQ(reader.GetFilePath(), AttrFile(host));
    EXPECT_EQ(reader.Records().size(), 2u) << "only the records of its own specialty";
    AttrConfig record;
    ASSERT_TRUE(reader.GetAttConfig(FromUtf8(kSmallPath) + L"材质", record));
    ExpectRecord(record, L"材质", L"CZ", 1, 1, 0);
    ASSERT_TRUE(reader.GetAttConfig(FromUtf8(kSmallPath) + L"管径", record));
    ExpectRecord(record, L"管径", L"GJ", 1, 1, 1);
    // The display name follows the path directly; the code is no key.
    EXPECT_FALSE(reader.GetAttConfig(FromUtf8(kSmallPath) + L"\\材质", record));
    EXPECT_FALSE(reader.GetAttConfig(FromUtf8(kSmallPath) + L"CZ", record));
    EXPECT_FALSE(reader.GetAttConfig(L"给排水\\管道材质", record));
    EXPECT_FALSE(reader.GetAttConfig(L"电气\\配电箱柜\\配电箱安装高度", record));
    ExpectRecord(record, L"管径", L"GJ", 1, 1, 1); // a miss leaves the output alone
}

TEST(AttrConfigGenerator, TypesDecideComparisonAndMaterialAndVartypeIsAlwaysOne) {
    struct Case {
        const char* type;
        int compar;
        int specrelation;
    };
    const Case cases[] = {{"1", 0, 1},  {"2", 0, 1}, {"10", 0, 1}, {"11", 0, 1}, {"3", 1, 1},
                          {"8", 1, 1},  {"9", 1, 0}, {"4", 1, 1},  {"5", 1, 1},  {"6", 1, 1},
                          {"7", 1, 1},  {"0", 1, 1}, {"12", 1, 1}, {"-1", 1, 1}, {"", 1, 1},
                          {"x9", 1, 1}, {" 9", 1, 0}};
    TestHost host;
    host.Add(L"给排水", L"管道", L"给水管", 1, 101);
    std::vector<std::pair<std::string, std::string>> types;
    for (size_t i = 0; i < std::size(cases); ++i) {
        std::string code = "T" + std::to_string(i);
        AddAttr(host, L"给排水", L"管道", L"给水管", FromUtf8("属性" + code), FromUtf8(code));
        types.emplace_back(code, cases[i].type);
    }
    WriteAttrInfo(host, types);
    CAttrConfigStore generator;
    EXPECT_TRUE(generator.Save());
    EXPECT_TRUE(generator.Records().empty()) << "the generator holds no records";

    CAttrConfigStore reader(L"给排水");
    ASSERT_EQ(reader.Records().size(), std::size(cases));
    for (size_t i = 0; i < std::size(cases); ++i) {
        std::string code = "T" + std::to_string(i);
        SCOPED_TRACE(std::string("type \"") + cases[i].type + "\"");
        AttrConfig record;
        ASSERT_TRUE(reader.GetAttConfig(FromUtf8(kSmallPath) + FromUtf8("属性" + code), record));
        ExpectRecord(record, FromUtf8("属性" + code), FromUtf8(code), 1, cases[i].compar,
                     cases[i].specrelation);
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
    CAttrConfigStore reader(L"给排水");
    AttrConfig record;
    ASSERT_TRUE(reader.GetAttConfig(L"给排水\\旧大类\\旧小类材质", record));
    ExpectRecord(record, L"材质", L"CZ", 2, 0, 0);
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
    AttrConfig record(L"x", L"x", 5, 5, 5);
    ASSERT_TRUE(reader.GetAttConfig(FromUtf8(kSmallPath), record));
    ExpectRecord(record, L"", L"", 0, 0, 0);
    EXPECT_FALSE(reader.GetAttConfig(FromUtf8(kSmallPath) + L"颜色", record));
    ASSERT_TRUE(reader.GetAttConfig(FromUtf8(kSmallPath) + L"材质", record));
    ExpectRecord(record, L"材质", L"CZ", 1, 1, 1);
}

TEST(AttrConfigGenerator, BuildingSpecialtiesAreLeftOutAndFindNothing) {
    TestHost host;
    PipeCatalog(host);
    host.Add(L"建筑", L"墙", L"砌体墙", 1, 101);
    AddAttr(host, L"建筑", L"墙", L"砌体墙", L"材质", L"CZ");
    host.Add(L"装饰建筑", L"吊顶", L"板材吊顶", 1, 101);
    AddAttr(host, L"装饰建筑", L"吊顶", L"板材吊顶", L"材质", L"CZ");
    CAttrConfigStore().Save();

    XmlDocument doc;
    ASSERT_TRUE(doc.Load(AttrFile(host)));
    std::vector<std::string> specs;
    for (XmlNode child : doc.DocumentElement().children())
        specs.push_back(child.name());
    EXPECT_EQ(specs, (std::vector<std::string>{"给排水", "电气"}));

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

    auto expectPointerError = [](CAttrConfigStore& store) {
        try {
            store.Save();
            ADD_FAILURE() << "Save gave no error";
        } catch (const ComError& e) {
            EXPECT_EQ(e.Error(), E_POINTER);
        }
    };
    {
        SCOPED_TRACE("reader form");
        CAttrConfigStore reader(L"给排水");
        expectPointerError(reader);
        EXPECT_EQ(ReadAttrFile(host), existing);
    }
    {
        SCOPED_TRACE("type file with another root");
        host.dir.Write(L"config/AttributeInformation.xml", "<属性信息><CZ type=\"1\"/></属性信息>");
        CAttrConfigStore generator;
        expectPointerError(generator);
        EXPECT_EQ(ReadAttrFile(host), existing);
    }
    {
        SCOPED_TRACE("no type file, no attribute file");
        ASSERT_TRUE(
            std::filesystem::remove(ToUtf8(host.ConfigDir() + L"/AttributeInformation.xml")));
        ASSERT_TRUE(std::filesystem::remove(ToUtf8(AttrFile(host))));
        CAttrConfigStore generator;
        expectPointerError(generator);
        EXPECT_FALSE(PathExists(AttrFile(host)));
    }
}

TEST(AttrConfigReader, SetChangesOnlyTheNumbersAndOnlyInMemory) {
    TestHost host;
    PipeCatalog(host);
    CAttrConfigStore().Save();
    const std::string file = ReadAttrFile(host);

    CAttrConfigStore reader(L"给排水");
    const CString key = FromUtf8(kSmallPath) + L"材质";
    EXPECT_TRUE(reader.SetAttConfig(key, AttrConfig(L"别名", L"BM", 0, 0, 1)));
    AttrConfig record;
    ASSERT_TRUE(reader.GetAttConfig(key, record));
    ExpectRecord(record, L"材质", L"CZ", 0, 0, 1);
    ASSERT_TRUE(reader.GetAttConfig(FromUtf8(kSmallPath) + L"管径", record));
    ExpectRecord(record, L"管径", L"GJ", 1, 1, 1);

    const auto records = reader.Records();
    EXPECT_FALSE(reader.SetAttConfig(FromUtf8(kSmallPath) + L"CZ", AttrConfig(L"", L"", 2, 0, 0)));
    EXPECT_FALSE(reader.SetAttConfig(L"", AttrConfig(L"", L"", 2, 0, 0)));
    ASSERT_EQ(reader.Records().size(), records.size());
    for (const auto& [k, r] : records) {
        SCOPED_TRACE(ToUtf8(k));
        ASSERT_TRUE(reader.GetAttConfig(k, record));
        ExpectRecord(record, r.name, r.namecode, r.vartype, r.compar, r.specrelation);
    }

    EXPECT_EQ(ReadAttrFile(host), file);
    CAttrConfigStore again(L"给排水");
    ASSERT_TRUE(again.GetAttConfig(key, record));
    ExpectRecord(record, L"材质", L"CZ", 1, 1, 0);
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
    AttrConfig record;
    ASSERT_TRUE(reader.GetAttConfig(L"给排水\\管道\\给水管材质", record));
    ExpectRecord(record, L"材质", L"B", 2, 0, 0);
    ASSERT_TRUE(reader.GetAttConfig(L"给排水\\管道\\给水管管径", record));
    ExpectRecord(record, L"管径", L"C", 7, 0, 0);
    EXPECT_FALSE(reader.GetAttConfig(L"给排水\\风管\\x材质", record));
}

TEST(AttrConfigReader, MissingOrForeignFileGivesAnEmptyReader) {
    TestHost host;
    PipeCatalog(host);
    AttrConfig record;
    {
        CAttrConfigStore reader(L"给排水");
        EXPECT_TRUE(reader.Records().empty());
        EXPECT_FALSE(reader.GetAttConfig(FromUtf8(kSmallPath) + L"材质", record));
        EXPECT_FALSE(PathExists(AttrFile(host))) << "reading creates no file";
    }
    {
        host.dir.Write(L"config/AttrConfig.xml", "not xml");
        CAttrConfigStore reader(L"给排水");
        EXPECT_TRUE(reader.Records().empty());
        EXPECT_EQ(ReadAttrFile(host), "not xml");
    }
}

TEST(AttrConfigPresenter, JoinsTheTwoHalvesIntoTheKey) {
    TestHost host;
    PipeCatalog(host);
    CAutoQdDeConfigFacade::AttrConfig();
    CQdDeConfigPresenter presenter(host.dir.Write(
        L"cfg.xml", "<?xml version=\"1.0\" encoding=\"UTF-8\"?><自动套清单定额配置信息/>"));

    AttrConfig record;
    ASSERT_TRUE(presenter.GetAttConfig(FromUtf8(kSmallPath), L"材质", record));
    ExpectRecord(record, L"材质", L"CZ", 1, 1, 0);
    // Only the joined text matters, not where it is cut.
    ASSERT_TRUE(presenter.GetAttConfig(L"给排水\\管道\\", L"给水管管径", record));
    ExpectRecord(record, L"管径", L"GJ", 1, 1, 1);
    EXPECT_FALSE(presenter.GetAttConfig(FromUtf8(kSmallPath), L"\\材质", record));
    EXPECT_FALSE(presenter.GetAttConfig(FromUtf8(kSmallPath), L"CZ", record));

    EXPECT_TRUE(
        presenter.SetAttConfig(L"给排水\\管道", L"\\给水管材质", AttrConfig(L"", L"", 2, 0, 1)));
    ASSERT_TRUE(presenter.GetAttConfig(FromUtf8(kSmallPath), L"材质", record));
    ExpectRecord(record, L"材质", L"CZ", 2, 0, 1);
    EXPECT_FALSE(
        presenter.SetAttConfig(FromUtf8(kSmallPath), L"颜色", AttrConfig(L"", L"", 2, 0, 1)));

    // The presenter's store is a reader: it can't generate.
    const std::string file = ReadAttrFile(host);
    try {
        presenter.SaveAttConfig();
        ADD_FAILURE() << "SaveAttConfig gave no error";
    } catch (const ComError& e) {
        EXPECT_EQ(e.Error(), E_POINTER);
    }
    EXPECT_EQ(ReadAttrFile(host), file);
}
