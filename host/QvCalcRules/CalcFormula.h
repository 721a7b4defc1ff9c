#pragma once
// The calculation variables of a small category and the check of a quantity formula written
// over them; the calculator and the command-line tool both check formulas with it. The data
// pack carries no calculation variables, so every small category gets the same small set
// defined here: the length, the count and the area of a component.

#include "platform/CString.h"
#include "platform/Export.h"

#include <vector>

struct CalcVariable {
    CString name;        // as written in a formula: "L"
    CString description; // as shown to the user: "长度(m)"
};

// The variables a formula of this small category (specialty\large\small) may use. An unknown
// category still gets the default set, so the calculator never opens empty.
KOQDDE_DIALOGS_API std::vector<CalcVariable> GetCalcVariables(const CString& smallCategoryPath);

// True when formula is an expression over numbers, the given variables, + - * / and
// parentheses; blanks are allowed between the parts. An empty (or blank) formula is accepted:
// it means that the item has no formula. On false, error says what is wrong and where.
KOQDDE_DIALOGS_API bool CheckFormula(const CString& formula,
                                     const std::vector<CalcVariable>& variables, CString& error);

// One step of a parsed formula, run on a stack.
struct FormulaStep {
    enum Op { kNumber, kVariable, kAdd, kSubtract, kMultiply, kDivide, kNegate } op;
    double number = 0;   // kNumber
    size_t variable = 0; // kVariable: the index into the variables it was parsed with
};

// A formula parsed once by the same parser as CheckFormula and evaluated for many sets of
// values: the quantity of an item for each component.
class CompiledFormula {
public:
    // False, with CheckFormula's error, when the formula does not parse. An empty formula
    // compiles and evaluates to 0: the item has no quantity of its own.
    bool Compile(const CString& formula, const std::vector<CalcVariable>& variables,
                 CString& error);
    // values[i] is the value of the i-th variable given to Compile.
    double Evaluate(const double* values) const;

private:
    std::vector<FormulaStep> m_steps;
};
