#include "host/QvCalcRules/CalcFormula.h"

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
// It only checks: the quantities are worked out by the application, not here.
class FormulaChecker {
public:
    FormulaChecker(const std::wstring& text, const std::vector<CalcVariable>& variables)
        : m_text(text), m_variables(variables) {}

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
            ++m_pos;
            if (!Term())
                return false;
        }
        return true;
    }

    bool Term() {
        if (!Factor())
            return false;
        while (Peek() == L'*' || Peek() == L'/') {
            ++m_pos;
            if (!Factor())
                return false;
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
            return Factor();
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
        return true;
    }

    bool Name() {
        size_t start = m_pos;
        while (m_pos < m_text.size() && IsNamePart(m_text[m_pos]))
            ++m_pos;
        CString name(m_text.substr(start, m_pos - start));
        for (const auto& variable : m_variables)
            if (variable.name == name)
                return true;
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

    bool Fail(const CString& what) {
        CString where;
        where.Format(L"(第%d个字符)", static_cast<int>(m_pos) + 1);
        m_error = what + where;
        return false;
    }

    const std::wstring& m_text;
    const std::vector<CalcVariable>& m_variables;
    size_t m_pos = 0;
    int m_depth = 0;
    CString m_error;
};

} // namespace

bool CheckFormula(const CString& formula, const std::vector<CalcVariable>& variables,
                  CString& error) {
    return FormulaChecker(formula.str(), variables).Check(error);
}
