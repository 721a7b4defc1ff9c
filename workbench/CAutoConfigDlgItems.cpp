// How items leave the grid, and the pickers through which they will enter it.
#include "workbench/CAutoConfigDlg.h"

#include "host/QvKoProject/QvKoProject.h"

#include <map>
#include <set>

using namespace AutoConfigIds;

void CAutoConfigDlg::SetPickButtonText() {
    if (CWnd* button = GetDlgItem(kPick))
        button->SetWindowText(CAtt().GetQdDeMode() == 0 ? L"套清单>>" : L"套定额>>");
}

// Shows or hides the picker of the mode beside the dialog.
void CAutoConfigDlg::OnPickButton() {
    CPickerWnd& picker = CAtt().GetQdDeMode() == 1 ? static_cast<CPickerWnd&>(m_dlgSelDe)
                                                   : static_cast<CPickerWnd&>(m_dlgSelQdDe);
    if (picker.IsWindowVisible()) {
        picker.ShowWindow(SW_HIDE);
        return;
    }
    picker.ShowWindow(SW_SHOW);
    picker.MoveWndToRight(this);
    if (&picker == &m_dlgSelDe) {
        m_dlgSelDe.InitDeData();
    } else {
        m_dlgSelQdDe.InitQdDeData();
        m_dlgSelQdDe.SetTreePosition(GetTreePath());
    }
}

// The bill picker follows the component tree while it is open.
void CAutoConfigDlg::SyncPicker() {
    if (CAtt().GetQdDeMode() == 0 && m_dlgSelQdDe.IsWindow() && m_dlgSelQdDe.IsWindowVisible())
        m_dlgSelQdDe.SetTreePosition(GetTreePath());
}

// Picks are not taken yet: the pickers here pick nothing.
LRESULT CAutoConfigDlg::OnApplyQd(WPARAM pick) {
    return pick ? 0 : -1;
}

LRESULT CAutoConfigDlg::OnApplyDe(WPARAM) {
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
