#pragma once
// Stand-in for the host's common dialogs: the calculator in which the user writes the quantity
// formula of an item from the calculation variables of its small category.

#include "host/QvCalcRules/CalcFormula.h"
#include "platform/CString.h"
#include "ui/Controls.h"

#include <vector>

// Control ids of template IDD_FACE_CALCULATOR.
namespace CalculatorIds {
inline constexpr int kFormula = 1001;
inline constexpr int kVariables = 1002;
inline constexpr int kError = 1003;
} // namespace CalculatorIds

class CCalculatorDlg : public CDialog {
public:
    CCalculatorDlg(const CString& smallCategoryPath, const CString& formula, CWnd* parent);
    CString GetFormula() const { return m_formula; }

protected:
    void DoDataExchange(CDataExchange* pDX) override;
    BOOL OnInitDialog() override;
    BOOL OnCommand(UINT id, UINT code) override;
    // Keeps the dialog open on a formula that does not parse, saying why.
    void OnOK() override;

private:
    std::vector<CalcVariable> m_variables;
    CString m_formula;
    CEdit m_editFormula;
    CListBox m_listVariables;
};

class CFaceGlobalDlg {
public:
    // Modal. 1 on OK with the formula in result; otherwise result is left alone.
    static int ShowCalculatorDlg(const CString& smallCategoryPath, const CString& current,
                                 CString& result, CWnd* parent);
};
