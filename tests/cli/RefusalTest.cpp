// What the tool refuses, and that a refusal or a dry run leaves every file as it was.
#include "CliFixture.h"

using Refusals = Cli;

TEST_F(Refusals, FileCommandsDoWhatTheySayOrChangeNothing) {
    ASSERT_EQ(Run({"config", "add", kPipeArg}).status, 0);
    ASSERT_EQ(Run({"current"}).status, 0) << "makes the configuration folder";
    const std::string outside = Path("outside.xml");
    const std::string inside = Folder() + "a.xml";
    const std::string headed = Path("headed.xml");
    std::filesystem::copy_file(Config(), outside);
    std::filesystem::copy_file(Config(), inside);
    ASSERT_EQ(Run({"head", "write", Config(), headed}).status, 0) << "into OUT, FILE kept";

    const std::string glued = Path("packprofile/自动套配置a.xml"); // a\b\c unquoted
    ExpectRefused({
        {{"open", outside}, 2, "is not in the configuration folder"},
        {{"open", Folder() + "missing.xml"}, 1, "Quorvel: 文件不存在，请重新选择调用文件!"},
        {{"new", Folder() + std::string(120, 'x') + ".xml"}, 2, "at most 99 characters"},
        {{"refresh", outside}, 2, "copy it there first: koqdde import " + outside},
        {{"new", outside}, 2, "make the new one there: koqdde new "},
        {{"new", inside}, 4, "Give --force to replace it"},
        {{"save-as", outside}, 4, "kept as " + outside + ".bak"},
        {{"head", "write", Config(), outside}, 4, "--force"},
        {{"head", "strip", headed, outside}, 4, "--force"},
        {{"import", outside, "--as", "a"}, 4, "--force"},
        {{"import", Path("pack/catalog.xml")}, 2, "does not load as a configuration"},
        {{"save-as", Path("nowhere/b.xml")}, 2, "does not exist; make it first"},
        {{"--file", Path("nowhere/b.xml"), "tree"}, 2, "does not exist; make it first"},
        {{"open", glued}, 2, "but " + inside + " does: the shell took out the backslashes"},
        {{"--file", glued, "tree"}, 2, "the shell took out the backslashes"},
        {{"--dry-run", "attr", "generate"}, 2, "--dry-run is not supported by attr generate"},
        // Dry runs say what would happen.
        {{"--dry-run", "open", inside}, 0, "would save the open configuration, load " + inside},
        {{"--dry-run", "refresh", inside}, 0, "record \"a\" as the current configuration"},
        {{"--dry-run", "--force", "new", inside}, 0, "would be kept as " + inside + ".bak"},
        {{"--dry-run", "--force", "save-as", outside}, 0, "save-as would write"},
        {{"--dry-run", "import", outside, "--as", "b"}, 0, "import would copy"},
        {{"--dry-run", "--force", "head", "write", Config()}, 0, "head write would stamp"},
        {{"--dry-run", "--force", "head", "strip", headed, outside}, 0, "head strip would write"},
        {{"--dry-run", "--file", Path("fresh.xml"), "tree"}, 0, "给水管"},
    });

    // Done for real: the import says where the file went and how to make it current, an
    // overwrite keeps the former content.
    Result imported = Run({"import", outside, "--as", "b"});
    EXPECT_EQ(imported.status, 0) << imported.err;
    EXPECT_TRUE(Has(imported.out, "koqdde open " + Folder() + "b.xml makes it")) << imported.out;
    EXPECT_EQ(Bytes(Folder() + "b.xml"), Bytes(outside));
    const std::string before = Bytes(inside);
    ASSERT_EQ(Run({"--force", "new", inside}).status, 0);
    EXPECT_EQ(Bytes(inside + ".bak"), before);
    EXPECT_NE(Bytes(inside), before);
}

TEST_F(Refusals, ConditionsThatCanNeverMatch) {
    ASSERT_EQ(Run({"config", "add", kPipeArg}).status, 0);
    ASSERT_EQ(Run({"condition", "add", kPipeArg, "2", "--attr", "材质", "--eq", "镀锌钢管"}).out,
              "1\n");
    // Two conditions on one attribute: the second replaces the first, as in the workbench.
    Result again = Run({"condition", "add", kPipeArg, "2", "--attr", "材质", "--eq", "铜管"});
    EXPECT_EQ(again.out, "1\n");
    EXPECT_TRUE(Has(again.err, "it is replaced")) << again.err;
    Result unknown =
        Run({"condition", "add", kPipeArg, "2", "--attr", "颜色", "--eq", "红", "--allow-unknown"});
    EXPECT_EQ(unknown.out, "2\n") << unknown.err;
    EXPECT_TRUE(Has(Run({"show", kPipeArg}).out, "config 2: 材质＝铜管;颜色＝红;"));

    const std::vector<std::string> add = {"condition", "add", kPipeArg, "2"};
    auto with = [&](std::vector<std::string> tail) {
        std::vector<std::string> args = add;
        args.insert(args.end(), tail.begin(), tail.end());
        return args;
    };
    ExpectRefused({
        {with({"--attr", "颜色", "--eq", "红"}), 2, "has no attribute \"颜色\"; it has 材质, "},
        {with({"--eq", "a"}), 2, "a condition needs --attr NAME"},
        {with({"--attr", "材质", "--eq", "a", "--gt", "1"}), 2, "give either --eq/--ne VALUE or"},
        {with({"--strings", "a", "1", "＝"}), 2, "--strings needs exactly eight strings"},
        {with({"--attr", "管径(mm)", "--gt", "100", "--lt", "50"}), 2, "the bounds are swapped"},
        {with({"--attr", "管径(mm)", "--gt", "10", "--lt", "10.001"}), 2, "narrower than 0.01"},
        {with({"--attr", "管径(mm)", "--ge", "DN15"}), 2, "\"DN15\" is not a number"},
        {with({"--strings", "管径(mm)", "0", "", "＞", "＜", "", "", "5cm"}), 2, "not a number"},
        {with({"--strings", "材质", "1", "=", "", "", "铜管", "", ""}), 2, "use ＝ or ≠"},
        {with({"--attr", "材质", "--eq", "铜管"}), 1, "condition 1 is this condition already"},
        {{"condition", "reset", kPipeArg, "2", "2", "--attr", "材质", "--ne", "铜管"},
         2,
         "condition 1 already tests 材质"},
    });

    // A list that takes no typed value, and an attribute that can't be compared, by the
    // attribute settings.
    ASSERT_EQ(Run({"attr", "generate"}).status, 0);
    const std::string settings = "pack/profile/AttrConfig.xml";
    std::string text = Bytes(Path(settings));
    for (size_t at = text.find("vartype=\"1\""); at != std::string::npos;
         at = text.find("vartype=\"1\"", at))
        text.replace(at, 11, "vartype=\"0\"");
    dir.Write(FromUtf8(settings), text);
    ExpectRefused({
        {with({"--attr", "材质", "--eq", "镀锌钢"}), 2, "takes no typed value"},
        {with({"--attr", "材质", "--ge", "1"}), 2, "不可比较"},
        {{"attr", "set", kPipeArg, "材质", "--vartype", "7"}, 2, "--vartype must be 0 to 2"},
    });
    EXPECT_EQ(Run(with({"--attr", "材质", "--eq", "镀锌钢管"})).status, 0);

    // Settings the commands can't use stop those that read them, naming the file and the
    // fault; the generator leaves them for the user to mend, and other commands go on.
    text.erase(text.find("</属性类型配置信息>"));
    dir.Write(FromUtf8(settings), text);
    const std::string cannot = " the attribute settings: " + Path(settings) + ": ";
    ExpectRefused({
        {{"attr", "get", kPipeArg, "材质"}, 2, "koqdde: cannot use" + cannot},
        {{"attr", "generate"}, 2, "koqdde: cannot generate" + cannot},
    });
    EXPECT_EQ(Run({"show", kPipeArg}).status, 0);
}

TEST_F(Refusals, ItemsThatWouldNotShowOrNotParseAndEditsThatChangeNothing) {
    ASSERT_EQ(Run({"config", "add", kPipeArg}).status, 0);
    ASSERT_EQ(Run({"config", "add", kPipeArg}).status, 0);
    ASSERT_EQ(Run({"qd", "add", kPipeArg, "2", "--number", "031001001001", "--formula", "L"}).out,
              "1\n");
    ASSERT_EQ(Run({"de", "add", kPipeArg, "2", "--qd", "1", "--number", "10-1-2"}).out, "1\n");
    // Without --code the items carry the project's library codes, so the workbench lists them.
    Result shown = Run({"show", kPipeArg});
    EXPECT_TRUE(Has(shown.out, "code={6B1E2F40-3C7A-4D19-9E25-0A8F4C61D2B7} formula=L"));
    EXPECT_TRUE(Has(shown.out, "10-1-2  [, x] code={A3D95C12-7E48-4B06-8F1C-5D2E90B7A4E3}"))
        << shown.out;

    auto qdAdd = [](std::vector<std::string> fields) {
        std::vector<std::string> args = {"qd", "add", kPipeArg, "2", "--number"};
        args.insert(args.end(), fields.begin(), fields.end());
        return args;
    };
    const std::string rule = "encoding rule: 12 digits, a fixed part of 9 and a sequence part of 3";
    ExpectRefused({
        {qdAdd({"0310010010"}), 2, rule},
        {qdAdd({"03100100100A"}), 2, rule},
        {qdAdd({"031001001002", "--unit-code", "m"}), 2, "--unit-code takes an integer"},
        {qdAdd({"031001001002", "--annex", "yes"}), 2, "--annex takes 是 or 否"},
        {qdAdd({"031001001002", "--formula", "L*"}), 2, "公式不完整"},
        {qdAdd({"031001001001"}), 2, "already has bill number 031001001001 (bill item 1)"},
        {{"de", "add", kPipeArg, "2", "--qd", "1", "--number", "10-1-3", "--formula", "M"},
         2,
         "未知变量 M"},
        {{"qd", "add", kPipeArg, "2", "--name", "无编号"}, 2, "a bill item needs --number"},
        {{"de", "add", kPipeArg, "2", "--qd", "4", "--number", "1"}, 2, "no bill item 4"},
        {{"condition", "delete", kPipeArg, "2", "5"}, 2, "no condition 5 in configuration 2"},
        {{"qd", "reset", kPipeArg, "2", "1"}, 2, "give at least one"},
        {{"qd", "reset", kPipeArg, "2", "1", "--formula", "L"}, 1, "holds these values already"},
        {{"de", "reset", kPipeArg, "2", "1", "--name", "x"}, 2, "under bill item 1: use --qd 1"},
        {{"de", "delete", kPipeArg, "2", "1"}, 2, "under bill item 1: use --qd 1"},
        {{"config", "up", kPipeArg, "x"}, 2, "CONFIG-ID must be a number, not \"x\""},
        {{"config", "copy", kPipeArg, "9"}, 2, "no configuration 9 in this category"},
        {{"config", "delete", kPipeArg, "1"}, 2, "configuration 1 is the default one (其它)"},
        {{"config", "up", kPipeArg, "2"}, 1, "configuration 2 is already the first"},
        {{"config", "down", kPipeArg, "3"}, 1, "already the last before the default one"},
        {{"config", "up", kPipeArg, "1"}, 1, "the default one (其它), which always stays last"},
        {{"--dry-run", "config", "add", kPipeArg},
         0,
         "4\n(dry run: nothing saved)\n给排水\\管道\\给水管 (2/201/20101), 4 configuration(s)"},
        {{"show", "管道"},
         2,
         "管道 is a large category; give one of its small categories: '管道\\给水管'"},
        {{"show", "给排水\\管道"}, 2, "small categories: '管道\\给水管', '管道\\排水管'"},
        {{"show", "管道给水管"}, 2, "the shell took out the backslashes. Quote the category"},
    });
}
