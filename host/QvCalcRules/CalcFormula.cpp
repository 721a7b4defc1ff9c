#include "host/QvCalcRules/CalcFormula.h"

#include <charconv>
#include <cmath>
#include <cwctype>

std::vector<CalcVariable> GetCalcVariables(const CString&) {
    return {{L"L", L"长度(m)"}, {L"N", L"数量"}, {L"S", L"面积(m2)"}};
}

namespace {

bool IsNameStart(wchar_t c) {
    return std::iswalpha(static_cast<wint_t>(c)) || c == L'_' || c >= 0x80;
}

bool IsNamePart(wchar_t c) {
    return IsNameStart(c) || std::iswdigit(static_cast<wint_t>(c));
}

// Recursive descent over
//   expr   := term (('+' | '-') term)*
//   term   := factor (('*' | '/') factor)*
//   factor := ('+' | '-') factor | number | name | '(' expr ')'
// Parsing also writes the formula as a small stack program, so a formula applied to many
// components is read once.
class FormulaChecker {
public:
    FormulaChecker(const std::wstring& text, const std::vector<CalcVariable>& variables,
                   std::vector<FormulaStep>* program = nullptr)
        : m_text(text), m_variables(variables), m_program(program) {}

    bool Check(CString& error) {
        SkipBlanks();
        if (m_pos == m_text.size())
            return true;
        bool ok = Expr();
        if (ok && Peek() != L'\0')
            ok = Fail(L"多余的字符");
        if (!ok)
            error = m_error;
        return ok;
    }

private:
    bool Expr() {
        if (!Term())
            return false;
        while (Peek() == L'+' || Peek() == L'-') {
            const bool add = m_text[m_pos++] == L'+';
            if (!Term())
                return false;
            Emit({add ? FormulaStep::kAdd : FormulaStep::kSubtract});
        }
        return true;
    }

    bool Term() {
        if (!Factor())
            return false;
        while (Peek() == L'*' || Peek() == L'/') {
            const bool multiply = m_text[m_pos++] == L'*';
            if (!Factor())
                return false;
            Emit({multiply ? FormulaStep::kMultiply : FormulaStep::kDivide});
        }
        return true;
    }

    bool Factor() {
        if (++m_depth > 200)
            return Fail(L"嵌套过深");
        bool ok = FactorBody();
        --m_depth;
        return ok;
    }

    bool FactorBody() {
        wchar_t c = Peek();
        if (c == L'+' || c == L'-') {
            ++m_pos;
            if (!Factor())
                return false;
            if (c == L'-')
                Emit({FormulaStep::kNegate});
            return true;
        }
        if (c == L'(') {
            ++m_pos;
            if (!Expr())
                return false;
            if (Peek() != L')')
                return Fail(L"缺少右括号");
            ++m_pos;
            return true;
        }
        if (std::iswdigit(static_cast<wint_t>(c)) || c == L'.')
            return Number();
        if (IsNameStart(c))
            return Name();
        return Fail(m_pos == m_text.size() ? L"公式不完整" : L"无法识别的字符");
    }

    bool Number() {
        size_t start = m_pos;
        int digits = 0, points = 0;
        while (m_pos < m_text.size() &&
               (std::iswdigit(static_cast<wint_t>(m_text[m_pos])) || m_text[m_pos] == L'.')) {
            (m_text[m_pos] == L'.' ? points : digits)++;
            ++m_pos;
        }
        if (digits == 0 || points > 1) {
            m_pos = start;
            return Fail(L"数字有误");
        }
        if (m_program) {
            // Digits and a point only: the narrow copy is exact.
            std::string digitsText(m_text.begin() + static_cast<std::ptrdiff_t>(start),
                                   m_text.begin() + static_cast<std::ptrdiff_t>(m_pos));
            double value = 0;
            std::from_chars(digitsText.data(), digitsText.data() + digitsText.size(), value);
            Emit({FormulaStep::kNumber, value});
        }
        return true;
    }

    bool Name() {
        size_t start = m_pos;
        while (m_pos < m_text.size() && IsNamePart(m_text[m_pos]))
            ++m_pos;
        CString name(m_text.substr(start, m_pos - start));
        for (size_t i = 0; i < m_variables.size(); ++i)
            if (m_variables[i].name == name) {
                Emit({FormulaStep::kVariable, 0, i});
                return true;
            }
        m_pos = start;
        return Fail(L"未知变量 " + name);
    }

    wchar_t Peek() {
        SkipBlanks();
        return m_pos < m_text.size() ? m_text[m_pos] : L'\0';
    }

    void SkipBlanks() {
        while (m_pos < m_text.size() && std::iswspace(static_cast<wint_t>(m_text[m_pos])))
            ++m_pos;
    }

    void Emit(const FormulaStep& step) {
        if (m_program)
            m_program->push_back(step);
    }

    bool Fail(const CString& what) {
        CString where;
        where.Format(L"(第%d个字符)", static_cast<int>(m_pos) + 1);
        m_error = what + where;
        return false;
    }

    const std::wstring& m_text;
    const std::vector<CalcVariable>& m_variables;
    std::vector<FormulaStep>* m_program;
    size_t m_pos = 0;
    int m_depth = 0;
    CString m_error;
};

} // namespace

bool CheckFormula(const CString& formula, const std::vector<CalcVariable>& variables,
                  CString& error) {
    return FormulaChecker(formula.str(), variables).Check(error);
}

bool CompiledFormula::Compile(const CString& formula, const std::vector<CalcVariable>& variables,
                              CString& error) {
    m_steps.clear();
    if (FormulaChecker(formula.str(), variables, &m_steps).Check(error))
        return true;
    m_steps.clear();
    return false;
}

double CompiledFormula::Evaluate(const double* values) const {
    if (m_steps.empty())
        return 0;
    // A parsed formula never takes more than its length in stack places.
    std::vector<double> stack;
    stack.reserve(m_steps.size());
    for (const FormulaStep& step : m_steps) {
        if (step.op == FormulaStep::kNumber) {
            stack.push_back(step.number);
            continue;
        }
        if (step.op == FormulaStep::kVariable) {
            stack.push_back(values[step.variable]);
            continue;
        }
        if (step.op == FormulaStep::kNegate) {
            stack.back() = -stack.back();
            continue;
        }
        const double right = stack.back();
        stack.pop_back();
        double& left = stack.back();
        switch (step.op) {
        case FormulaStep::kAdd:
            left += right;
            break;
        case FormulaStep::kSubtract:
            left -= right;
            break;
        case FormulaStep::kMultiply:
            left *= right;
            break;
        default:
            left /= right; // a zero divisor gives inf or nan, which the caller reports
            break;
        }
    }
    return stack.back();
}
