// How items enter the grid from the pickers and leave it again.
#include "workbench/CAutoConfigDlg.h"

#include "dialogs/CDlgGetQdNum.h"
#include "host/QvBillKit/QvBillKit.h"
#include "host/QvKoProject/QvKoProject.h"
#include "platform/MessageBox.h"
#include "presenter/LibraryItems.h"

#include <map>
#include <set>

using namespace AutoConfigIds;

void CAutoConfigDlg::SetPickButtonText() {
    if (CWnd* button = GetDlgItem(kPick))
        button->SetWindowText(CAtt().GetQdDeMode() == 0 ? L"套清单>>" : L"套定额>>");
}

// Where the bill picker opens for the selected small category: the library's chapter as a
// dotted position.
CString CAutoConfigDlg::PickerPosition() {
    CString position = CSys::GetIndexPath(GetTreePath());
    position.Replace(L"\\", L".");
    return position;
}

// Shows or hides the picker of the mode beside the dialog.
void CAutoConfigDlg::OnPickButton() {
    if (CAtt().GetQdDeMode() == 1) {
        m_dlgSelDe.EnableMainControl();
        if (m_dlgSelDe.IsWindowVisible()) {
            m_dlgSelDe.ShowWindow(SW_HIDE);
            return;
        }
        m_dlgSelDe.ShowWindow(SW_SHOW);
        m_dlgSelDe.MoveWndToRight(this);
        m_dlgSelDe.InitDeData();
        return;
    }
    if (m_dlgSelQdDe.IsWindowVisible()) {
        m_dlgSelQdDe.ShowWindow(SW_HIDE);
        return;
    }
    CString position = PickerPosition();
    m_dlgSelQdDe.ShowWindow(SW_SHOW);
    m_dlgSelQdDe.MoveWndToRight(this);
    m_dlgSelQdDe.InitQdDeData();
    m_dlgSelQdDe.SetTreePosition(position);
}

// The bill picker follows the component tree while it is open.
void CAutoConfigDlg::SyncPicker() {
    if (CAtt().GetQdDeMode() == 0 && m_dlgSelQdDe.IsWindow() && m_dlgSelQdDe.IsWindowVisible())
        m_dlgSelQdDe.SetTreePosition(PickerPosition());
}

// A new item without a formula takes the first calculation item's formula of its small
// category; a category without calculation items is reported, and the item keeps no formula.
void CAutoConfigDlg::DefaultFormula(const CString& smallCategoryPath, CString& formula) {
    if (!DefaultFormulaOf(smallCategoryPath, formula))
        ShowWarning(L"计算规则不对应!");
}

// Puts the selection on the rows whose number is number; with several, the last one wins.
void CAutoConfigDlg::SelectRowOfNumber(const CString& number) {
    for (int row = 1; row <= m_grid.GetRowCount(); ++row) {
        if (!m_grid.IsValid(row, 1) || m_grid.GetItemText(row, 1).Compare(number) != 0)
            continue;
        m_grid.SetSelectedRange(row, 1, row, m_grid.GetColumnCount() - 1, FALSE);
        m_grid.SetFocusCell(row, 1);
        m_grid.SetFocus();
    }
}

// A bill picked in the bill picker: its number is settled in the bill number dialog, then the
// bill enters the selected configuration.
LRESULT CAutoConfigDlg::OnApplyQd(WPARAM wParam) {
    const auto* pick = reinterpret_cast<const SQdInfo*>(wParam);
    if (!pick)
        return -1;
    CDlgGetQdNum dialog(nullptr);
    dialog.m_strQdNum = pick->strQdNum;
    CPath path;
    if (!GetConfigPath(path))
        return 0;
    ConfigNode* config = m_pPresenter->GetConfig(path);
    if (!config)
        return 0;
    for (QdNode* qd : config->GetQd())
        dialog.m_arrUsedQd.Add(qd->m_qd.strQdId);
    if (dialog.DoModal() != IDOK)
        return 0;

    // The library is asked for the number the picker sent, not the one settled.
    SQdInfo info;
    if (!IBillLib::GetQdInfo(pick->strQdNum, info))
        return 0;
    QdStruct qd = QdFromLibrary(info, dialog.m_strQdNum, CAtt().GetQdCode());
    if (qd.strFormula.IsEmpty())
        DefaultFormula(GetSmallCategoryPath(), qd.strFormula);

    if (!GetConfigPath(path))
        return 0;
    m_vecConfig.clear();
    if (!m_pPresenter->AddQd(qd, path, m_vecConfig))
        return 0;
    RefillGrid(m_vecConfig);
    SelectRowOfNumber(qd.strQdId);
    return 0;
}

// A quota picked: in quota mode it goes to the configuration, in bill mode to the bill of the
// one selected row.
LRESULT CAutoConfigDlg::OnApplyDe(WPARAM wParam) {
    const auto* pick = reinterpret_cast<const SDeInfo*>(wParam);
    const bool quotaMode = CAtt().GetQdDeMode() != 0;
    CPath path;
    if (!(quotaMode ? GetConfigPath(path) : GetSelQdPath(path)))
        return 0;
    DeStruct de = DeFromLibrary(*pick, quotaMode ? CAtt().GetDeCode() : CAtt().GetQdDeCode());
    if (de.strFormula.IsEmpty())
        DefaultFormula(GetSmallCategoryPath(), de.strFormula);

    m_vecConfig.clear();
    const bool added = quotaMode ? m_pPresenter->AddDe2ConfigNode(de, path, m_vecConfig)
                                 : m_pPresenter->AddDe2QdNode(de, path, m_vecConfig);
    if (!added) {
        ShowWarning(L"套定额失败!");
        return 0;
    }
    RefillGrid(m_vecConfig);
    SelectRowOfNumber(de.strDeId);
    return 0;
}

// Deletes the selected rows' items without asking, then puts the selection next to where
// they were.
void CAutoConfigDlg::OnDeleteRows() {
    CPath path;
    if (!GetConfigPath(path))
        return;
    std::vector<int> rows;
    m_grid.GetSelectRows(rows);
    int lastRow = 0;
    if (CAtt().GetQdDeMode() != 0) {
        std::set<int> quotas;
        for (int row : rows) {
            lastRow = row;
            if (m_grid.GetItemData(row, 1) == 0)
                continue;
            quotas.insert(static_cast<int>(m_grid.GetItemData(row, 0)));
            m_pPresenter->DelDeInConfigNode(path, quotas);
        }
    } else {
        std::set<int> bills;
        std::map<int, std::set<int>> quotas;
        for (int row : rows) {
            lastRow = row;
            if (m_grid.GetItemData(row, 1) == 0) {
                bills.insert(static_cast<int>(m_grid.GetItemData(row, 0)));
                continue;
            }
            int owner = row;
            while (owner > 0 && m_grid.GetItemData(owner, 1) != 0)
                --owner;
            if (owner <= 0)
                continue;
            quotas[static_cast<int>(m_grid.GetItemData(owner, 0))].insert(
                static_cast<int>(m_grid.GetItemData(row, 0)));
        }
        if (!bills.empty())
            m_pPresenter->DelQd(path, bills);
        if (!quotas.empty())
            m_pPresenter->DelDeInQdNode(path, quotas);
    }
    m_vecConfig.clear();
    m_pPresenter->GetConfig(path, m_vecConfig);
    RefillGrid(m_vecConfig);
    int select = lastRow < 1 ? lastRow + 1 : lastRow - 1;
    m_grid.SetSelectedRange(select, 1, select, m_grid.GetColumnCount() - 1, FALSE);
    m_grid.SetFocusCell(select, 1);
    m_grid.SetFocus();
}
