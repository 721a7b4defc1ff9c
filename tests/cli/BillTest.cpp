// koqdde apply COMPONENTS.csv: the bill of quantities as text, JSON and CSV, and the output
// file replaced only when asked.
#include "CliFixture.h"

#include <pugixml.hpp>

#include <cstdlib>
#include <fstream>

namespace {

// A cell of a sheet of an .xlsx file as a spreadsheet shows it: its number, or its text
// through the shared strings.
std::string Cell(const std::string& book, int sheet, const char* ref) {
    auto part = [&](const std::string& name) {
        const std::string command = "unzip -p '" + book + "' " + name;
        std::string xml;
        FILE* pipe = popen(command.c_str(), "r");
        char buffer[4096];
        for (size_t n; pipe && (n = fread(buffer, 1, sizeof buffer, pipe)) > 0;)
            xml.append(buffer, n);
        if (pipe)
            pclose(pipe);
        auto doc = std::make_unique<pugi::xml_document>();
        doc->load_string(xml.c_str());
        return doc;
    };
    auto cells = part("xl/worksheets/sheet" + std::to_string(sheet) + ".xml");
    const pugi::xml_node cell =
        cells->select_node(("//c[@r='" + std::string(ref) + "']").c_str()).node();
    const std::string value = cell.child("v").text().as_string();
    if (std::string(cell.attribute("t").as_string()) != "s")
        return value;
    auto strings = part("xl/sharedStrings.xml");
    return strings->select_node(("//si[" + std::to_string(std::stoi(value) + 1) + "]/t").c_str())
        .node()
        .text()
        .as_string();
}

} // namespace

TEST_F(Cli, AComponentListBecomesABillOfQuantities) {
    ASSERT_NO_FATAL_FAILURE(Setup({
        {"config", "add", kPipeArg},
        {"condition", "add", kPipeArg, "#1", "--attr", "材质", "--eq", "镀锌钢管"},
        {"qd", "add", kPipeArg, "#1", "--number", "031001001001", "--name", "镀锌钢管", "--unit",
         "m", "--formula", "L"},
        {"de", "add", kPipeArg, "#1", "--qd", "1", "--number", "10-1-2", "--unit", "10m",
         "--formula", "L/10"},
    }));
    std::ofstream(Path("list.csv")) << "类别,材质,L\n"
                                       "管道\\给水管,镀锌钢管,12.5\n"
                                       "管道/给水管,镀锌钢管,7.5\n"
                                       "管道\\给水管,PPR管,3\n"
                                       "管道\\无此管,镀锌钢管,1\n";
    Result text = Run({"apply", Path("list.csv")});
    EXPECT_EQ(text.status, 1) << "a row with a problem: " << text.err;
    for (const char* line : {"1\t031001001001\t镀锌钢管\tm\t20\t2\n", "1.1\t10-1-2\t\t10m\t2\t2\n",
                             "line 4\t管道\\给水管\t材质=PPR管\n",
                             "line 5\tthe configuration has no small category \"管道\\无此管\"\n"})
        EXPECT_TRUE(Has(text.out, line)) << line << "\n" << text.out;

    Result json = Run({"--json", "apply", Path("list.csv")});
    for (const char* part :
         {"\"quantity\": 20,", "\"quantity\": 2,", "\"kind\": \"unknownCategory\"",
          "\"defaultOnly\": [\n    {\n      \"line\": 4"})
        EXPECT_TRUE(Has(json.out, part)) << part << "\n" << json.out;

    const std::string bill = Path("bill.csv");
    std::ofstream(Path("bad.csv")) << "材质,L\n镀锌钢管,1\n";
    ExpectRefused({
        {{"--dry-run", "apply", Path("list.csv"), "-o", bill}, 0, "apply would write the bill"},
        {{"apply", Path("list.csv"), "-o", Path("bill.txt")}, 2, "writes a .csv or .xlsx file"},
        {{"apply", Path("nowhere.csv")}, 2, "nowhere.csv does not exist"},
        {{"apply", Path("bad.csv")}, 2, "no column 类别"},
    });
    Run({"apply", Path("list.csv"), "-o", bill});
    const std::string written = Bytes(bill);
    EXPECT_TRUE(Has(written,
                    "序号,编号,名称,单位,工程量,构件数\r\n1,031001001001,镀锌钢管,m,20,2\r\n"
                    "1.1,10-1-2,,10m,2,2\r\n"))
        << written;
    EXPECT_TRUE(Has(written, "仅默认配置,类别,属性\r\n4,管道\\给水管,材质=PPR管\r\n")) << written;
    ExpectRefused({{{"apply", Path("list.csv"), "-o", bill}, 4, "Give --force to replace it"}});
    EXPECT_EQ(Run({"--force", "apply", Path("list.csv"), "-o", bill}).status, 1);
    EXPECT_TRUE(Bytes(bill + ".bak") == written) << "the replaced bill is kept";

    const std::string book = Path("bill.xlsx");
    ASSERT_EQ(Run({"apply", Path("list.csv"), "-o", book}).status, 1);
    for (const auto& [sheet, ref, value] :
         std::vector<std::tuple<int, const char*, std::string>>{{1, "B2", "031001001001"},
                                                                {1, "E2", "20"},
                                                                {1, "A3", "1.1"},
                                                                {1, "E3", "2"},
                                                                {2, "A2", "4"},
                                                                {2, "C2", "材质=PPR管"},
                                                                {3, "A2", "5"}})
        EXPECT_EQ(Cell(book, sheet, ref), value) << "sheet " << sheet << " " << ref;
}
