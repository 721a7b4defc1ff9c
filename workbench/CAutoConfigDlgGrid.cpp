// The workbench's bill and quota grid: filled from the selected configuration, written back
// row by row. A row's kind (0 bill, 1 quota) is the item data of column 1, its node id that of
// column 0; a quota row belongs to the nearest bill row above it.
#include "workbench/CAutoConfigDlg.h"

#include "host/QvKoProject/QvKoProject.h"
#include "host/ui/KoCommonUi/KoCommonUi.h"
#include "platform/NumParse.h"

using namespace AutoConfigIds;

namespace {

constexpr LPARAM kBillRow = 0;
constexpr LPARAM kQuotaRow = 1;

bool SameLibrary(const CString& itemCode, const CString& libraryCode) {
    return itemCode.CompareNoCase(libraryCode) == 0;
}

int AddQuotaRow(MyGridCtrl& grid, const DeNode* de) {
    const DeStruct& record = de->m_de;
    int row =
        grid.InsertOneprop(grid.GetRowCount(), {record.strDeId, record.strName, record.strUnit,
                                                record.strFormula, record.strAnnex});
    grid.SetItemState(row, 1, GVIS_READONLY);
    grid.SetItemData(row, 1, kQuotaRow);
    grid.SetItemData(row, 0, de->GetId());
    return row;
}

// The unit's leading number is the unit coefficient: "m" is 1, "100m" is 100.
CString UnitCode(CString unit) {
    unit.Trim();
    int value = WToI(unit);
    if (value < 1)
        value = 1;
    CString text;
    text.Format(L"%ld", static_cast<long>(value));
    return text;
}

} // namespace

void CAutoConfigDlg::CreateGrid() {
    CRect rect;
    if (CWnd* frame = GetDlgItem(kGridFrame)) {
        frame->GetWindowRect(&rect);
        ScreenToClient(&rect);
    }
    m_grid.Create(rect, this, kGrid);
    m_grid.InitGrid(false);
}

// The fittings column is offered only for categories whose items may carry pipe fittings.
void CAutoConfigDlg::ResetGridColumns() {
    m_grid.DeleteAllItems();
    SQvKoSmallCategoryId id;
    SmallCategoryNameToId(GetSmallCategoryPath(), id);
    m_grid.InitGrid(CSysSmallCategoryMng(id).GetAttType() != 0);
}

// Items of another library stay in the model but get no row.
void CAutoConfigDlg::RefillGrid(const std::vector<ConfigNode*>& configs) {
    m_grid.DeleteNonFixedRows();
    int row = m_listConfig.GetNextItem(-1, LVNI_SELECTED);
    if (row < 0)
        return;
    int id = static_cast<int>(m_listConfig.GetItemData(row));
    CAtt att;
    const bool quotaMode = att.GetQdDeMode() != 0;
    for (ConfigNode* config : configs) {
        if (config->GetId() != id)
            continue;
        if (quotaMode) {
            for (DeNode* de : config->GetDe())
                if (SameLibrary(de->m_de.strDeCode, att.GetDeCode()))
                    AddQuotaRow(m_grid, de);
            continue;
        }
        for (QdNode* qd : config->GetQd()) {
            if (!SameLibrary(qd->m_qd.strQdCode, att.GetQdCode()))
                continue;
            const QdStruct& record = qd->m_qd;
            int billRow = m_grid.InsertOneprop(m_grid.GetRowCount(),
                                               {record.strQdId, record.strName, record.strUnit,
                                                record.strFormula, record.strAnnex});
            m_grid.SetItemState(billRow, 1, GVIS_READONLY);
            m_grid.SetItemData(billRow, 1, kBillRow);
            m_grid.SetItemData(billRow, 0, qd->GetId());
            for (int col = 1; col <= 4; ++col)
                m_grid.SetItemBkColour(billRow, col, MyGridCtrl::kBillBk);
            for (DeNode* de : qd->GetDe())
                if (SameLibrary(de->m_de.strDeCode, att.GetQdDeCode()))
                    AddQuotaRow(m_grid, de);
        }
    }
    m_grid.Refresh();
}

int CAutoConfigDlg::ReadGridRow(int row, QdStruct& qd, DeStruct& de) {
    CAtt att;
    const bool withAnnex = m_grid.GetColumnCount() > 5;
    if (m_grid.GetItemData(row, 1) != kBillRow) {
        de.strDeId = m_grid.GetItemText(row, 1);
        de.strName = m_grid.GetItemText(row, 2);
        de.strUnit = m_grid.GetItemText(row, 3);
        de.strUnitCode = UnitCode(de.strUnit);
        de.strDeCode = att.GetQdDeMode() == 0 ? att.GetQdDeCode() : att.GetDeCode();
        de.strFormula = m_grid.GetItemText(row, 4);
        if (withAnnex)
            de.strAnnex = m_grid.GetItemText(row, 5);
        return 1;
    }
    qd.strQdId = m_grid.GetItemText(row, 1);
    qd.strName = m_grid.GetItemText(row, 2);
    qd.strUnit = m_grid.GetItemText(row, 3);
    qd.strUnitCode = UnitCode(qd.strUnit);
    qd.strQdCode = att.GetQdCode();
    qd.strFormula = m_grid.GetItemText(row, 4);
    if (withAnnex)
        qd.strAnnex = m_grid.GetItemText(row, 5);
    return 0;
}

// Writes one row over its node's whole record: what the grid does not show (the user's bill
// number, the type id, and the fittings flag in a five-column grid) is cleared.
void CAutoConfigDlg::CommitGridRow(int row) {
    QdStruct qd;
    DeStruct de;
    CPath path;
    if (CAtt().GetQdDeMode() != 0) {
        if (!GetConfigPath(path))
            return;
        path.DeId = static_cast<int>(m_grid.GetItemData(row, 0));
        if (ReadGridRow(row, qd, de) == 1)
            m_pPresenter->ResetDeToConfig(path, de);
        return;
    }
    if (!GetRowQdPath(path, row))
        return;
    if (ReadGridRow(row, qd, de) == 1) {
        path.DeId = static_cast<int>(m_grid.GetItemData(row, 0));
        m_pPresenter->ResetDeToQd(path, de);
    } else {
        m_pPresenter->ResetQd(path, qd);
    }
}

void CAutoConfigDlg::CommitGrid() {
    m_grid.Refresh();
    for (int row = 1; row < m_grid.GetRowCount(); ++row) {
        m_grid.SetFocusCell(row, 1);
        CommitGridRow(row);
    }
}

bool CAutoConfigDlg::GetRowQdPath(CPath& path, int row) {
    if (!GetConfigPath(path))
        return false;
    int billRow = row;
    while (billRow > 0 && m_grid.GetItemData(billRow, 1) != kBillRow)
        --billRow;
    if (billRow <= 0)
        return false;
    path.QdId = static_cast<int>(m_grid.GetItemData(billRow, 0));
    return true;
}

bool CAutoConfigDlg::GetSelQdPath(CPath& path) {
    if (!GetConfigPath(path))
        return false;
    int row = m_grid.GetSelectRow();
    if (row == -1)
        return false;
    return GetRowQdPath(path, row);
}

// The formula column opens the calculator; an answer that changes the formula is committed
// at once.
LRESULT CAutoConfigDlg::OnGridClick(NM_GRIDVIEW* info) {
    if (!m_grid.IsValid(info->iRow, info->iColumn) || info->iRow == 0)
        return 0;
    if (info->iColumn != 4)
        return 0;
    CString current = m_grid.GetItemText(info->iRow, 4);
    CString result;
    if (CFaceGlobalDlg::ShowCalculatorDlg(GetSmallCategoryPath(), current, result, this) == 1 &&
        result.Compare(current) != 0) {
        m_grid.SetItemText(info->iRow, 4, result);
        CommitGridRow(info->iRow);
    }
    return 0;
}

// A chosen unit or fittings flag goes to the model at once; free text waits for CommitGrid.
LRESULT CAutoConfigDlg::OnGridCellChange(NM_GRIDVIEW* info) {
    if (info->iColumn != 3 && info->iColumn != 5)
        return 0;
    m_grid.SetItemText(info->iRow, info->iColumn, info->text);
    CommitGridRow(info->iRow);
    return 0;
}

// A name edit is not taken here: it reaches the model with the next CommitGrid, or is lost
// when the configuration row changes first.
LRESULT CAutoConfigDlg::OnGridEndEdit(NM_GRIDVIEW*) {
    CCellID cell = m_grid.GetFocusCell();
    if (cell.col == 2) {
        CString text = m_grid.GetItemText(cell.row, cell.col);
        (void)text;
    }
    return 0;
}
