// The library databases: built from the pack's schema and a source of INSERT statements, and
// the host stand-ins that answer from them.

#include "host/QvBillKit/QvBillKit.h"
#include "host/QvCalcRules/QvCalcRules.h"
#include "host/QvKoProject/QvKoProject.h"
#include "host/datapack/DataPack.h"
#include "host/sqlite/LibraryFiles.h"
#include "platform/FileSystem.h"
#include "support/TestHost.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

const char* const kBills = R"(
INSERT INTO library (key, value) VALUES ('kind', 'bill'), ('code', '{B}'),
  ('code_len', '12'), ('suffix_len', '3');
INSERT INTO chapter (id, parent, position, code, name) VALUES
  (1, NULL, 0, '0310', '给排水、采暖、燃气工程'), (2, 1, 0, '031001', '给排水、采暖、燃气管道');
INSERT INTO bill (number, chapter, position, name, unit, unit_coefficient, annex, formula,
  feature, work) VALUES
  ('031001006001', 2, 0, '塑料管', 'm', 1, 1, 'L', '1.材质', '1.管道安装'),
  ('031001006002', 2, 1, '塑料管(热熔)', '10m', 10, 0, '', '', '');
INSERT INTO index_path (tree_path, chapter_path) VALUES ('给排水\管道\给水管', '0310\031001');
)";

const char* const kRules = R"(
INSERT INTO library (key, value) VALUES ('kind', 'rules');
INSERT INTO calc_item (category, position, name, code, formula) VALUES
  ('给排水\管道\给水管', 1, '外表面积', 'WBMJ', 'L*0.1'),
  ('给排水\管道\给水管', 0, '长度', 'CD', 'L'),
  ('暖通\风管\送风管', 0, '展开面积', 'ZKMJ', 'S');
)";

const char* const kHistory = R"(
INSERT INTO qd_history (number, name, unit, position) VALUES
  ('031001006007', '塑料管', 'm', 0), ('031001006003', '塑料管', 'm', 1),
  ('031001001001', '镀锌钢管', 'm', 2);
)";

struct Libraries {
    Libraries() {
        host.AddLibrary(L"bills", kBills);
        host.AddLibrary(L"rules", kRules);
        host.data.historyFile = BuildLibrary(host.dir, L"history", kHistory);
        host.data.project.bill.code = L"{B}";
    }
    TestHost host;
};

} // namespace

TEST(Libraries, BillLibraryAnswersByNumberRuleAndTreePosition) {
    Libraries libraries;
    SQdInfo info;
    ASSERT_TRUE(IBillLib::GetQdInfo(L"031001006002", info));
    EXPECT_EQ(Fields(info), "031001006002|塑料管(热熔)|10m||10|0|");
    ASSERT_TRUE(IBillLib::GetQdInfo(L"031001006001", info));
    EXPECT_EQ(Fields(info), "031001006001|塑料管|m|L|1|1|1.材质");
    EXPECT_FALSE(IBillLib::GetQdInfo(L"031001006", info)) << "a prefix is no bill";
    EXPECT_TRUE(IBillLib::IsInQdk(L"031001006002"));
    EXPECT_FALSE(IBillLib::IsInQdk(L"031001006003"));
    int code = 0, suffix = 0;
    IBillLib::GetEnCodeRule(code, suffix);
    EXPECT_EQ(code, 12);
    EXPECT_EQ(suffix, 3);
    EXPECT_EQ(CSys::GetIndexPath(L"给排水\\管道\\给水管"), L"0310\\031001");
    EXPECT_EQ(CSys::GetIndexPath(L"给排水\\管道\\给水管\\"), L"0310\\031001")
        << "as the workbench asks, with the separator at the end";
    EXPECT_EQ(CSys::GetIndexPath(L"给排水\\管道\\排水管"), L"");

    // Another project's library code: nothing is known, the rule is -1.
    libraries.host.data.project.bill.code = L"{OTHER}";
    EXPECT_FALSE(IBillLib::GetQdInfo(L"031001006001", info));
    EXPECT_FALSE(IBillLib::IsInQdk(L"031001006001"));
    IBillLib::GetEnCodeRule(code, suffix);
    EXPECT_EQ(code, -1);
    EXPECT_EQ(suffix, -1);
}

TEST(Libraries, CalculationItemsComeInPositionOrderAndByName) {
    Libraries libraries;
    CStringArray names{L"kept?"}, codes;
    ASSERT_TRUE(CFaceSysRule::GetCalItems(L"给排水\\管道\\给水管", names, codes));
    auto list = [](const CStringArray& a) { return std::vector<CString>(a.begin(), a.end()); };
    EXPECT_EQ(list(names), (std::vector<CString>{L"长度", L"外表面积"})) << "emptied first";
    EXPECT_EQ(list(codes), (std::vector<CString>{L"CD", L"WBMJ"}));
    EXPECT_FALSE(CFaceSysRule::GetCalItems(L"给排水\\管道\\排水管", names, codes));
    EXPECT_TRUE(names.IsEmpty());
    RuleCodeStruct rule;
    ASSERT_TRUE(CFaceSysRule::GetCalItemInfo(L"展开面积", rule));
    EXPECT_EQ(rule.strFormula, L"S");
    EXPECT_FALSE(CFaceSysRule::GetCalItemInfo(L"体积", rule));
}

TEST(Libraries, HistoryGivesTheNumbersUsedUnderAPrefixInTheirOrder) {
    Libraries libraries;
    std::vector<SQdInfo> records;
    ASSERT_TRUE(CQdHistoryMng().GetQdInfoByQdNum(L"031001006", records));
    ASSERT_EQ(records.size(), 2u);
    EXPECT_EQ(records[0].strQdNum, L"031001006007");
    EXPECT_EQ(records[1].strQdNum, L"031001006003");
    records.clear();
    EXPECT_TRUE(CQdHistoryMng().GetQdInfoByQdNum(L"03100100_", records));
    EXPECT_TRUE(records.empty()) << "no wildcard in a number";
    libraries.host.data.historyFile = CString();
    EXPECT_FALSE(CQdHistoryMng().GetQdInfoByQdNum(L"031001006", records));
}

TEST(Libraries, StaleDatabasesAreRebuiltAndABrokenSourceNamesItself) {
    TempDir dir;
    const CString source = dir.Write(L"lib.sql", kBills);
    std::vector<CString> built;
    CString error;
    const CString schema = dir.Write(L"schema.sql", *ReadFileBytes(LibrarySchemaFile()));
    ASSERT_TRUE(BuildStaleDatabases(dir.Path(), schema, dir.Path(), built, error)) << ToUtf8(error);
    EXPECT_EQ(built, std::vector<CString>{dir.File(L"lib.db")}) << "the schema is no library";
    built.clear();
    ASSERT_TRUE(BuildStaleDatabases(dir.Path(), schema, dir.Path(), built, error));
    EXPECT_TRUE(built.empty()) << "fresh databases stay";
    // A newer schema builds them again.
    namespace fs = std::filesystem;
    const auto later = fs::last_write_time(ToUtf8(dir.File(L"lib.db"))) + std::chrono::seconds(5);
    fs::last_write_time(ToUtf8(schema), later);
    ASSERT_TRUE(BuildStaleDatabases(dir.Path(), schema, dir.Path(), built, error));
    EXPECT_EQ(built, std::vector<CString>{dir.File(L"lib.db")});
    built.clear();

    // A newer source is built again; a broken one leaves the old database in place.
    dir.Write(L"lib.sql", std::string(kBills) + "INSERT INTO bill (number) VALUES ('x');");
    fs::last_write_time(ToUtf8(source), later + std::chrono::seconds(5));
    EXPECT_FALSE(BuildStaleDatabases(dir.Path(), schema, dir.Path(), built, error));
    EXPECT_NE(error.Find(L"lib.sql"), -1) << ToUtf8(error);
    EXPECT_NE(error.Find(L"NOT NULL"), -1) << ToUtf8(error);
    SqliteDb db;
    ASSERT_TRUE(db.Open(dir.File(L"lib.db"), true, error));
    EXPECT_EQ(LibraryFact(db, L"code"), L"{B}");
    EXPECT_EQ(DatabaseFilesIn(dir.Path()), std::vector<CString>{dir.File(L"lib.db")})
        << "no half-built database is left";
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(ToUtf8(dir.Path())))
        names.push_back(entry.path().filename().string());
    EXPECT_EQ(names.size(), 3u) << "the schema, the source and its database only";
}

TEST(Libraries, TheBundledPackAnswersThroughTheStandIns) {
    TempDir config;
    HostData data;
    CString error;
    ASSERT_TRUE(LoadDataPack({BundledPackDir(), L"", config.File(L"cfg")}, data, error))
        << ToUtf8(error);
    HostDataScope scope(&data);
    SQdInfo info;
    ASSERT_TRUE(IBillLib::GetQdInfo(L"031001001", info));
    EXPECT_TRUE(Fields(info).starts_with("031001001|镀锌钢管|m|")) << Fields(info);
    int code = 0, suffix = 0;
    IBillLib::GetEnCodeRule(code, suffix);
    EXPECT_EQ(code, 9);
    EXPECT_EQ(suffix, 3);
    EXPECT_EQ(CSys::GetIndexPath(L"给排水\\管道\\给水管"), L"0310\\031001");
    CStringArray names, codes;
    EXPECT_TRUE(CFaceSysRule::GetCalItems(L"给排水\\管道\\给水管", names, codes));
    EXPECT_FALSE(CFaceSysRule::GetCalItems(L"弱电\\箱柜\\接线箱", names, codes))
        << "the one category without calculation items";
    std::vector<SQdInfo> used;
    ASSERT_TRUE(CQdHistoryMng().GetQdInfoByQdNum(L"031001001", used));
    ASSERT_GE(used.size(), 2u);
    EXPECT_EQ(used[0].strName, L"镀锌钢管");
}
