// koqdde lint: findings with their place, the exit status, and --fix as the one repair that
// writes, and only when asked.
#include "CliFixture.h"

TEST_F(Cli, LintReportsWhereAndWhyAndRepairsOnlyWhenAsked) {
    ASSERT_NO_FATAL_FAILURE(Setup({
        {"config", "add", kPipeArg},
        {"condition", "add", kPipeArg, "#1", "--attr", "材质", "--eq", "镀锌钢管"},
        {"condition", "add", kPipeArg, "#1", "--attr", "保温厚度(mm)", "--gt", "15", "--le", "30"},
        {"qd", "add", kPipeArg, "#1", "--number", "031001001001", "--formula", "L"},
    }));
    Result clean = Run({"lint"});
    EXPECT_EQ(clean.status, 0) << clean.out << clean.err;
    EXPECT_TRUE(Has(clean.out, "0 error(s), 0 warning(s)")) << clean.out;

    // The copy sits below its original (never matches) and its conditions came with id 0.
    ASSERT_EQ(Run({"config", "copy", kPipeArg, "#1"}).status, 0);
    // Findings, a dry run of the repair, and a FILE beside --file change nothing.
    ExpectRefused({
        {{"lint"},
         1,
         "error: 给排水\\管道\\给水管 #2 (config 3): never matches: #1 (config 2) above it "
         "catches every component it would"},
        {{"lint"}, 1, "1 error(s), 1 warning(s)"},
        {{"--dry-run", "lint", "--fix"}, 1, "1 condition(s) would be renumbered (dry run)"},
        {{"lint", Config()}, 2, "either as FILE or with --file, not both"},
    });
    Result json = Run({"--json", "lint"});
    for (const char* part : {"\"kind\": \"shadowed\"", "\"kind\": \"sharedConditionId\"",
                             "\"position\": 2", "\"renumbered\": 0"})
        EXPECT_TRUE(Has(json.out, part)) << part << "\n" << json.out;

    const std::string before = Bytes(Config());
    Result fixed = Run({"lint", "--fix"});
    EXPECT_TRUE(Has(fixed.out, "1 condition(s) renumbered and saved")) << fixed.out;
    EXPECT_FALSE(Bytes(Config()) == before) << "--fix did not save";
    Result after = Run({"--json", "lint"});
    EXPECT_FALSE(Has(after.out, "sharedConditionId")) << after.out;
    EXPECT_TRUE(Has(after.out, "\"kind\": \"shadowed\"")) << "the one repair is the ids";

    Result missing = Run({"lint", Path("nowhere.xml")}, false);
    EXPECT_EQ(missing.status, 2);
    EXPECT_TRUE(Has(missing.err, "nowhere.xml does not exist")) << missing.err;
    EXPECT_FALSE(std::filesystem::exists(Path("nowhere.xml"))) << "lint made the file it read";
}
