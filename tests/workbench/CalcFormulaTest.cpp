// The check of a quantity formula that the calculator applies before it answers.

#include "host/QvCalcRules/CalcFormula.h"

#include <gtest/gtest.h>

TEST(CalcFormula, AcceptsExpressionsOverTheCategorysVariablesOnly) {
    const std::vector<CalcVariable> variables{{L"L", L"长度(m)"}, {L"N", L"数量"}, {L"长度2", L""}};
    CString error;
    for (const wchar_t* good : {L"", L"   ", L"L", L"L*1.2", L"(L + N) / 2", L"-L", L"+.5*N",
                                L"2*(L-(N*3))", L"长度2*2", L"L/ 100"}) {
        EXPECT_TRUE(CheckFormula(good, variables, error))
            << ToUtf8(CString(good)) << ": " << ToUtf8(error);
    }
    struct Bad {
        const wchar_t* formula;
        const wchar_t* says;
    };
    for (Bad bad : {Bad{L"L*", L"公式不完整(第3个字符)"}, Bad{L"(L+N", L"缺少右括号(第5个字符)"},
                    Bad{L"L)", L"多余的字符(第2个字符)"}, Bad{L"L N", L"多余的字符(第3个字符)"},
                    Bad{L"M*2", L"未知变量 M(第1个字符)"}, Bad{L"1..2", L"数字有误(第1个字符)"},
                    Bad{L".", L"数字有误(第1个字符)"}, Bad{L"L%2", L"多余的字符(第2个字符)"},
                    Bad{L"l", L"未知变量 l(第1个字符)"}}) {
        error.Empty();
        EXPECT_FALSE(CheckFormula(bad.formula, variables, error)) << ToUtf8(CString(bad.formula));
        EXPECT_EQ(error, bad.says) << ToUtf8(CString(bad.formula));
    }
    EXPECT_FALSE(CheckFormula(CString(L'(', 5000) + L"L" + CString(L')', 5000), variables, error))
        << "nesting is bounded";
}
