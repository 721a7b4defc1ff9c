// A component list through a configuration to a bill of quantities, checked by value; the
// CSV it is read from; the formula evaluation it rests on.
#include "rules/BillOfQuantities.h"
#include "host/QvCalcRules/CalcFormula.h"
#include "model/ConditionNode.h"
#include "model/ConfigNode.h"
#include "model/QdNode.h"
#include "presenter/CQdDeConfigPresenter.h"
#include "rules/ComponentList.h"
#include "store/CXmlQdDeConfig.h"
#include "support/TestHost.h"

#include <gtest/gtest.h>

namespace {

QdStruct Bill(const wchar_t* number, const wchar_t* formula) {
    QdStruct qd;
    qd.strQdId = number;
    qd.strName = L"管道";
    qd.strUnit = L"m";
    qd.strFormula = formula;
    return qd;
}

DeStruct Quota(const wchar_t* number, const wchar_t* formula) {
    DeStruct de;
    de.strDeId = number;
    de.strUnit = L"10m";
    de.strFormula = formula;
    return de;
}

std::string Describe(const BoqItem& item) {
    return ToUtf8(item.number) + "=" + std::to_string(item.quantity) + "/" +
           std::to_string(item.components);
}

} // namespace

TEST(BillOfQuantities, ComponentsAreMatchedCountedSummedAndListedByNumber) {
    TestHost host;
    host.Add(L"给排水", L"管道", L"给水管", 1, 101);
    CQdDeConfigPresenter presenter(host.ConfigDir() + L"/boq.xml");
    CPath path;
    path.SpecId = host.data.catalog[0].id;
    path.LMemberId = 1;
    path.SMemberId = 101;
    auto addConfig = [&](const wchar_t* material) {
        presenter.AddConfig(path, path.ConfigId);
        ConfigNode* config = presenter.GetConfig(path);
        config->AddCondition(new ConditionNode(L"材质", true, L"＝", L"", L"", material, L"", L""));
        return config;
    };
    ConfigNode* zinc = addConfig(L"镀锌钢管");
    zinc->AddQd(Bill(L"031001006002", L"L"));
    zinc->GetQd(1)->AddDe(Quota(L"10-1-1", L"L/10"));
    ConfigNode* ppr = addConfig(L"PPR管");
    ppr->AddQd(Bill(L"031001006001", L"L*1.05"));
    ppr->AddDe(Quota(L"10-11-1", L"N"));
    ppr->AddDe(Quota(L"10-2-1", L"N*2"));
    addConfig(L"铸铁管")->AddQd(Bill(L"031001005001", L"L*("));
    addConfig(L"零长")->AddQd(Bill(L"031001007001", L"N/L"));

    const std::string csv = "\xEF\xBB\xBF类别,材质,L,N,S\r\n"
                            "管道\\给水管,镀锌钢管,10,,\r\n"
                            "管道\\给水管,镀锌钢管,5.5,,\r\n"
                            "管道\\给水管,PPR管,20,3,\r\n"
                            "管道\\给水管,铸铁管,1,,\r\n"
                            "管道\\给水管,不锈钢管,2,,\r\n"
                            "管道\\无此,镀锌钢管,2,,\r\n"
                            "给排水/管道/给水管,镀锌钢管,1,,\r\n"
                            "管道\\给水管,零长,0,2,\r\n";
    std::vector<ComponentRow> rows;
    std::string error;
    ASSERT_TRUE(ReadComponentList(csv, rows, error)) << error;
    ASSERT_EQ(rows.size(), 8u);

    auto* store = dynamic_cast<CXmlQdDeConfig*>(presenter.GetData());
    const BillOfQuantities boq = ApplyComponents(store->GetSpec(), rows);
    EXPECT_EQ(boq.components, 8);
    std::vector<std::string> bills, quotas;
    for (const BoqBill& bill : boq.bills) {
        bills.push_back(Describe(bill.item));
        for (const BoqItem& quota : bill.quotas)
            quotas.push_back(ToUtf8(bill.item.number) + ">" + Describe(quota));
    }
    for (const BoqItem& quota : boq.quotas)
        quotas.push_back(Describe(quota));
    // Listed by number, digit runs by value, not in the order first met.
    EXPECT_EQ(bills,
              (std::vector<std::string>{"031001006001=21.000000/1", "031001006002=16.500000/3"}));
    EXPECT_EQ(quotas, (std::vector<std::string>{"031001006002>10-1-1=1.650000/3",
                                                "10-2-1=6.000000/1", "10-11-1=3.000000/1"}));
    ASSERT_EQ(boq.defaultOnly.size(), 1u);
    EXPECT_EQ(boq.defaultOnly[0]->line, 6);
    std::vector<std::string> problems;
    for (const BoqProblem& p : boq.problems)
        problems.push_back(std::to_string(p.line) + " " + p.kind);
    EXPECT_EQ(problems,
              (std::vector<std::string>{"5 badFormula", "7 unknownCategory", "9 notFinite"}));
}

TEST(BillOfQuantities, CsvFieldsAndFormulasReadAsWritten) {
    struct Case {
        const char* text;
        std::vector<std::vector<std::string>> records;
        std::vector<int> lines; // where each record starts
    };
    const Case cases[] = {
        {"a,b\nc,d", {{"a", "b"}, {"c", "d"}}, {1, 2}},
        {"\"x,y\",\"say \"\"hi\"\"\"\r\n", {{"x,y", "say \"hi\""}}, {1}},
        {"\"two\nlines\",z\n\nw\r\n\r\nv", {{"two\nlines", "z"}, {"w"}, {"v"}}, {1, 4, 6}},
        {"a,,\n", {{"a", "", ""}}, {1}},
    };
    for (const Case& c : cases) {
        std::vector<std::vector<std::string>> records;
        std::vector<int> lines;
        std::string error;
        ASSERT_TRUE(ReadCsv(c.text, records, error, &lines)) << c.text;
        EXPECT_EQ(records, c.records) << c.text;
        EXPECT_EQ(lines, c.lines) << c.text;
    }
    for (const std::string field : {"plain", "x,y", "say \"hi\"", "two\nlines"}) {
        std::vector<std::vector<std::string>> records;
        std::string error;
        ASSERT_TRUE(ReadCsv(CsvField(field) + "," + CsvField(field), records, error));
        EXPECT_EQ(records, (std::vector<std::vector<std::string>>{{field, field}}));
    }
    std::vector<std::vector<std::string>> records;
    std::string error;
    EXPECT_FALSE(ReadCsv("a\n\"open,b\n", records, error));
    EXPECT_EQ(error, "line 2: a quote is never closed");

    std::vector<ComponentRow> rows;
    EXPECT_FALSE(ReadComponentList("材质,L\n镀锌钢管,1\n", rows, error));
    EXPECT_FALSE(ReadComponentList("类别,L\n\n管道\\给水管,十\n", rows, error));
    EXPECT_EQ(error, "line 3: L \"十\" is no number");

    const std::vector<CalcVariable> variables = GetCalcVariables(L"");
    const double values[] = {2, 3, 5}; // L, N, S
    struct Formula {
        const wchar_t* text;
        double value;
    };
    for (const Formula& f : {Formula{L"L", 2}, Formula{L"", 0}, Formula{L"L+N*S", 17},
                             Formula{L"(L+N)*S", 25}, Formula{L"-L-N", -5}, Formula{L"S/L/2", 1.25},
                             Formula{L"L*1.05", 2.1}, Formula{L" 10 - -N ", 13}}) {
        CompiledFormula formula;
        CString why;
        ASSERT_TRUE(formula.Compile(f.text, variables, why)) << ToUtf8(CString(f.text));
        EXPECT_DOUBLE_EQ(formula.Evaluate(values), f.value) << ToUtf8(CString(f.text));
    }
}
