// What a user of any good command-line tool expects of this one: versions, help, suggestions
// for typos, errors a program can read, every way of naming a category and a configuration.
#include "CliFixture.h"

TEST_F(Cli, HelpVersionAndSuggestionsFollowTheUsualConventions) {
    Result version = Run({"--version"}, false);
    EXPECT_EQ(version.status, 0);
    EXPECT_EQ(version.out.rfind("koqdde ", 0), 0u) << version.out;

    // The bare tool is a usage error: its help goes to standard error, nothing to standard output.
    Result bare = Run({}, false);
    EXPECT_EQ(bare.status, 2);
    EXPECT_TRUE(bare.out.empty());
    EXPECT_TRUE(Has(bare.err, "Commands:"));

    Result help = Run({"help", "show"}, false);
    EXPECT_EQ(help.status, 0);
    EXPECT_TRUE(Has(help.out, "Example"));
    EXPECT_EQ(help.out, Run({"show", "--help"}, false).out);

    struct Typo {
        std::vector<std::string> args;
        std::string message;
    };
    for (const Typo& typo : std::vector<Typo>{
             {{"shwo", kPipeArg}, "unknown command \"shwo\"; did you mean show?"},
             {{"--dryrun", "tree"}, "unknown option --dryrun; did you mean --dry-run?"},
             {{"condition", "add", kPipeArg, "1", "--atr", "材质"},
              "unknown option --atr; did you mean --attr?"},
             {{"show", kPipeArg, "--values"}, "unknown option --values\n"},
         }) {
        Result r = Run(typo.args);
        EXPECT_EQ(r.status, 2) << typo.message;
        EXPECT_TRUE(Has(r.err, typo.message)) << r.err;
        EXPECT_TRUE(r.out.empty()) << r.out;
    }
}

TEST_F(Cli, ErrorsUnderJsonAreOneObjectOnStandardError) {
    Result r = Run({"--json", "show", "管道\\没有"});
    EXPECT_EQ(r.status, 2);
    EXPECT_TRUE(r.out.empty());
    for (const char* part : {"{\n  \"error\": {", "\"status\": 2", "\"kind\": \"usage\"",
                             "\"message\": \"unknown category \\\"管道\\\\没有\\\""})
        EXPECT_TRUE(Has(r.err, part)) << part << " in " << r.err;
}

TEST_F(Cli, CategoriesByIdConfigurationsByPositionAndOtherSpecialties) {
    ASSERT_EQ(Run({"config", "add", kPipeArg}).status, 0);
    ASSERT_EQ(Run({"config", "add", kPipeArg}).status, 0);
    // As `tree` prints them: 给排水 (2) > 管道 (201) > 给水管 (20101); names and ids mix.
    Result byIds = Run({"show", "2/201/20101"});
    Result mixed = Run({"show", "管道\\20101"});
    ASSERT_EQ(byIds.status, 0) << byIds.err;
    EXPECT_TRUE(Has(mixed.out, "config 3: "));
    EXPECT_EQ(byIds.out.substr(byIds.out.find('\n')), mixed.out.substr(mixed.out.find('\n')));

    // #2 is the second in the list as the workbench shows it: config 3, added last, stands
    // in front of the default; moving #2 up puts it first.
    ASSERT_EQ(Run({"config", "up", kPipeArg, "#2"}).status, 0);
    Result moved = Run({"show", kPipeArg});
    EXPECT_LT(moved.out.find("config 3: "), moved.out.find("config 2: ")) << moved.out;
    Result beyond = Run({"config", "up", kPipeArg, "#4"});
    EXPECT_EQ(beyond.status, 2);
    EXPECT_TRUE(Has(beyond.err, "no configuration #4: the category has 3, #1 to #3"));

    Result other = Run({"--spec", "电气", "show", "配电箱柜\\配电箱柜"});
    EXPECT_EQ(other.status, 0) << other.err;
    Result unknown = Run({"--spec", "机械", "tree"});
    EXPECT_EQ(unknown.status, 2);
    EXPECT_TRUE(Has(unknown.err, "it has 建筑, 给排水, 电气")) << unknown.err;

    Result attrs = Run({"attrs", kPipeArg, "--values"});
    EXPECT_TRUE(Has(attrs.out, "材质  (list 给水管材质)\n    镀锌钢管\n")) << attrs.out;
}

TEST_F(Cli, TextsFollowTheLanguageOfTheLocale) {
    environment = "LANGUAGE=zh_CN LC_ALL=C.UTF-8";
    Result chinese = Run({"show", kPipeArg, "--bogus"});
    EXPECT_TRUE(Has(chinese.err, "未知选项 --bogus")) << chinese.err;
    environment = "LANGUAGE= LC_ALL=C.UTF-8";
    Result english = Run({"show", kPipeArg, "--bogus"});
    EXPECT_TRUE(Has(english.err, "unknown option --bogus")) << english.err;
}
