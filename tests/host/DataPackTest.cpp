#include "host/datapack/DataPack.h"
#include "support/TempDir.h"

#include <pugixml.hpp>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <optional>
#include <regex>
#include <set>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace fs = std::filesystem;

namespace {

// Sets or clears an environment variable for the scope, restoring the old value after.
class EnvScope {
public:
    EnvScope(const char* name, const char* value) : m_name(name) {
        if (const char* old = std::getenv(name))
            m_old = old;
        if (value)
            ::setenv(name, value, 1);
        else
            ::unsetenv(name);
    }
    ~EnvScope() {
        if (m_old)
            ::setenv(m_name.c_str(), m_old->c_str(), 1);
        else
            ::unsetenv(m_name.c_str());
    }
    EnvScope(const EnvScope&) = delete;
    EnvScope& operator=(const EnvScope&) = delete;

private:
    std::string m_name;
    std::optional<std::string> m_old;
};

std::string U8(const CString& text) {
    return ToUtf8(text);
}

// Texts joined with "|", to compare the fields of one record at once.
std::string Joined(std::initializer_list<CString> parts) {
    std::string out;
    for (const CString& part : parts)
        out += (out.empty() ? "" : "|") + U8(part);
    return out;
}

// Relative paths of the regular files under a folder.
std::set<std::string> FilesUnder(const CString& folder) {
    std::set<std::string> files;
    fs::path root(U8(folder));
    for (const auto& entry : fs::recursive_directory_iterator(root))
        if (entry.is_regular_file())
            files.insert(fs::relative(entry.path(), root).string());
    return files;
}

std::string Replaced(std::string text, const std::string& from, const std::string& to) {
    size_t at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    if (at != std::string::npos)
        text.replace(at, from.size(), to);
    return text;
}

// The attribute code the bundled pack leaves out of AttributeInformation.xml on purpose, so
// that the path of an unknown code is exercised (docs/data-pack.md says which).
const CString kCodeWithoutType = L"FL";

} // namespace

TEST(DataPackTest, BundledPackHoldsItsInvariants) {
    TempDir config;
    HostData data;
    CString error;
    // A separate configuration folder: loading the bundled pack must not write into it.
    ASSERT_TRUE(LoadDataPack({BundledPackDir(), L"", config.File(L"cfg")}, data, error))
        << U8(error);

    const std::vector<std::string> specs = {"建筑", "给排水", "电气", "暖通", "消防", "弱电"};
    ASSERT_EQ(data.catalog.size(), specs.size());
    // Ids follow the pack's scheme (parent id * 100 + position), so they are unique as well.
    // Names, drop keys and code syntax the loader checks itself; fields it takes as they are.
    const std::regex upperCode("[A-Z][A-Z0-9]*");
    std::set<CString> usedCodes;
    std::map<std::string, int> attTypes; // by "spec\\large\\small"
    for (size_t i = 0; i < specs.size(); ++i) {
        const HostSpecialty& spec = data.catalog[i];
        EXPECT_EQ(spec.id, static_cast<int>(i) + 1);
        EXPECT_EQ(U8(spec.name), specs[i]);
        for (size_t l = 0; l < spec.larges.size(); ++l) {
            const HostLargeCategory& large = spec.larges[l];
            EXPECT_EQ(large.id, spec.id * 100 + static_cast<int>(l) + 1) << U8(large.name);
            for (size_t s = 0; s < large.smalls.size(); ++s) {
                const HostSmallCategory& small = large.smalls[s];
                const std::string path = specs[i] + "\\" + U8(large.name) + "\\" + U8(small.name);
                EXPECT_EQ(small.id, large.id * 100 + static_cast<int>(s) + 1) << path;
                attTypes[path] = small.attType;
                for (const auto& attr : small.attributes) {
                    EXPECT_TRUE(std::regex_match(U8(attr.field), upperCode)) << path;
                    EXPECT_TRUE(std::regex_match(U8(attr.code), upperCode)) << path;
                    usedCodes.insert(attr.code);
                }
            }
        }
    }

    // The categories other parts of the program single out by name.
    for (const char* path :
         {"暖通\\风管\\矩形风管", "暖通\\风管\\圆形风管", "暖通\\风管\\软风管",
          "电气\\配电箱柜\\配电箱柜", "电气\\配电箱柜\\元件装置", "电气\\电缆桥架\\桥架",
          "电气\\电缆桥架\\托盘", "电气\\电缆桥架\\组合式桥架", "弱电\\箱柜\\接线箱",
          "弱电\\线槽桥架\\线槽", "弱电\\线槽桥架\\桥架", "电气\\配管配线\\导线·导管",
          "弱电\\弱电管线\\弱电配管配线", "消防\\消防管线\\组合管线", "弱电\\弱电管线\\组合管线"})
        EXPECT_TRUE(attTypes.count(path)) << path;
    // Pipe categories carry fittings; a box or a duct does not.
    EXPECT_NE(attTypes["给排水\\管道\\给水管"], 0);
    EXPECT_EQ(attTypes["电气\\配电箱柜\\配电箱柜"], 0);
    EXPECT_EQ(attTypes["暖通\\风管\\矩形风管"], 0);

    // AttributeInformation.xml types every used code but the one left out on purpose.
    CString profile = BundledPackDir() + L"/profile";
    pugi::xml_document info;
    ASSERT_TRUE(info.load_file((U8(profile) + "/AttributeInformation.xml").c_str()));
    EXPECT_STREQ(info.document_element().name(), "属性参数信息");
    std::set<CString> untyped = usedCodes;
    for (pugi::xml_node node : info.document_element().children()) {
        int type = node.attribute("type").as_int(0);
        EXPECT_TRUE(type >= 1 && type <= 11) << node.name();
        EXPECT_TRUE(untyped.erase(FromUtf8(node.name()))) << "unused code " << node.name();
    }
    EXPECT_EQ(untyped, std::set<CString>{kCodeWithoutType});

    // The template of a new configuration file: the root with its version, nothing inside.
    pugi::xml_document def;
    ASSERT_TRUE(def.load_file((U8(profile) + "/QdDeConfig.def").c_str(),
                              pugi::parse_default | pugi::parse_declaration));
    EXPECT_STREQ(def.document_element().name(), "自动套清单定额配置信息");
    EXPECT_STREQ(def.document_element().attribute("Version").value(), "1.0.0");
    EXPECT_TRUE(def.document_element().first_child().empty());

    // The project, the profile and the version the catalog carries.
    EXPECT_EQ(Joined({data.project.currentSpec, data.project.bill.year, data.profile.version}),
              "给排水|2013|1.0.0");
    EXPECT_EQ(U8(data.project.path), U8(BundledPackDir()) + "/project/示例工程.kprj");
    EXPECT_FALSE(fs::exists(U8(BundledPackDir()) + "/project/SysRegedit.ini"));
}

TEST(DataPackTest, PerUserCopyIsMadeOnceAndThenLeftAlone) {
    TempDir home;
    {
        // Where the copy goes: XDG_DATA_HOME when absolute, else under HOME.
        EnvScope xdg("XDG_DATA_HOME", nullptr);
        EnvScope homeVar("HOME", "/home/estimator");
        EXPECT_EQ(U8(PerUserPackDir()), "/home/estimator/.local/share/koqdde/sample");
        EnvScope relative("XDG_DATA_HOME", "relative/share");
        EXPECT_EQ(U8(PerUserPackDir()), "/home/estimator/.local/share/koqdde/sample");
    }
    EnvScope xdg("XDG_DATA_HOME", U8(home.Path()).c_str());
    CString copy = home.File(L"koqdde/sample");
    EXPECT_EQ(U8(PerUserPackDir()), U8(copy));

    HostData data;
    CString error;
    ASSERT_TRUE(LoadDataPack({}, data, error)) << U8(error);
    // The copy holds the bundled files and, beside each library source, its built database.
    std::set<std::string> expected = FilesUnder(BundledPackDir());
    for (const std::string& file : FilesUnder(BundledPackDir()))
        if (file.size() > 4 && file.ends_with(".sql") && !file.ends_with("schema.sql"))
            expected.insert(file.substr(0, file.size() - 4) + ".db");
    EXPECT_EQ(FilesUnder(copy), expected);
    EXPECT_EQ(data.libraryFiles.size(), 5u);
    EXPECT_EQ(U8(data.historyFile), U8(copy) + "/project/示例工程.history.db");
    EXPECT_EQ(home.Read(copy + L"/catalog.xml"), home.Read(BundledPackDir() + L"/catalog.xml"));
    EXPECT_EQ(U8(data.project.path), U8(copy) + "/project/示例工程.kprj");
    EXPECT_EQ(U8(data.profile.configPath), U8(copy) + "/profile");
    // Only the finished copy is left beside it.
    std::vector<std::string> beside;
    for (const auto& entry : fs::directory_iterator(U8(home.File(L"koqdde"))))
        beside.push_back(entry.path().filename().string());
    EXPECT_EQ(beside, std::vector<std::string>{"sample"});

    // The user's edits to the copy survive the next run.
    home.Write(L"koqdde/sample/catalog.xml",
               Replaced(home.Read(copy + L"/catalog.xml"), "name=\"暖通\"", "name=\"暖通空调\""));
    home.Write(L"koqdde/sample/project/SysRegedit.ini", "[QdDeConfig]\n");

    HostData again;
    ASSERT_TRUE(LoadDataPack({}, again, error)) << U8(error);
    EXPECT_NE(again.FindSpec(L"暖通空调"), nullptr);
    EXPECT_EQ(home.Read(L"koqdde/sample/project/SysRegedit.ini"), "[QdDeConfig]\n");

    // No home at all: a clear refusal, not a copy into the working folder.
    EnvScope noXdg("XDG_DATA_HOME", nullptr);
    EnvScope noHome("HOME", nullptr);
    EXPECT_TRUE(PerUserPackDir().IsEmpty());
    EXPECT_FALSE(LoadDataPack({}, again, error));
    EXPECT_NE(U8(error).find("HOME"), std::string::npos) << U8(error);
}

TEST(DataPackTest, ReadOnlyPackBuildsItsDatabasesInTheUsersCache) {
    constexpr fs::perms kAllWrite =
        fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
    TempDir dir;
    const fs::path root(U8(dir.Path()));
    fs::copy(U8(BundledPackDir()), root / "pack", fs::copy_options::recursive);
    fs::create_directory(root / "cache");
    // An installed pack: nobody may write into it, and the test steps down from root, to
    // whom permission bits mean nothing.
    for (const auto& entry : fs::recursive_directory_iterator(root / "pack"))
        fs::permissions(entry.path(), kAllWrite, fs::perm_options::remove);
    fs::permissions(root / "pack", kAllWrite, fs::perm_options::remove);
    fs::permissions(root, fs::perms::all, fs::perm_options::add);
    fs::permissions(root / "cache", fs::perms::all, fs::perm_options::add);
    EnvScope cache("XDG_CACHE_HOME", (root / "cache").c_str());

    int pipeEnds[2];
    ASSERT_EQ(::pipe(pipeEnds), 0);
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        ::close(pipeEnds[0]);
        if (::getuid() == 0 && (::setgid(65534) != 0 || ::setuid(65534) != 0))
            ::_exit(2);
        // Its configuration folder is read-only too: the load asks for one of the user's own.
        const CString pack = FromUtf8((root / "pack").string());
        HostData data;
        CString error;
        std::string report;
        if (!LoadDataPack({pack, L"", L""}, data, error))
            report = U8(error);
        const bool ok =
            LoadDataPack({pack, L"", FromUtf8((root / "cache/cfg").string())}, data, error);
        report += "\n" + (ok ? U8(data.historyFile) : "error " + U8(error));
        for (const CString& file : data.libraryFiles)
            report += "\n" + U8(file);
        const bool sent = ::write(pipeEnds[1], report.data(), report.size()) ==
                          static_cast<ssize_t>(report.size());
        ::_exit(sent ? 0 : 3);
    }
    ::close(pipeEnds[1]);
    std::string report;
    char buffer[4096];
    for (ssize_t n; (n = ::read(pipeEnds[0], buffer, sizeof buffer)) > 0;)
        report.append(buffer, static_cast<size_t>(n));
    ::close(pipeEnds[0]);
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    // Writable again, so that the folder can be removed without root.
    for (const auto& entry : fs::recursive_directory_iterator(root / "pack"))
        fs::permissions(entry.path(), fs::perms::owner_write, fs::perm_options::add);
    ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << report;

    // The history first, then the five libraries, each built under the cache and not beside
    // its source.
    std::vector<std::string> files;
    for (size_t at = 0, end; at <= report.size(); at = end + 1) {
        end = std::min(report.find('\n', at), report.size());
        files.push_back(report.substr(at, end - at));
    }
    ASSERT_EQ(files.size(), 7u) << report;
    EXPECT_EQ(files[0], (root / "pack/profile").string() +
                            ": the pack's configuration folder is read-only: name a folder of "
                            "your own with --config-dir, or leave out --data to work on your own "
                            "copy of the bundled pack");
    files.erase(files.begin());
    const std::string cacheRoot = (root / "cache/koqdde/packs/").string();
    EXPECT_TRUE(files[0].starts_with(cacheRoot) &&
                files[0].ends_with("/project/示例工程.history.db"))
        << files[0];
    for (const std::string& file : files) {
        EXPECT_TRUE(file.starts_with(cacheRoot)) << file;
        EXPECT_TRUE(fs::is_regular_file(file)) << file;
    }
    for (const auto& entry : fs::recursive_directory_iterator(root / "pack"))
        EXPECT_NE(entry.path().extension(), ".db") << entry.path();
}

TEST(DataPackTest, ConfigurationFolderIsCreatedAndSeededOnlyWhenMissing) {
    TempDir dir;
    CString configDir = dir.File(L"配置/nested");
    HostData data;
    CString error;
    ASSERT_TRUE(LoadDataPack({BundledPackDir(), L"", configDir}, data, error)) << U8(error);
    EXPECT_EQ(U8(data.profile.configPath), U8(configDir));
    EXPECT_EQ(FilesUnder(configDir), FilesUnder(BundledPackDir() + L"/profile"));
    for (const std::string& file : FilesUnder(configDir))
        EXPECT_EQ(dir.Read(configDir + L"/" + FromUtf8(file)),
                  dir.Read(BundledPackDir() + L"/profile/" + FromUtf8(file)))
            << file;

    // An existing folder is the user's: nothing is added or replaced.
    dir.Write(L"配置/nested/QdDeConfig.def", "edited");
    fs::remove(U8(configDir) + "/AttributeInformation.xml");
    ASSERT_TRUE(LoadDataPack({BundledPackDir(), L"", configDir}, data, error)) << U8(error);
    EXPECT_EQ(dir.Read(configDir + L"/QdDeConfig.def"), "edited");
    EXPECT_FALSE(fs::exists(U8(configDir) + "/AttributeInformation.xml"));

    // Relative folders and files are handed on as absolute paths; a named project file wins
    // over the pack's own.
    dir.Write(L"工程.kprj", dir.Read(BundledPackDir() + L"/project/示例工程.kprj"));
    fs::path cwd = fs::current_path();
    fs::current_path(U8(dir.Path()));
    bool loaded = LoadDataPack({BundledPackDir(), L"工程.kprj", L"./rel/../cfg"}, data, error);
    fs::current_path(cwd);
    ASSERT_TRUE(loaded) << U8(error);
    EXPECT_EQ(U8(data.profile.configPath), U8(dir.File(L"cfg")));
    EXPECT_EQ(U8(data.project.path), U8(dir.File(L"工程.kprj")));
    EXPECT_TRUE(fs::exists(U8(dir.File(L"cfg/QdDeConfig.def"))));

    // A file where the folder should be.
    dir.Write(L"plain", "x");
    EXPECT_FALSE(LoadDataPack({BundledPackDir(), L"", dir.File(L"plain")}, data, error));
    EXPECT_NE(U8(error).find(U8(dir.File(L"plain"))), std::string::npos) << U8(error);
}

namespace {

const char* const kCatalog = R"xml(<?xml version="1.0" encoding="UTF-8"?>
<catalog version="2.4.1">
  <!-- two specialties -->
  <spec id="2" name="给排水">
    <large id="201" name="管道">
      <small id="20101" name="给水管" attType="1">
        <attr field="GDCZ" name="材质" drop="管道材质" code="CZ"/>
        <attr field="GDGJ" name="管径(mm)" code="GJ"/>
      </small>
      <small id="20102" name="排水管">
        <attr field="GDCZ" name="材质" drop="" code="CZ"/>
      </small>
    </large>
  </spec>
  <spec id="3" name="电气">
    <large id="301" name="配电箱柜">
      <small id="20101" name="配电箱柜" attType="0">
        <attr field="KD" name="宽度(mm)" drop="" code="KD"/>
      </small>
    </large>
  </spec>
</catalog>
)xml";

const char* const kDropLists = R"xml(<?xml version="1.0" encoding="UTF-8"?>
<droplists>
  <list key="管道材质"><item>镀锌钢管</item><item>PP-R管</item><item>A&amp;B</item></list>
  <list key="空表"/>
</droplists>
)xml";

const char* const kProject = R"xml(<?xml version="1.0" encoding="UTF-8"?>
<project name="小工程" spec="电气" mode="1">
  <library role="quota" file="定额甲" code="{Q}" local="110000" year="2016"/>
  <library role="bill" file="清单" code="{B}" local="000000" year="2013"/>
  <library role="billQuota" file="定额乙" code="{BQ}" local="120000" year="2018"/>
</project>
)xml";

// A small pack written file by file, so that each case can spoil one file.
std::map<std::string, std::string> MiniPack() {
    return {{"catalog.xml", kCatalog},
            {"droplists.xml", kDropLists},
            {"project/小工程.kprj", kProject},
            {"profile/QdDeConfig.def", "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                       "<自动套清单定额配置信息 Version=\"1.0.0\"/>\n"}};
}

void WritePack(const TempDir& dir, const std::map<std::string, std::string>& files) {
    for (const auto& [name, bytes] : files)
        dir.Write(L"pack/" + FromUtf8(name), bytes);
}

} // namespace

TEST(DataPackTest, SmallPackLoadsEveryField) {
    TempDir dir;
    WritePack(dir, MiniPack());
    HostData data;
    CString error;
    ASSERT_TRUE(LoadDataPack({dir.File(L"pack"), L"", dir.File(L"cfg")}, data, error)) << U8(error);

    ASSERT_EQ(data.catalog.size(), 2u);
    EXPECT_EQ(U8(data.profile.version), "2.4.1");
    const HostSmallCategory* water = data.FindSmall(2, 201, 20101);
    ASSERT_NE(water, nullptr);
    EXPECT_EQ(U8(water->name), "给水管");
    EXPECT_EQ(water->attType, 1);
    ASSERT_EQ(water->attributes.size(), 2u);
    for (int i : {0, 1}) {
        const auto& a = water->attributes[i];
        EXPECT_EQ(Joined({a.field, a.name, a.dropKey, a.code}),
                  i == 0 ? "GDCZ|材质|管道材质|CZ" : "GDGJ|管径(mm)||GJ");
    }
    ASSERT_NE(data.FindSmall(2, 201, 20102), nullptr);
    EXPECT_EQ(data.FindSmall(2, 201, 20102)->attType, 0);
    // The same id under another parent is allowed; only siblings must differ.
    ASSERT_NE(data.FindSmall(3, 301, 20101), nullptr);
    EXPECT_EQ(U8(data.FindSmall(3, 301, 20101)->name), "配电箱柜");

    ASSERT_EQ(data.dropLists.size(), 2u);
    const CStringArray& materials = data.dropLists.at(L"管道材质");
    ASSERT_EQ(materials.GetSize(), 3);
    EXPECT_EQ(U8(materials[0]), "镀锌钢管");
    EXPECT_EQ(U8(materials[2]), "A&B");
    EXPECT_EQ(data.dropLists.at(L"空表").GetSize(), 0);

    EXPECT_EQ(U8(data.project.path), U8(dir.File(L"pack/project/小工程.kprj")));
    EXPECT_EQ(U8(data.project.currentSpec), "电气");
    EXPECT_EQ(data.project.mode, 1);
    const auto& bill = data.project.bill;
    EXPECT_EQ(Joined({bill.fileName, bill.code, bill.local, bill.year}), "清单|{B}|000000|2013");
    // Roles, not the order of the elements, say which library is which.
    EXPECT_EQ(U8(data.project.billQuota.fileName), "定额乙");
    EXPECT_EQ(U8(data.project.quota.fileName), "定额甲");
    EXPECT_EQ(U8(data.profile.configPath), U8(dir.File(L"cfg")));
    EXPECT_EQ(dir.Read(L"cfg/QdDeConfig.def"), MiniPack().at("profile/QdDeConfig.def"));
}

TEST(DataPackTest, FaultyPacksAreRefusedNamingTheFile) {
    // The pack file spoilt, the text replaced in it (none removes the file), and what the
    // error must contain.
    const std::string c = "catalog.xml", p = "project/小工程.kprj";
    const std::vector<std::array<std::string, 4>> cases = {
        {c, "", "", "catalog.xml"},
        {c, "</spec>\n  <spec", "\n  <spec", "catalog.xml: malformed XML at line"},
        {c, kCatalog, "<catalogue/>", "root element is <catalogue>"},
        {c, "<spec id=\"3\"", "<spec id=\"3x\"", "has id \"3x\", not a positive number"},
        {c, " name=\"配电箱柜\">", ">", "large category without a name in 电气"},
        {c, "id=\"20102\" ", "", "small category \"排水管\" in 给排水\\管道 has no id"},
        {c, "id=\"20102\"", "id=\"20101\"", "repeats the id 20101 of a sibling"},
        {c, " code=\"GJ\"", "", "attribute \"管径(mm)\" of 给排水\\管道\\给水管 has no code"},
        {c, "<attr field=\"KD\"", "<atr field=\"KD\"", "unexpected element <atr>"},
        {c, "name=\"电气\"", "name=\"电 气\"",
         "catalog.xml: specialty \"电 气\" in <catalog> can't be an XML element name, as the "
         "configuration files need: \" \" (U+0020) can't stand in a name"},
        {c, "name=\"管道\"", "name=\"1管道\"",
         "large category \"1管道\" in 给排水 can't be an XML element name, as the configuration "
         "files need: \"1\" (U+0031) can't start a name"},
        {c, "name=\"排水管\"", "name=\"排:水管\"",
         "small category \"排:水管\" in 给排水\\管道 can't be an XML element name, as the "
         "configuration files need: a colon would need a namespace declaration"},
        {c, "name=\"排水管\"", "name=\"排&#10;水管\"",
         "small category \"排U+000A水管\" in 给排水\\管道 can't be an XML element name, as the "
         "configuration files need: U+000A can't stand in a name"},
        {c, "name=\"给水管\"", "name=\"给水\\管\"",
         "catalog.xml: small category \"给水\\管\" in 给排水\\管道 holds a backslash, which "
         "separates the levels of a category path"},
        {c, "drop=\"管道材质\"", "drop=\"阀门材质\"", "阀门材质"},
        {"droplists.xml", "", "", "droplists.xml"},
        {p, "spec=\"电气\"", "spec=\"暖通\"", "小工程.kprj"},
        {p, "role=\"quota\"", "role=\"rules\"", "小工程.kprj"},
        {p, "", "", "no *.kprj"},
    };
    for (const auto& [file, from, to, named] : cases) {
        SCOPED_TRACE(file + ": " + from + " -> " + to);
        TempDir dir;
        auto files = MiniPack();
        if (from.empty())
            files.erase(file);
        else
            files[file] = Replaced(files[file], from, to);
        WritePack(dir, files);
        fs::create_directories(U8(dir.File(L"pack/project")));

        HostData data;
        data.profile.version = L"untouched";
        CString error;
        EXPECT_FALSE(LoadDataPack({dir.File(L"pack"), L"", dir.File(L"cfg")}, data, error));
        std::string text = U8(error);
        EXPECT_TRUE(text.starts_with(U8(dir.File(L"pack/")))) << text;
        EXPECT_NE(text.find(named), std::string::npos) << text;
        EXPECT_EQ(text.find('\n'), std::string::npos) << text;
        EXPECT_EQ(U8(data.profile.version), "untouched") << "a failed load leaves the data alone";
    }

    // Folders and explicit files that aren't there.
    TempDir dir;
    WritePack(dir, MiniPack());
    HostData data;
    CString error;
    EXPECT_FALSE(LoadDataPack({dir.File(L"nowhere"), L"", L""}, data, error));
    EXPECT_NE(U8(error).find(U8(dir.File(L"nowhere"))), std::string::npos) << U8(error);
    EXPECT_FALSE(LoadDataPack({dir.File(L"pack"), dir.File(L"gone.kprj"), L""}, data, error));
    EXPECT_NE(U8(error).find("gone.kprj"), std::string::npos) << U8(error);
    // No configuration folder given and the pack has no profile folder to stand for it.
    fs::remove_all(U8(dir.File(L"pack/profile")));
    EXPECT_FALSE(LoadDataPack({dir.File(L"pack"), L"", L""}, data, error));
    EXPECT_NE(U8(error).find("profile"), std::string::npos) << U8(error);

    fs::remove(U8(dir.File(L"pack/catalog.xml")));
    fs::create_directory(U8(dir.File(L"pack/catalog.xml")));
    EXPECT_FALSE(LoadCatalogFile(dir.File(L"pack/catalog.xml"), data, error));
    EXPECT_EQ(U8(error), U8(dir.File(L"pack/catalog.xml")) + ": is a folder, not a file");
}
