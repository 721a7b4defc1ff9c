// End-to-end runs of the koqdde tool on a temporary copy of the bundled data pack.
#include "CliFixture.h"

TEST_F(Cli, TreeAsJsonHasTheDocumentedShape) {
    Result r = Run({"--json", "tree"});
    ASSERT_EQ(r.status, 0) << r.err;
    for (const char* part :
         {"\"file\": ", "\"spec\": {", "\"id\": 2", "\"name\": \"给排水\"", "\"large\": [",
          "\"name\": \"管道\"", "\"small\": [", "\"name\": \"给水管\"", "\"lastConfigId\": 1",
          "\"configs\": [", "\"default\": true", "\"text\": \"其它\"", "\"lastConditionId\": 0",
          "\"lastQdId\": 0", "\"lastDeId\": 0"})
        EXPECT_TRUE(Has(r.out, part)) << part;
    EXPECT_EQ(r.out.front(), '{');
    EXPECT_TRUE(Has(r.out, Config()));

    Result text = Run({"tree"});
    EXPECT_EQ(text.status, 0);
    EXPECT_TRUE(Has(text.out, "config 1 (default): 其它"));
}

TEST_F(Cli, ExitStatusesAndMessages) {
    // A search that finds nothing (which builds the pack's libraries), and refusals before
    // the configuration file is read, so none is made.
    EXPECT_EQ(Run({"lib", "search", "没有这种东西"}).status, 1);
    ExpectRefused({
        {{"show", "管道\\不存在"}, 2, "unknown category \"管道\\不存在\""},
        {{"show", "电气\\配电箱柜\\配电箱柜"}, 2, "is not in the current specialty \"给排水\""},
        {{"--data", Path("nowhere"), "tree"}, 2, "cannot load the data pack"},
    });
    EXPECT_EQ(Run({"--", "show", "--", "管道\\给水管"}).status, 0) << "\"--\" ends the options";

    // The refresh reads the current configuration as the workbench does; only a file that
    // loads becomes current.
    std::filesystem::create_directories(Folder());
    std::filesystem::copy_file(Path("pack/catalog.xml"), Folder() + "junk.xml");
    Result refresh = Run({"refresh", Folder() + "junk.xml"});
    EXPECT_EQ(refresh.status, 1);
    EXPECT_TRUE(Has(refresh.out, "文件功能不匹配"));
}

TEST_F(Cli, ConditionsBillsAndQuotasEndToEnd) {
    ASSERT_EQ(Run({"config", "add", kPipeArg}).out, "2\n");
    ASSERT_NO_FATAL_FAILURE(Setup({
        {"condition", "add", kPipeArg, "2", "--attr", "材质", "--eq", "镀锌钢管"},
        {"condition", "add", kPipeArg, "2", "--attr", "管径(mm)", "--gt", "50", "--le", "100"},
        {"condition", "add", kPipeArg, "2", "--strings", "安装部位", "0", "", "＞", "＜", "", "",
         "3"},
        {"condition", "reset", kPipeArg, "2", "3", "--attr", "安装部位", "--ne", "室外"},
        {"qd", "add", kPipeArg, "2", "--number", "031001001001", "--name", "镀锌钢管", "--unit",
         "m", "--unit-code", "1"},
        {"de", "add", kPipeArg, "2", "--qd", "1", "--number", "10-1-12"},
        {"qd", "reset", kPipeArg, "2", "1", "--formula", "L*1.02"},
    }));
    EXPECT_EQ(Run({"de", "add", kPipeArg, "2", "--number", "10-9-1"}).out, "1\n")
        << "the configuration's own quotas count apart from the bill's";

    Result show = Run({"--json", "show", kPipeArg});
    ASSERT_EQ(show.status, 0) << show.err;
    EXPECT_TRUE(Has(show.out, "\"text\": \"材质＝镀锌钢管;50＜管径(mm)≤100;安装部位≠室外;\""));
    EXPECT_TRUE(Has(show.out, "\"strQdId\": \"031001001001\""));
    EXPECT_TRUE(Has(show.out, "\"strName\": \"镀锌钢管\"")) << "reset kept the other fields";
    EXPECT_TRUE(Has(show.out, "\"strFormula\": \"L*1.02\""));
    EXPECT_TRUE(Has(show.out, "\"strDeId\": \"10-1-12\""));
    EXPECT_TRUE(Has(show.out, "\"strDeId\": \"10-9-1\""));

    ASSERT_NO_FATAL_FAILURE(Setup({{"de", "delete", kPipeArg, "2", "1", "--qd", "1"},
                                   {"condition", "delete", kPipeArg, "2", "1"}}));
    EXPECT_EQ(Run({"config", "copy", kPipeArg, "2"}).out, "3\n");
    EXPECT_EQ(Run({"config", "down", kPipeArg, "2"}).status, 0);
    Result after = Run({"show", kPipeArg});
    EXPECT_TRUE(Has(after.out, "config 3: 50＜管径(mm)≤100;安装部位≠室外;\n"));
    EXPECT_LT(after.out.find("config 3:"), after.out.find("config 2:"));
    EXPECT_FALSE(Has(after.out, "10-1-12"));
}

TEST_F(Cli, HeadedFilesCanBeReadAndStripped) {
    ASSERT_EQ(Run({"config", "add", kPipeArg}).status, 0);
    std::string body = Bytes(Config());
    Result write = Run({"--force", "head", "write", Config()});
    ASSERT_EQ(write.status, 0) << write.err;
    std::string headed = Bytes(Config());
    ASSERT_GT(headed.size(), body.size());
    EXPECT_EQ(Bytes(Config() + ".bak"), body) << "the replaced file is kept";

    Result read = Run({"head", "read", Config()});
    EXPECT_EQ(read.status, 0);
    EXPECT_TRUE(Has(read.out, "1002 mode (12 bytes): 清单模式"));
    EXPECT_TRUE(Has(read.out, "1003 bill library"));
    EXPECT_TRUE(Has(read.out, ".mdb"));
    Result json = Run({"--json", "head", "read", Config()});
    EXPECT_TRUE(Has(json.out, "\"tag\": 1000"));

    // A headed file is no configuration: a query says so, an edit keeps its hands off it
    // (switching away would save over it) unless forced.
    std::filesystem::create_directories(Folder());
    const std::string out = Folder() + "recovered.xml";
    ASSERT_EQ(Run({"head", "strip", Config(), out}).status, 0);
    ExpectRefused({
        {{"--force", "head", "write", Config()}, 1, "no configuration root in the file"},
        {{"show", kPipeArg}, 4, "`koqdde head strip " + Config() + " OUT`"},
        {{"open", out}, 4, "--force edits it anyway"},
    });
    Result open = Run({"--force", "open", out});
    EXPECT_EQ(open.status, 0) << open.err;
    EXPECT_EQ(Run({"head", "read", out}).status, 1);
}

TEST_F(Cli, AttributeSettings) {
    Result before = Run({"attr", "get", kPipeArg, "材质"});
    EXPECT_EQ(before.status, 1) << "nothing generated yet";
    ASSERT_EQ(Run({"attr", "generate"}).status, 0);
    Result get = Run({"attr", "get", "管道\\给水管", "材质"});
    ASSERT_EQ(get.status, 0) << get.err;
    EXPECT_TRUE(Has(get.out, "给排水\\管道\\给水管材质: name=材质 namecode=CZ vartype=1"));
    Result set = Run({"attr", "set", kPipeArg, "材质", "--vartype", "2"});
    EXPECT_EQ(set.status, 0);
    EXPECT_TRUE(Has(set.out, "vartype=2"));
    EXPECT_TRUE(Has(Run({"attr", "get", kPipeArg, "材质"}).out, "vartype=1")) << "not kept";
}

TEST_F(Cli, LibrariesAreSearchedAndTheirItemsAppliedWithTheDialogsNumbering) {
    Result found = Run({"lib", "search", "镀锌钢"});
    ASSERT_EQ(found.status, 0) << found.err;
    EXPECT_TRUE(Has(found.out, "031001001\t镀锌钢管\tm\n"));
    Result shown = Run({"--json", "lib", "show", "031001001"});
    ASSERT_EQ(shown.status, 0) << shown.err;
    EXPECT_TRUE(Has(shown.out, "\"quotas\": [")) << "a bill shows its linked quotas";
    EXPECT_TRUE(Has(shown.out, "\"number\": \"10-1-2\""));
    ASSERT_EQ(Run({"config", "add", kPipeArg}).status, 0);
    // The history uses 001, 002, 007, 003 and 004 of this bill: a new number continues after
    // the highest, and after the configuration's own.
    auto number = [&](int qd) {
        Result r = Run({"show", kPipeArg});
        std::string key = "  qd " + std::to_string(qd) + ": ";
        size_t at = r.out.find(key);
        return at == std::string::npos ? std::string() : r.out.substr(at + key.size(), 12);
    };
    ASSERT_EQ(Run({"apply", "bill", kPipeArg, "2", "031001001"}).status, 0);
    EXPECT_EQ(number(1), "031001001008");
    ASSERT_EQ(Run({"apply", "bill", kPipeArg, "2", "031001001"}).status, 0);
    EXPECT_EQ(number(2), "031001001009");
    ASSERT_EQ(
        Run({"apply", "bill", kPipeArg, "2", "031001001", "--existing", "031001001002"}).status, 0);
    EXPECT_EQ(number(3), "031001001002");

    auto apply = [](std::vector<std::string> tail) {
        std::vector<std::string> args = {"apply", "bill", kPipeArg, "2", "031001001"};
        args.insert(args.end(), tail.begin(), tail.end());
        return args;
    };
    ExpectRefused({
        {{"lib", "show", "039999999"}, 2, "lib search"},
        {apply({"--existing", "031001001002"}), 2, "同一构件不能多次套同一清单 !"},
        {apply({"--existing", "031001001005"}), 2, "not among the project's numbers"},
        {apply({"--suffix", "01"}), 2, "新清单号不符合规范!"},
        {apply({"--suffix", "003"}), 2, "清单已经套用!"},
        {{"apply", "quota", kPipeArg, "2", "10-1-2"}, 2, "--qd"},
    });
    ASSERT_EQ(Run({"apply", "quota", kPipeArg, "2", "10-1-2", "--qd", "1"}).status, 0);
    Result listed = Run({"show", kPipeArg});
    EXPECT_TRUE(Has(listed.out, "de 1: 10-1-2 室内镀锌钢管螺纹连接 DN25 [10m, x10] "
                                "code={A3D95C12-7E48-4B06-8F1C-5D2E90B7A4E3} formula=L annex=是"))
        << listed.out;
}

TEST_F(Cli, ARecordedNameThatIsNoFileNameIsNotFollowed) {
    dir.Write(L"pack/project/SysRegedit.ini", "[QdDeConfigInfo]\r\nConfigName=../../escape\r\n");
    Result current = Run({"--config-dir", Path("cfg"), "current"}, false);
    EXPECT_EQ(current.status, 0);
    EXPECT_TRUE(Has(current.out, "/cfg/自动套配置/DefaultConfig.xml")) << current.out;
    EXPECT_TRUE(Has(current.err, "\"../../escape\"")) << current.err;
}
