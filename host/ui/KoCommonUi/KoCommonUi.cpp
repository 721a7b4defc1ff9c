#include "host/ui/KoCommonUi/KoCommonUi.h"

using namespace CalculatorIds;

CCalculatorDlg::CCalculatorDlg(const CString& smallCategoryPath, const CString& formula,
                               CWnd* parent)
    : CDialog(L"IDD_FACE_CALCULATOR", parent), m_variables(GetCalcVariables(smallCategoryPath)),
      m_formula(formula) {}

void CCalculatorDlg::DoDataExchange(CDataExchange* pDX) {
    CDialog::DoDataExchange(pDX);
    DDX_Control(pDX, kFormula, m_editFormula);
    DDX_Control(pDX, kVariables, m_listVariables);
    DDX_Text(pDX, kFormula, m_formula);
}

BOOL CCalculatorDlg::OnInitDialog() {
    CDialog::OnInitDialog();
    for (const CalcVariable& variable : m_variables)
        m_listVariables.AddString(variable.name + L"  " + variable.description);
    return TRUE;
}

BOOL CCalculatorDlg::OnCommand(UINT id, UINT code) {
    if (id == kVariables && code == LBN_DBLCLK) {
        int row = m_listVariables.GetCurSel();
        if (row >= 0 && row < static_cast<int>(m_variables.size())) {
            int start = 0, end = 0;
            m_editFormula.GetSel(start, end);
            m_editFormula.ReplaceSel(m_variables[static_cast<size_t>(row)].name);
            m_editFormula.SetFocus();
        }
        return TRUE;
    }
    return CDialog::OnCommand(id, code);
}

void CCalculatorDlg::OnOK() {
    UpdateData(TRUE);
    CString error;
    if (!CheckFormula(m_formula, m_variables, error)) {
        SetDlgItemText(kError, L"公式有误: " + error);
        m_editFormula.SetFocus();
        return;
    }
    CDialog::OnOK();
}

int CFaceGlobalDlg::ShowCalculatorDlg(const CString& smallCategoryPath, const CString& current,
                                      CString& result, CWnd* parent) {
    CCalculatorDlg dialog(smallCategoryPath, current, parent);
    if (dialog.DoModal() != IDOK)
        return 0;
    result = dialog.GetFormula();
    return 1;
}
