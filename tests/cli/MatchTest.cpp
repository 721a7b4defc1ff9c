// koqdde match: the configuration a component receives, each condition's verdict, and the
// items it gets, as a person reads them and as a program does.
#include "CliFixture.h"

TEST_F(Cli, MatchShowsTheWinnerAndWhyTheOthersFailed) {
    // #1 材质＝镀锌钢管 and 25＜管径(mm)≤50 with a bill; #2 材质＝镀锌钢管; #3 the default.
    ASSERT_NO_FATAL_FAILURE(Setup({
        {"config", "add", kPipeArg},
        {"config", "add", kPipeArg},
        {"condition", "add", kPipeArg, "#1", "--attr", "材质", "--eq", "镀锌钢管"},
        {"condition", "add", kPipeArg, "#2", "--attr", "材质", "--eq", "镀锌钢管"},
        {"condition", "add", kPipeArg, "#1", "--attr", "管径(mm)", "--gt", "25", "--le", "50"},
        {"qd", "add", kPipeArg, "#1", "--number", "031001001001", "--formula", "L"},
    }));

    Result first = Run({"--json", "match", kPipeArg, "材质=镀锌钢管", "管径(mm)=32"});
    ASSERT_EQ(first.status, 0) << first.err;
    for (const char* part :
         {"\"component\": {\n    \"材质\": \"镀锌钢管\",\n    \"管径(mm)\": \"32\"",
          "\"position\": 1", "\"matched\": true", "\"strQdId\": \"031001001001\""})
        EXPECT_TRUE(Has(first.out, part)) << part << "\n" << first.out;
    EXPECT_FALSE(Has(first.out, "\"position\": 2")) << "tried beyond the first match";

    Result second = Run({"match", kPipeArg, "材质=镀锌钢管", "管径(mm)=80"});
    EXPECT_TRUE(Has(second.out, "#1 config 2: does not match\n  材质＝镀锌钢管: holds\n"
                                "  25＜管径(mm)≤50: 80 is above the range (upper bound ≤ 50)\n"
                                "#2 config 3: matches\n"))
        << second.out;
    Result fallback = Run({"--json", "match", kPipeArg, "管径(mm)=DN32"});
    for (const char* part :
         {"\"verdict\": \"valueDiffers\"", "\"position\": 3", "\"default\": true"})
        EXPECT_TRUE(Has(fallback.out, part)) << part;

    Result typo = Run({"match", kPipeArg, "材料=镀锌钢管"});
    EXPECT_EQ(typo.status, 2);
    EXPECT_TRUE(Has(typo.err, "the category has no attribute \"材料\"")) << typo.err;
}
