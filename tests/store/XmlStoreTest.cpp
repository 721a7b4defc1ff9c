#include "presenter/CQdDeConfigPresenter.h"
#include "store/CXmlQdDeConfig.h"
#include "support/TestHost.h"
#include "xml/XmlDocument.h"

#include "platform/ComError.h"
#include "platform/FileSystem.h"

#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

const char* const kHead = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";

void Catalog(TestHost& host) {
    host.Add(L"给排水", L"管道", L"给水管", 1, 101);
    host.Add(L"给排水", L"管道", L"排水管", 1, 102);
    host.Add(L"给排水", L"阀门仪表", L"阀门", 2, 201);
    host.Add(L"电气", L"配电箱柜", L"配电箱柜", 1, 101);
    host.Add(L"暖通", L"风管", L"矩形风管", 1, 101);
}

CPath PathTo(int spec, int large, int small, int config = CPath::kNone) {
    CPath path;
    path.SpecId = spec;
    path.LMemberId = large;
    path.SMemberId = small;
    path.ConfigId = config;
    return path;
}

std::vector<std::string> RootChildNames(const CString& file) {
    XmlDocument doc;
    std::vector<std::string> names;
    if (doc.Load(file))
        for (XmlNode child : doc.DocumentElement().children())
            names.push_back(child.attribute("name").value());
    return names;
}

int ConfigCount(CXmlQdDeConfig& store, const CPath& path) {
    std::vector<ConfigNode*> configs;
    store.GetConfig(path, configs);
    return static_cast<int>(configs.size());
}

} // namespace

TEST(XmlStore, MissingFileIsCreatedAsReadingLeftIt) {
    TestHost host;
    Catalog(host);
    CString file = host.dir.File(L"new.xml");
    CXmlQdDeConfig store(file, L"给排水");
    // The created shape: "SMember" with a name only, "config" with its five values.
    const std::string text = host.dir.Read(file);
    EXPECT_EQ(text.rfind("<自动套清单定额配置信息 Version=\"2.5.0\">\n"
                         "  <给排水 id=\"2\" name=\"给排水\">\n"
                         "    <LMember id=\"1\" name=\"管道\">\n"
                         "      <SMember name=\"给水管\">\n        <Config>\n"
                         "          <config id=\"1\" bDefault=\"1\" LastQdId=\"0\" "
                         "LastConditionId=\"0\" LastDeId=\"0\" />",
                         0),
              0u)
        << text;
    EXPECT_EQ(ConfigCount(store, PathTo(2, 2, 201)), 1);
    EXPECT_TRUE(host.messages.Messages().empty());

    // The created shape loads as the saved shape does.
    CXmlQdDeConfig again(file, L"给排水");
    EXPECT_NE(again.GetConfig(PathTo(2, 1, 102, 1)), nullptr);
    EXPECT_EQ(host.dir.Read(file), text) << "opening an existing file writes nothing";

    host.data.profile.version = L"";
    CXmlQdDeConfig versionless(host.dir.File(L"v.xml"), L"给排水");
    EXPECT_NE(host.dir.Read(host.dir.File(L"v.xml")).find("Version=\"1.0.0\""), std::string::npos);
}

TEST(XmlStore, SaveRewritesOnlyTheCurrentSpecialtyAndMovesItLast) {
    TestHost host;
    Catalog(host);
    const std::string hvac =
        "<暖通 id='4' name='暖通'><LMember id='1' name='风管'><SMember name='矩形风管'>"
        "<Config><Config id='1' bDefault='1'/></Config></SMember></LMember>"
        "<LMember id='9' name='不在工程里的大类'/></暖通><x/>";
    const std::string power = "<电气 id='3' name='电气'><LMember name='配电箱柜'/></电气>";
    CString file = host.dir.Write(
        L"three.xml",
        std::string(kHead) + "<自动套清单定额配置信息 Version='1.0' CalMode='清单版'>" + hvac +
            "<给排水 id='2' name='给排水'><LMember id='1' name='管道'>"
            "<SMember id='101' name='给水管' LastConfigId='3'><Config>"
            "<Config id='3' LastQdId='2' LastConditionId='1' bDefault='0' LastDeId='0'>"
            "<Condition><condition id='1' strCFType='管径' bEqual='true' strEqualoperator='＝' "
            "strValue='50'/></Condition><Qd><qd id='2' strQdId='031001001001'><De/></qd></Qd>"
            "<De/></Config><Config id='1' bDefault='1'/></Config></SMember></LMember></给排水>" +
            power + "</自动套清单定额配置信息>");
    CXmlQdDeConfig store(file, L"给排水");
    ConfigNode* config = store.GetConfig(PathTo(2, 1, 101, 3));
    ASSERT_NE(config, nullptr);
    EXPECT_EQ(config->GetConditionString(), L"管径＝50;");
    EXPECT_EQ(config->GetQd(2)->m_qd.strQdId, L"031001001001");
    int id = 0;
    ASSERT_TRUE(store.AddConfig(PathTo(2, 1, 101), id));
    EXPECT_EQ(id, 4);

    ASSERT_TRUE(store.Save());
    EXPECT_EQ(RootChildNames(file), (std::vector<std::string>{"暖通", "", "电气", "给排水"}));
    // The rest keeps its bytes, quotes included; only the stamp changes.
    const std::string saved = host.dir.Read(file);
    EXPECT_EQ(saved.rfind(std::string(kHead) +
                              "<自动套清单定额配置信息 Version='2.5.0' CalMode='清单版'>" + hvac +
                              power + "\n  <给排水",
                          0),
              0u)
        << saved;

    CXmlQdDeConfig reread(file, L"给排水");
    std::vector<ConfigNode*> configs;
    ASSERT_TRUE(reread.GetConfig(PathTo(2, 1, 101), configs));
    ASSERT_EQ(configs.size(), 3u);
    EXPECT_EQ(configs[0]->GetId(), 3);
    EXPECT_EQ(configs[1]->GetId(), 4);
    EXPECT_EQ(configs[0]->GetQd(2)->m_qd.strQdId, L"031001001001");
}

TEST(XmlStore, SaveOverACorruptFileKeepsOnlyTheCurrentSpecialty) {
    TestHost host;
    Catalog(host);
    CString file = host.dir.File(L"c.xml");
    CXmlQdDeConfig store(file, L"给排水");
    host.dir.Write(L"c.xml", "<自动套清单定额配置信息><暖通 name='暖通'>");
    ASSERT_TRUE(store.Save());
    EXPECT_EQ(RootChildNames(file), std::vector<std::string>{"给排水"});
}

TEST(XmlStore, ReloadSavesFirstOnlyForAnotherFile) {
    TestHost host;
    Catalog(host);
    CString file = host.dir.File(L"Main.xml");
    CXmlQdDeConfig store(file, L"给排水");
    std::string before = host.dir.Read(file);
    int id = 0;
    store.AddConfig(PathTo(2, 1, 101), id);

    // The open file by another spelling is read anew without a save: the edit is gone.
    EXPECT_TRUE(store.ReLoad(host.dir.File(L"./Main.xml")));
    EXPECT_EQ(host.dir.Read(file), before);
    EXPECT_EQ(ConfigCount(store, PathTo(2, 1, 101)), 1);

    // Another case names another file here: the open one is saved before the switch.
    store.AddConfig(PathTo(2, 1, 101), id);
    host.dir.Write(L"main.xml", before);
    ASSERT_TRUE(store.ReLoad(host.dir.File(L"main.xml")));
    EXPECT_NE(host.dir.Read(file), before) << "Main.xml was saved first";
    ASSERT_TRUE(store.ReLoad(file));
    host.messages.Clear();

    store.AddConfig(PathTo(2, 1, 101), id);
    CString missing = host.dir.File(L"missing.xml");
    EXPECT_FALSE(store.ReLoad(missing));
    EXPECT_EQ(host.messages.Texts(), std::vector<CString>{L"文件不存在，请重新选择调用文件!"});
    EXPECT_EQ(host.messages.Messages()[0].flags, 73776u);
    EXPECT_EQ(store.GetFilePath(), file);
    EXPECT_EQ(ConfigCount(store, PathTo(2, 1, 101)), 3) << "the tree is kept";
}

TEST(XmlStore, BadFilesAreRefusedAndLeftUntouched) {
    TestHost host;
    Catalog(host);
    CString good = host.dir.File(L"good.xml");
    CXmlQdDeConfig store(good, L"给排水");
    int id = 0;
    store.AddConfig(PathTo(2, 1, 101), id);
    store.Save();

    std::vector<std::pair<const wchar_t*, std::string>> bad = {
        {L"text.xml", "this is not xml at all"},
        {L"empty.xml", ""},
        {L"other-root.xml",
         std::string(kHead) + "<其它根元素><给排水 name='给排水'/></其它根元素>"},
        {L"head.xml",
         std::string("\x10\x00\x00\x00\x05\x00\x00\x00", 8) + kHead + "<自动套清单定额配置信息/>"},
        {L"encoding.xml", "<?xml version=\"1.0\" encoding=\"UTB-8\"?><自动套清单定额配置信息/>"},
        // What a conforming parser refuses though a lenient one reads it (the document tests
        // go through every such fault).
        {L"twice.xml",
         std::string(kHead) + "<自动套清单定额配置信息 Version=\"1\" Version=\"2\"/>"},
    };
    for (const auto& [name, bytes] : bad) {
        CString path = host.dir.Write(name, bytes);
        EXPECT_FALSE(store.ReLoad(path)) << ToUtf8(CString(name));
        EXPECT_EQ(store.GetFilePath(), good);
        EXPECT_EQ(ConfigCount(store, PathTo(2, 1, 101)), 2);
        // A store opened on it starts from the defaults (or, under a foreign document element,
        // holds nothing) and writes nothing.
        CXmlQdDeConfig fresh(path, L"给排水");
        EXPECT_NE(fresh.LoadError().find(ToUtf8(path)), std::string::npos) << fresh.LoadError();
        bool foreignRoot = CString(name) == L"other-root.xml";
        EXPECT_EQ(ConfigCount(fresh, PathTo(2, 1, 101)), foreignRoot ? 0 : 1);
        EXPECT_EQ(host.dir.Read(path), bytes) << ToUtf8(CString(name));
    }
    EXPECT_TRUE(host.messages.Messages().empty());
    EXPECT_EQ(CXmlQdDeConfig(good, L"给排水").LoadError(), "");
    CString error;
    EXPECT_FALSE(RefreshAutoConfig(error, host.dir.File(L"twice.xml")));
    EXPECT_EQ(error, L"文件功能不匹配");
}

TEST(XmlStore, OtherSpecialtiesStayAsOnDiskWithTheirEntitiesAndLaterChanges) {
    TestHost host;
    Catalog(host);
    const std::string doctype = "<!DOCTYPE 自动套清单定额配置信息 [\n<!ENTITY co \"公司\">\n]>\n";
    const std::string hvac = "<暖通 id='4' name='暖通'><LMember id='1' name='风管'>"
                             "<SMember id='101' name='矩形风管' note='&co;甲'/></LMember></暖通>";
    CString file = host.dir.Write(
        L"entities.xml",
        std::string(kHead) + doctype + "<自动套清单定额配置信息 Version='1.0'>" + hvac +
            "<给排水 id='2' name='给排水'><LMember id='1' name='管道'>"
            "<SMember id='101' name='给水管' LastConfigId='3'><Config>"
            "<Config id='3' LastConditionId='1' bDefault='0'><Condition><condition id='1' "
            "strCFType='材质' bEqual='true' strEqualoperator='＝' strValue='&co;供'/></Condition>"
            "</Config><Config id='1' bDefault='1'/></Config></SMember></LMember></给排水>"
            "</自动套清单定额配置信息>\n");
    CXmlQdDeConfig store(file, L"给排水");
    ASSERT_EQ(store.LoadError(), "");
    ASSERT_NE(store.GetConfig(PathTo(2, 1, 101, 3)), nullptr);
    EXPECT_EQ(store.GetConfig(PathTo(2, 1, 101, 3))->GetConditionString(), L"材质＝公司供;");

    // Another program changes the file meanwhile, keeping its size but moving the parts: the
    // document element's tag grows by what the other specialty loses.
    std::string changed = host.dir.Read(file);
    changed.replace(changed.find("Version='1.0'"), 13, "Version='1.0.1'");
    changed.replace(changed.find("id='101' name='矩形风管'"), 8, "id='1'");
    host.dir.Write(L"entities.xml", changed);
    int id = 0;
    ASSERT_TRUE(store.AddConfig(PathTo(2, 1, 101), id));
    ASSERT_TRUE(store.Save());
    const std::string saved = host.dir.Read(file);
    std::string hvacNow = hvac;
    hvacNow.replace(hvacNow.find("id='101' name='矩形风管'"), 8, "id='1'");
    EXPECT_EQ(saved.rfind(std::string(kHead) + doctype +
                              "<自动套清单定额配置信息 Version='2.5.0'>" + hvacNow + "\n  <给排水",
                          0),
              0u)
        << saved;
    EXPECT_NE(saved.find("strValue=\"公司供\""), std::string::npos) << saved;
    CXmlQdDeConfig again(file, L"给排水");
    EXPECT_EQ(ConfigCount(again, PathTo(2, 1, 101)), 3);
    EXPECT_EQ(again.GetConfig(PathTo(2, 1, 101, 3))->GetConditionString(), L"材质＝公司供;");
    CXmlQdDeConfig other(file, L"暖通");
    EXPECT_EQ(other.LoadError(), "");

    // A specialty an entity writes out has no bytes of its own: the save rewrites the file
    // from its DOM, and the specialty is there once.
    CString produced = host.dir.Write(
        L"produced.xml", "<!DOCTYPE 自动套清单定额配置信息 [<!ENTITY s \"<给排水 id='2' "
                         "name='给排水'/>\">]><自动套清单定额配置信息>&s;" +
                             hvac.substr(0, hvac.find(" note")) + "/></LMember></暖通>" +
                             "</自动套清单定额配置信息>");
    CXmlQdDeConfig fromEntity(produced, L"给排水");
    ASSERT_EQ(fromEntity.LoadError(), "");
    ASSERT_TRUE(fromEntity.AddConfig(PathTo(2, 1, 101), id));
    ASSERT_TRUE(fromEntity.Save());
    EXPECT_EQ(RootChildNames(produced), (std::vector<std::string>{"暖通", "给排水"}));
    EXPECT_EQ(ConfigCount(fromEntity, PathTo(2, 1, 101)), 2);
    EXPECT_EQ(
        ConfigCount(*std::make_unique<CXmlQdDeConfig>(produced, L"给排水"), PathTo(2, 1, 101)), 2);
}

TEST(XmlStore, SaveKeepsLinksAndClearsWhatKilledSavesLeft) {
    TestHost host;
    Catalog(host);
    const CString shared = host.dir.File(L"shared/公司模板.xml");
    ASSERT_TRUE(MakeDirectory(host.dir.File(L"shared")));
    const CString link = host.dir.File(L"link.xml");
    ASSERT_EQ(::symlink("shared/公司模板.xml", ToUtf8(link).c_str()), 0);
    // A dangling link: opening creates the file it points to, and the link stays.
    CXmlQdDeConfig store(link, L"给排水");
    int id = 0;
    ASSERT_TRUE(store.AddConfig(PathTo(2, 1, 101), id));
    // What a save killed before its rename leaves; a live writer's file is not touched.
    const CString stale = host.dir.Write(L"shared/.公司模板.xml.tmp-999999999-0", "half");
    const CString live = host.dir.Write(
        L"shared/.公司模板.xml.tmp-" + FromUtf8(std::to_string(::getppid())) + L"-3", "busy");
    ASSERT_TRUE(store.Save());
    EXPECT_TRUE(std::filesystem::is_symlink(ToUtf8(link)));
    EXPECT_EQ(ConfigCount(*std::make_unique<CXmlQdDeConfig>(shared, L"给排水"), PathTo(2, 1, 101)),
              2);
    EXPECT_FALSE(PathExists(stale));
    EXPECT_TRUE(PathExists(live));
}

// Runs `check` in a child process as an ordinary user (nobody) when the tests run as root,
// since root may read and write whatever the mode says. Gives the child's exit status.
int AsOrdinaryUser(const std::function<int()>& check) {
    const pid_t pid = ::fork();
    if (pid == 0) {
        if (::geteuid() == 0 && (::setgid(65534) != 0 || ::setuid(65534) != 0))
            ::_exit(90);
        ::_exit(check());
    }
    int status = 0;
    ::waitpid(pid, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 99;
}

TEST(XmlStore, SaveNeverReplacesAFileTheUserMayNotReadOrWrite) {
    TestHost host;
    Catalog(host);
    ::chmod(ToUtf8(host.dir.Path()).c_str(), 0777);
    const std::string bytes = std::string(kHead) +
                              "<自动套清单定额配置信息 Version=\"1\">"
                              "<电气 id=\"1\" name=\"电气\"/></自动套清单定额配置信息>";
    for (const mode_t mode : {0444, 0000}) {
        SCOPED_TRACE(mode);
        const CString file = host.dir.Write(L"guarded.xml", bytes);
        ::chmod(ToUtf8(file).c_str(), mode);
        const int status = AsOrdinaryUser([&] {
            CXmlQdDeConfig store(file, L"给排水");
            int id = 0;
            store.AddConfig(PathTo(2, 1, 101), id);
            try {
                store.Save();
            } catch (const ComError& e) {
                return std::string(e.what()).find("guarded.xml") != std::string::npos ? 0 : 2;
            }
            return 1; // saved
        });
        EXPECT_EQ(status, 0);
        ::chmod(ToUtf8(file).c_str(), 0644);
        EXPECT_EQ(host.dir.Read(file), bytes);
    }
}

TEST(XmlStore, SaveAsCopiesButStaysOnTheOpenFile) {
    TestHost host;
    Catalog(host);
    CString file = host.dir.File(L"a.xml");
    CString target = host.dir.File(L"b.xml");
    host.dir.Write(L"a.xml", std::string(kHead) +
                                 "<自动套清单定额配置信息>"
                                 "<电气 id='3' name='电气'/></自动套清单定额配置信息>");
    CXmlQdDeConfig store(file, L"给排水");
    int id = 0;
    store.AddConfig(PathTo(2, 1, 101), id);
    ASSERT_TRUE(store.SaveAs(target));
    EXPECT_EQ(store.GetFilePath(), file);
    EXPECT_EQ(RootChildNames(target), (std::vector<std::string>{"电气", "给排水"}));
    EXPECT_EQ(RootChildNames(file), std::vector<std::string>{"电气"}) << "not saved";

    CXmlQdDeConfig copy(target, L"给排水");
    EXPECT_EQ(ConfigCount(copy, PathTo(2, 1, 101)), 2);

    // A plain save after the copy goes to the open file, not to the copy.
    const std::string copied = host.dir.Read(target);
    store.AddConfig(PathTo(2, 1, 101), id);
    ASSERT_TRUE(store.Save());
    CXmlQdDeConfig saved(file, L"给排水");
    EXPECT_EQ(ConfigCount(saved, PathTo(2, 1, 101)), 3);
    EXPECT_EQ(host.dir.Read(target), copied);
    ASSERT_TRUE(store.SaveAs(file)) << "its own name is a plain save";
    EXPECT_EQ(RootChildNames(file), (std::vector<std::string>{"电气", "给排水"}));

    EXPECT_FALSE(store.SaveAs(host.dir.File(L"no/such/folder/c.xml")));
    ASSERT_EQ(host.messages.Messages().size(), 1u);
    EXPECT_EQ(host.messages.Messages()[0].text, L"文件另存为出错,请稍候在试!");
    EXPECT_EQ(store.GetFilePath(), file);
}

TEST(XmlStore, NewFileCopiesTheTemplate) {
    TestHost host;
    Catalog(host);
    CXmlQdDeConfig store(host.dir.File(L"a.xml"), L"给排水");
    CString made = host.dir.File(L"made.xml");
    EXPECT_FALSE(store.NewFile(made)) << "no template and no file";
    EXPECT_EQ(host.messages.Texts(), std::vector<CString>{L"文件不存在，请重新选择调用文件!"});

    host.dir.Write(L"config/QdDeConfig.def",
                   std::string(kHead) + "<自动套清单定额配置信息 Version='1.0.0'/>");
    ASSERT_TRUE(store.NewFile(made));
    EXPECT_EQ(store.GetFilePath(), made);
    EXPECT_EQ(ConfigCount(store, PathTo(2, 2, 201)), 1);
}

TEST(XmlStore, LookupsMatchOnlyTheCurrentSpecialty) {
    TestHost host;
    Catalog(host);
    CString file =
        host.dir.Write(L"n.xml", std::string(kHead) + "<自动套清单定额配置信息><note/><!-- c -->"
                                                      "<给排水 id='2' name='给排水'/>"
                                                      "<给排水 id='2' name='第二个'/>"
                                                      "</自动套清单定额配置信息>");
    CXmlQdDeConfig store(file, L"给排水");
    EXPECT_NE(store.GetConfig(PathTo(2, 1, 101, 1)), nullptr);
    EXPECT_EQ(store.GetConfig(PathTo(3, 1, 101, 1)), nullptr);
    EXPECT_EQ(store.GetConfig(PathTo(2, 1, 999, 1)), nullptr);
    EXPECT_EQ(store.GetConfig(CPath()), nullptr);
    std::vector<ConfigNode*> untouched(2, nullptr);
    EXPECT_FALSE(store.GetConfig(PathTo(3, 1, 101), untouched));
    EXPECT_EQ(untouched.size(), 2u);

    CXmlQdDeConfig power(file, L"电气");
    EXPECT_EQ(power.GetConfig(PathTo(2, 1, 101, 1)), nullptr);
    EXPECT_NE(power.GetConfig(PathTo(3, 1, 101, 1)), nullptr);
}

TEST(XmlStore, SavesKeepTheFileEncodingAndDeclaration) {
    TestHost host;
    Catalog(host);
    // "<?xml ... encoding="GB2312"?><自动套清单定额配置信息 Version="1"/>" in GB2312.
    std::string gb = "<?xml version=\"1.0\" encoding=\"GB2312\"?>\n<"
                     "\xD7\xD4\xB6\xAF\xCC\xD7\xC7\xE5\xB5\xA5\xB6\xA8\xB6\xEE\xC5\xE4\xD6\xC3"
                     "\xD0\xC5\xCF\xA2 Version=\"1\"/>";
    CString gbFile = host.dir.Write(L"gb.xml", gb);
    {
        CXmlQdDeConfig store(gbFile, L"给排水");
        int id = 0;
        ASSERT_TRUE(store.AddConfig(PathTo(2, 1, 101), id));
        ASSERT_TRUE(store.Save());
    }
    // The version stamp after the save is written in the file's encoding too.
    std::string saved = host.dir.Read(gbFile);
    EXPECT_EQ(saved.rfind("<?xml version=\"1.0\" encoding=\"GB2312\"?>", 0), 0u);
    EXPECT_NE(saved.find("Version=\"2.5.0\""), std::string::npos);
    // "给排水" in GB2312, and no UTF-8 of it.
    EXPECT_NE(saved.find("\xB8\xF8\xC5\xC5\xCB\xAE"), std::string::npos);
    EXPECT_EQ(saved.find("给排水"), std::string::npos);
    CXmlQdDeConfig gbAgain(gbFile, L"给排水");
    EXPECT_EQ(ConfigCount(gbAgain, PathTo(2, 1, 101)), 2);
}
