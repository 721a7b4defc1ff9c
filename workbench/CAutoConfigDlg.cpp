// The workbench's shell: opening, the component tree, the configuration list, the commands on
// the list and the way out.
#include "workbench/CAutoConfigDlg.h"

#include "host/QvKoProject/QvKoProject.h"
#include "host/QvKoSettings/QvKoSettings.h"
#include "host/ui/KoCloudKit/KoCloudKit.h"
#include "host/ui/ZwCad/ZwCad.h"
#include "platform/MessageBox.h"
#include "platform/NumParse.h"
#include "workbench/DlgSaveAs.h"

#include <QWidget>

using namespace AutoConfigIds;

CAutoConfigDlg::CAutoConfigDlg(const CString& strFile, CWnd* pParent)
    : CDialog(IDD, pParent), m_dlgSelQdDe(nullptr), m_dlgSelDe(nullptr) {
    m_pPresenter = new CQdDeConfigPresenter(strFile);
    HoldOpenFile();
    m_dlgSelQdDe.SetShowGetQdNumDlg(false);
    m_nCurConfigId = 0;
}

CAutoConfigDlg::~CAutoConfigDlg() {
    delete m_pPresenter;
    m_pPresenter = nullptr;
}

void CAutoConfigDlg::DoDataExchange(CDataExchange* pDX) {
    CDialog::DoDataExchange(pDX);
    DDX_Control(pDX, kTree, m_treeComponent);
    DDX_Control(pDX, kConfigList, m_listConfig);
    DDX_Control(pDX, kValueTab, m_tabValue);
    DDX_Control(pDX, kAttributeList, m_listAtt);
    DDX_Control(pDX, kConditionList, m_listCondition);
    DDX_Control(pDX, kRangeOp1, m_cmbRangeOp1);
    DDX_Control(pDX, kRangeOp2, m_cmbRangeOp2);
    DDX_Control(pDX, kRange1, m_cmbRange1);
    DDX_Control(pDX, kRange2, m_cmbRange2);
    DDX_Control(pDX, kEqualOp, m_cmbEqualOp);
    DDX_Control(pDX, kValue, m_cmbValue);
}

// The base's version is not called: the first UpdateData(FALSE), in InitValueEditor, binds
// the controls, and the tree's own first selection runs both tree notifications from inside
// InitComponentTree, before the pickers exist.
BOOL CAutoConfigDlg::OnInitDialog() {
    CenterOnCadFrame();
    CreateGrid();
    InitValueEditor();
    InitConfigList();
    InitComponentTree();
    SetPickButtonText();
    UpdateTitle();
    InvalidateRect(nullptr, TRUE);
    m_dlgSelQdDe.Create(this);
    m_dlgSelDe.Create(this);
    return 1;
}

void CAutoConfigDlg::CenterOnCadFrame() {
    CRect frame = GetCadFrameRect();
    CRect own = GetWindowRect();
    int x = frame.left + frame.Width() / 2 - own.Width() / 2;
    int y = frame.top + frame.Height() / 2 - own.Height() / 2;
    MoveWindow(x, y, own.Width(), own.Height(), TRUE);
}

void CAutoConfigDlg::InitConfigList() {
    m_listConfig.InsertColumn(0, L"序号", LVCFMT_LEFT, 40);
    m_listConfig.InsertColumn(1, L"范围", LVCFMT_LEFT, 450);
    m_listConfig.SetExtendedStyle(LVS_EX_GRIDLINES | LVS_EX_FULLROWSELECT);
    // The grid lines are drawn by a style sheet on the items, which drops the highlight of the
    // selected row; give it back, also while the keyboard focus is elsewhere (the grid takes it
    // on every row change).
    if (QWidget* view = m_listConfig.widget())
        view->setStyleSheet(
            view->styleSheet() +
            QStringLiteral(" QTreeView::item:selected { background: "
                           "palette(highlight); color: palette(highlighted-text); }"));
}

void CAutoConfigDlg::InitComponentTree() {
    UpdateData(FALSE);
    CProj project;
    CAtt att;
    SQvKoSpecId specId;
    specId.specId = IntToText(project.GetCurrentSpecId());
    HTREEITEM root = m_treeComponent.InsertItem(project.GetCurrentSpec());
    m_treeComponent.SetItemData(root, WToI(specId.specId));
    m_treeComponent.Expand(root, TVE_EXPAND);

    std::vector<SQvKoBigCategoryId> larges;
    att.GetAllBigCategoryIdsBySpec(specId, larges);
    for (size_t i = 0; i < larges.size(); ++i) {
        CString largeName;
        att.GetBigCategoryName(larges.at(i), largeName);
        HTREEITEM largeItem = m_treeComponent.InsertItem(largeName, root, TVI_LAST);
        m_treeComponent.SetItemData(largeItem, WToI(larges.at(i).bigCategoryId));

        std::vector<SQvKoSmallCategoryId> smalls;
        att.GetAllSmallCategoryIdsByBigCategory(larges.at(i), smalls);
        for (size_t j = 0; j < smalls.size(); ++j) {
            CString smallName;
            att.GetSmallCategoryName(smalls.at(j), smallName);
            // Wires, conduits and combined lines are configured elsewhere in the application.
            if (smallName.Find(L"导线·导管") >= 0 || smallName.Find(L"配管配线") >= 0 ||
                smallName.Find(L"组合管线") >= 0)
                continue;
            HTREEITEM smallItem = m_treeComponent.InsertItem(smallName, largeItem, TVI_LAST);
            m_treeComponent.SetItemData(smallItem, WToI(smalls.at(j).smallCategoryId));
        }
        m_treeComponent.Expand(largeItem, TVE_EXPAND);
    }

    HTREEITEM first = m_treeComponent.GetChildItem(root);
    if (first) {
        HTREEITEM leaf = m_treeComponent.GetChildItem(first);
        if (leaf)
            m_treeComponent.SelectItem(leaf);
    }
}

void CAutoConfigDlg::UpdateTitle() {
    CString title = L"自动套配置-[ ";
    title += CAtt().GetQdDeMode() != 0 ? L"定额模式: " : L"清单模式: ";
    title += m_pPresenter->GetCurConfig();
    title += L" ]";
    SetWindowText(title);
}

bool CAutoConfigDlg::GetCategoryPath(CPath& path) {
    HTREEITEM item = m_treeComponent.GetSelectedItem();
    if (!item || m_treeComponent.ItemHasChildren(item))
        return false;
    HTREEITEM large = m_treeComponent.GetParentItem(item);
    HTREEITEM spec = large ? m_treeComponent.GetParentItem(large) : nullptr;
    path.SMemberId = static_cast<int>(m_treeComponent.GetItemData(item));
    path.LMemberId = large ? static_cast<int>(m_treeComponent.GetItemData(large)) : 0;
    path.SpecId = spec ? static_cast<int>(m_treeComponent.GetItemData(spec)) : 0;
    return true;
}

bool CAutoConfigDlg::GetConfigPath(CPath& path) {
    if (!GetCategoryPath(path))
        return false;
    int row = m_listConfig.GetNextItem(-1, LVNI_SELECTED);
    if (row < 0)
        return false;
    path.ConfigId = static_cast<int>(m_listConfig.GetItemData(row));
    m_nCurConfigId = path.ConfigId;
    return true;
}

bool CAutoConfigDlg::GetConditionPath(CPath& path) {
    if (!GetConfigPath(path))
        return false;
    path.ConditionId = static_cast<int>(m_listCondition.GetItemData(m_listCondition.GetCurSel()));
    return true;
}

CString CAutoConfigDlg::GetSmallCategoryPath() {
    HTREEITEM item = m_treeComponent.GetSelectedItem();
    if (!item || m_treeComponent.ItemHasChildren(item))
        return CString();
    HTREEITEM large = m_treeComponent.GetParentItem(item);
    HTREEITEM spec = large ? m_treeComponent.GetParentItem(large) : nullptr;
    if (!spec)
        return CString();
    return m_treeComponent.GetItemText(spec) + L"\\" + m_treeComponent.GetItemText(large) + L"\\" +
           m_treeComponent.GetItemText(item);
}

CString CAutoConfigDlg::GetTreePath() {
    CString path;
    for (HTREEITEM item = m_treeComponent.GetSelectedItem(); item;
         item = m_treeComponent.GetParentItem(item))
        path = m_treeComponent.GetItemText(item) + L"\\" + path;
    return path;
}

bool CAutoConfigDlg::SelectConfiguration(const CString& smallCategoryPath, int configId) {
    const int first = smallCategoryPath.Find(L'\\');
    const int second = first < 0 ? -1 : smallCategoryPath.Find(L'\\', first + 1);
    if (second < 0)
        return false;
    const CString names[] = {smallCategoryPath.Left(first),
                             smallCategoryPath.Mid(first + 1, second - first - 1),
                             smallCategoryPath.Mid(second + 1)};
    HTREEITEM item = m_treeComponent.GetRootItem();
    for (size_t level = 0; item && level < 3; ++level) {
        if (level > 0)
            item = m_treeComponent.GetChildItem(item);
        while (item && m_treeComponent.GetItemText(item) != names[level])
            item = m_treeComponent.GetNextSiblingItem(item);
    }
    if (!item || m_treeComponent.ItemHasChildren(item))
        return false;
    if (m_treeComponent.GetSelectedItem() != item)
        m_treeComponent.SelectItem(item);
    m_treeComponent.EnsureVisible(item);
    if (configId == 0)
        return true;
    for (int row = 0; row < m_listConfig.GetItemCount(); ++row) {
        if (static_cast<int>(m_listConfig.GetItemData(row)) == configId) {
            if (m_listConfig.GetNextItem(-1, LVNI_SELECTED) != row)
                m_listConfig.SetItemState(row, LVIS_SELECTED, LVIS_SELECTED);
            m_listConfig.EnsureVisible(row, FALSE);
            return true;
        }
    }
    return false;
}

bool CAutoConfigDlg::ReloadConfigs(const CPath& path, std::vector<ConfigNode*>& configs) {
    return m_pPresenter->GetConfig(path, configs);
}

void CAutoConfigDlg::RefreshConfigList(const std::vector<ConfigNode*>& configs) {
    m_listConfig.DeleteAllItems();
    for (size_t i = 0; i < configs.size(); ++i) {
        int row = m_listConfig.InsertItem(m_listConfig.GetItemCount(),
                                          IntToText(static_cast<int>(i) + 1));
        m_listConfig.SetItemText(row, 1, configs[i]->GetConditionString());
        m_listConfig.SetItemData(row, configs[i]->GetId());
    }
    // Selecting row 0 refreshes every pane below through LVN_ITEMCHANGED, right here.
    if (m_listConfig.GetItemCount() > 0)
        m_listConfig.SetItemState(0, LVIS_SELECTED, LVIS_SELECTED);
}

void CAutoConfigDlg::SelectConfigById(int id) {
    for (int row = 0; row < m_listConfig.GetItemCount(); ++row) {
        if (static_cast<int>(m_listConfig.GetItemData(row)) == id) {
            m_listConfig.SetItemState(row, LVIS_SELECTED, LVIS_SELECTED);
            return;
        }
    }
}

void CAutoConfigDlg::RefreshConditionList(const std::vector<ConfigNode*>& configs) {
    m_listCondition.ResetContent();
    int row = m_listConfig.GetNextItem(-1, LVNI_SELECTED);
    if (row < 0)
        return;
    int id = static_cast<int>(m_listConfig.GetItemData(row));
    for (ConfigNode* config : configs) {
        if (config->GetId() != id)
            continue;
        for (ConditionNode* condition : config->GetCondition()) {
            int index = m_listCondition.AddString(condition->GetConditionString());
            m_listCondition.SetItemData(index, condition->GetId());
        }
    }
    if (m_listCondition.GetCount() > 0)
        m_listCondition.SetCurSel(0);
}

// The default configuration (id 1) takes no conditions and can be neither copied nor deleted;
// its items stay editable, so the grid and its buttons are left alone.
void CAutoConfigDlg::EnableConditionEditing(bool enable) {
    static const int kIds[] = {kAttributeList, kConditionList, kValueTab,        kRangeOp1,
                               kRangeOp2,      kRange1,        kRange2,          kEqualOp,
                               kValue,         kConditionAdd,  kConditionDelete, kCopyConfig,
                               kDelConfig};
    for (int id : kIds)
        if (CWnd* control = GetDlgItem(id))
            control->EnableWindow(enable ? TRUE : FALSE);
}

// The grid's rows still belong to the configuration that is about to be left: commit them
// now, while the selection still names it.
LRESULT CAutoConfigDlg::OnTreeSelChanging(NMTREEVIEW*) {
    m_grid.SetFocus();
    CommitGrid();
    return 0;
}

LRESULT CAutoConfigDlg::OnTreeSelChanged(NMTREEVIEW* info, LRESULT* result) {
    // A specialty or a large category leaves the panes showing the last small category.
    if (info->itemNew && m_treeComponent.ItemHasChildren(info->itemNew))
        return 0;
    ResetGridColumns();
    CPath path;
    GetCategoryPath(path);
    m_vecConfig.clear();
    // The tree comes from the application's category tables, the model from the file: a
    // category can be missing from the model.
    if (!ReloadConfigs(path, m_vecConfig)) {
        AfxMessageBox(L"GetConfig return false");
        return 0;
    }
    RefreshConfigList(m_vecConfig);
    FillAttributeList();
    OnAttributeSelChange();
    SyncPicker();
    *result = 0;
    return 0;
}

LRESULT CAutoConfigDlg::OnConfigItemChanged(NMLISTVIEW*) {
    // The half of a selection move that only clears a row.
    int row = m_listConfig.GetNextItem(-1, LVNI_SELECTED);
    if (row < 0)
        return 0;
    EnableConditionEditing(static_cast<int>(m_listConfig.GetItemData(row)) != 1);
    RefreshConditionList(m_vecConfig);
    RefillGrid(m_vecConfig);

    // Put the grid's selection on the first bill row. One past the last row reads as a bill
    // row too, so a grid without bills ends there with the focus still on the grid.
    for (int gridRow = 1; gridRow <= m_grid.GetRowCount(); ++gridRow) {
        LPARAM kind = m_grid.IsValid(gridRow, 1) ? m_grid.GetItemData(gridRow, 1) : 0;
        if (kind == 0) {
            m_grid.SetSelectedRange(gridRow, 1, gridRow, m_grid.GetColumnCount() - 1);
            m_grid.SetFocusCell(gridRow, 1);
            m_grid.SetFocus();
            break;
        }
    }
    OnAttributeSelChange();
    return 0;
}

BOOL CAutoConfigDlg::OnCommand(UINT id, UINT code) {
    switch (id) {
    case kSaveFileAs:
        OnSaveFileAs();
        return TRUE;
    case kImportFromCloud:
        OnImportFromCloud();
        return TRUE;
    case kAddConfig:
        OnAddConfig();
        return TRUE;
    case kConditionAdd:
        OnConditionAdd();
        return TRUE;
    case kConditionDelete:
        OnConditionDelete();
        return TRUE;
    case kPick:
        OnPickButton();
        return TRUE;
    case kDeleteRows:
        OnDeleteRows();
        return TRUE;
    case kCopyConfig:
        OnCopyConfig();
        return TRUE;
    case kDelConfig:
        OnDelConfig();
        return TRUE;
    case kOpenFile:
        OnOpenFile();
        return TRUE;
    case kNewFile:
        OnNewFile();
        return TRUE;
    case kAttributeList:
        if (code == LBN_SELCHANGE) {
            OnAttributeSelChange();
            return TRUE;
        }
        break;
    case kDescription: // the wizard's note; hidden in the workbench
        return TRUE;
    case kMoveUp:
        OnMoveUpConfig();
        return TRUE;
    case kMoveDown:
        OnMoveDownConfig();
        return TRUE;
    default:
        break;
    }
    return CDialog::OnCommand(id, code);
}

BOOL CAutoConfigDlg::OnNotify(UINT id, NMHDR* header, LRESULT* result) {
    const int code = static_cast<int>(header->code);
    if (id == kTree && code == TVN_SELCHANGED) {
        OnTreeSelChanged(reinterpret_cast<NMTREEVIEW*>(header), result);
        return TRUE;
    }
    if (id == kConfigList && code == LVN_ITEMCHANGED) {
        *result = OnConfigItemChanged(reinterpret_cast<NMLISTVIEW*>(header));
        return TRUE;
    }
    if (id == kValueTab && code == TCN_SELCHANGE) {
        *result = OnValueTabSelChange();
        return TRUE;
    }
    if (id == kGrid && code == NM_CLICK) {
        *result = OnGridClick(reinterpret_cast<NM_GRIDVIEW*>(header));
        return TRUE;
    }
    if (id == kGrid && code == GVN_CELLCHANGE) {
        *result = OnGridCellChange(reinterpret_cast<NM_GRIDVIEW*>(header));
        return TRUE;
    }
    if (id == kTree && code == TVN_SELCHANGING) {
        *result = OnTreeSelChanging(reinterpret_cast<NMTREEVIEW*>(header));
        return TRUE;
    }
    if (id == kGrid && code == GVN_ENDLABELEDIT) {
        *result = OnGridEndEdit(reinterpret_cast<NM_GRIDVIEW*>(header));
        return TRUE;
    }
    return CDialog::OnNotify(id, header, result);
}

LRESULT CAutoConfigDlg::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == kAskMessage)
        return 1;
    if (message == kPickedDe)
        return OnApplyDe(wParam);
    if (message == kPickedQd)
        return OnApplyQd(wParam);
    return CDialog::WindowProc(message, wParam, lParam);
}

// List commands. Each reads its path from the selection; a refusal of the model ends the
// command without a word.

void CAutoConfigDlg::OnAddConfig() {
    CPath path;
    GetCategoryPath(path);
    int newId = -1;
    if (!m_pPresenter->AddConfig(path, newId))
        return;
    m_vecConfig.clear();
    if (m_pPresenter->GetConfig(path, m_vecConfig)) {
        RefreshConfigList(m_vecConfig);
        SelectConfigById(newId);
        OnAttributeSelChange();
    }
}

void CAutoConfigDlg::OnCopyConfig() {
    CPath path;
    if (!GetConfigPath(path))
        return;
    int newId = -1;
    if (!m_pPresenter->AddConfigByCopy(path, newId))
        return;
    m_vecConfig.clear();
    m_pPresenter->GetConfig(path, m_vecConfig);
    RefreshConfigList(m_vecConfig);
    SelectConfigById(newId);
    OnAttributeSelChange();
}

void CAutoConfigDlg::OnDelConfig() {
    CPath path;
    if (!GetConfigPath(path))
        return;
    m_pPresenter->DelConfig(path);
    m_vecConfig.clear();
    m_pPresenter->GetConfig(path, m_vecConfig);
    RefreshConfigList(m_vecConfig);
}

void CAutoConfigDlg::OnMoveUpConfig() {
    CPath path;
    GetConfigPath(path);
    if (!m_pPresenter->MoveUpConfig(path))
        return;
    m_vecConfig.clear();
    if (m_pPresenter->GetConfig(path, m_vecConfig)) {
        RefreshConfigList(m_vecConfig);
        SelectConfigById(m_nCurConfigId);
        OnAttributeSelChange();
    }
}

void CAutoConfigDlg::OnMoveDownConfig() {
    CPath path;
    GetConfigPath(path);
    if (!m_pPresenter->MoveDownConfig(path))
        return;
    m_vecConfig.clear();
    if (m_pPresenter->GetConfig(path, m_vecConfig)) {
        RefreshConfigList(m_vecConfig);
        SelectConfigById(m_nCurConfigId);
        OnAttributeSelChange();
    }
}

// File commands. None of them commits the grid: the store saves the model as it stands before
// it switches files, and "另存" writes it as it stands.

void CAutoConfigDlg::RebuildPanes() {
    CPath path;
    GetCategoryPath(path);
    m_vecConfig.clear();
    ReloadConfigs(path, m_vecConfig);
    RefreshConfigList(m_vecConfig);
}

void CAutoConfigDlg::HoldOpenFile() {
    m_openLock.LockShared(m_pPresenter->GetData()->GetFilePath());
}

void CAutoConfigDlg::OnNewFile() {
    DlgSaveAs dialog(DlgSaveAs::kNew, this, m_pPresenter->GetCurConfigDetailPath());
    if (dialog.DoModal() != IDOK)
        return;
    if (!m_pPresenter->NewFile(dialog.GetFullFileName()))
        return;
    HoldOpenFile();
    UpdateTitle();
    RebuildPanes();
}

void CAutoConfigDlg::OnOpenFile() {
    DlgSaveAs dialog(DlgSaveAs::kOpen, this, m_pPresenter->GetCurConfigDetailPath());
    if (dialog.DoModal() != IDOK)
        return;
    if (!m_pPresenter->ReLoad(dialog.GetFullFileName())) {
        ShowWarning(L"文件功能不匹配!");
        return;
    }
    HoldOpenFile();
    UpdateTitle();
    RebuildPanes();
}

// The copy gets the new name; the dialog goes on with the file that was open.
void CAutoConfigDlg::OnSaveFileAs() {
    DlgSaveAs dialog(DlgSaveAs::kSaveAs, this, CString());
    if (dialog.DoModal() != IDOK)
        return;
    if (m_pPresenter->SaveAs(dialog.GetFullFileName()))
        MessageBoxExW(GetActiveWindow(), L"另存成功。", kMessageCaption, kInformationFlags, 0);
}

// The cloud disk may have put a new file in place of the current one, or made another file
// current: read the current one anew.
void CAutoConfigDlg::OnImportFromCloud() {
    CNetDiskFunc::GetInstance()->ShowDialog(L"自动套模板", true);
    UpdateTitle();
    CString file = QvKoSettings::GetAppProfile().GetConfigPath() + L"/自动套配置/" +
                   m_pPresenter->GetCurConfig() + L".xml";
    m_pPresenter->ReLoad(file);
    HoldOpenFile();
    RebuildPanes();
}

// The way out. Cancel is no discard: whatever the user did goes to the file.

void CAutoConfigDlg::HidePickers() {
    m_dlgSelQdDe.ShowWindow(SW_HIDE);
    m_dlgSelDe.ShowWindow(SW_HIDE);
}

void CAutoConfigDlg::OnClose() {
    CommitGrid();
    m_pPresenter->Save();
    HidePickers();
    CDialog::OnClose();
}

void CAutoConfigDlg::OnCancel() {
    CommitGrid();
    m_pPresenter->Save();
    HidePickers();
    CDialog::OnCancel();
}

void CAutoConfigDlg::CommitAndSave() {
    CommitGrid();
    m_pPresenter->Save();
}
