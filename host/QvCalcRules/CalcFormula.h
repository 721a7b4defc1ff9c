#pragma once
// The calculation variables of a small category and the check of a quantity formula written
// over them; the calculator and the command-line tool both check formulas with it. The data
// pack carries no calculation variables, so every small category gets the same small set
// defined here: the length, the count and the area of a component.

#include "platform/CString.h"

#include <vector>

struct CalcVariable {
    CString name;        // as written in a formula: "L"
    CString description; // as shown to the user: "长度(m)"
};

// The variables a formula of this small category (specialty\large\small) may use. An unknown
// category still gets the default set, so the calculator never opens empty.
std::vector<CalcVariable> GetCalcVariables(const CString& smallCategoryPath);

// True when formula is an expression over numbers, the given variables, + - * / and
// parentheses; blanks are allowed between the parts. An empty (or blank) formula is accepted:
// it means that the item has no formula. On false, error says what is wrong and where.
bool CheckFormula(const CString& formula, const std::vector<CalcVariable>& variables,
                  CString& error);
