#pragma once
// The workbench: one modal dialog in which the user edits the auto-apply configuration file of
// the project's current specialty. Left, the component tree; right, the configurations of the
// selected small category, the condition editor of the selected configuration and the grid of
// its bill and quota items. The dialog holds no configuration data: every pane is rebuilt from
// the presenter's model after each change, and which node a command means is read from the
// controls when the command runs.

#include "dialogs/CTTComboBox.h"
#include "host/ui/QvPickers/QvPickers.h"
#include "model/CPath.h"
#include "model/ConfigNode.h"
#include "platform/CString.h"
#include "platform/Export.h"
#include "platform/FileLock.h"
#include "presenter/CQdDeConfigPresenter.h"
#include "ui/Controls.h"
#include "workbench/CExListBox.h"
#include "workbench/MyGridCtrl.h"

#include <map>
#include <vector>

// Control ids of template IDD_AUTOCONFIG.
namespace AutoConfigIds {
inline constexpr int kNewFile = 7000;
inline constexpr int kOpenFile = 7001;
inline constexpr int kSaveFileAs = 7002;
inline constexpr int kImportFromCloud = 7011;
inline constexpr int kTree = 2000;
inline constexpr int kMoveUp = 7010;
inline constexpr int kMoveDown = 7009;
inline constexpr int kAddConfig = 7003;
inline constexpr int kCopyConfig = 7004;
inline constexpr int kDelConfig = 7005;
inline constexpr int kConfigList = 1008;
inline constexpr int kAttributeList = 1009;
inline constexpr int kValueTab = 2001;
inline constexpr int kEqualOp = 1021;
inline constexpr int kValue = 1022;
inline constexpr int kRangeOp1 = 1017;
inline constexpr int kRange1 = 1019;
inline constexpr int kRangeOp2 = 1018;
inline constexpr int kRange2 = 1020;
inline constexpr int kConditionAdd = 1011;
inline constexpr int kConditionDelete = 1012;
inline constexpr int kConditionList = 1010;
inline constexpr int kDeleteRows = 1014;
inline constexpr int kPick = 1015;
inline constexpr int kGridFrame = 1013;
inline constexpr int kGrid = 50002;
inline constexpr int kPrevious = 7006;
inline constexpr int kNext = 7007;
inline constexpr int kWizardCancel = 7008;
inline constexpr int kWizardNote = 2002;
inline constexpr int kQdLabel = 2003;
inline constexpr int kQdName = 2004;
inline constexpr int kDeLabel = 2005;
inline constexpr int kDeName = 2006;
inline constexpr int kDescription = 2007;
} // namespace AutoConfigIds

class KOQDDE_API CAutoConfigDlg : public CDialog {
public:
    static constexpr UINT IDD = 2000;
    // A window outside the module may ask with this message; the answer is always 1.
    static constexpr UINT kAskMessage = 0x7101;
    // Picks handed over by the pickers: a quota, a bill.
    static constexpr UINT kPickedDe = WM_USER + 70;
    static constexpr UINT kPickedQd = WM_USER + 80;

    // An empty file means the project's current configuration.
    CAutoConfigDlg(const CString& strFile, CWnd* pParent = nullptr);
    ~CAutoConfigDlg() override;

    // The selection as model addresses: the selected leaf of the tree, the selected row of the
    // configuration list, the selected row of the condition list.
    bool GetCategoryPath(CPath& path);
    bool GetConfigPath(CPath& path);
    bool GetConditionPath(CPath& path);
    // "specialty\large\small" of the selected leaf; "" without one.
    CString GetSmallCategoryPath();
    // The selected item's texts from the root down, each followed by "\".
    CString GetTreePath();
    // Selects the small category "specialty\large\small" in the tree and, when `configId` is
    // not 0, that configuration in the list, raising the notifications a user's clicks raise.
    // False when the tree lacks the category (another specialty, a wiring category) or the
    // list the configuration; the selection is then left where it went.
    bool SelectConfiguration(const CString& smallCategoryPath, int configId);

protected:
    void DoDataExchange(CDataExchange* pDX) override;
    BOOL OnInitDialog() override;
    void OnCancel() override;
    void OnClose() override;
    BOOL OnCommand(UINT id, UINT code) override;
    BOOL OnNotify(UINT id, NMHDR* header, LRESULT* result) override;
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;

    // Shell: tree, configuration list, title.
    void CenterOnCadFrame();
    void InitConfigList();
    void InitComponentTree();
    void UpdateTitle();
    bool ReloadConfigs(const CPath& path, std::vector<ConfigNode*>& configs);
    void RefreshConfigList(const std::vector<ConfigNode*>& configs);
    void SelectConfigById(int id);
    void RefreshConditionList(const std::vector<ConfigNode*>& configs);
    void EnableConditionEditing(bool enable);
    LRESULT OnTreeSelChanging(NMTREEVIEW* info);
    LRESULT OnTreeSelChanged(NMTREEVIEW* info, LRESULT* result);
    LRESULT OnConfigItemChanged(NMLISTVIEW* info);

    // Condition editor.
    void InitValueEditor();
    void FillAttributeList();
    void OnAttributeSelChange();
    void ShowValuePage();
    LRESULT OnValueTabSelChange();
    bool BuildConditionArray(CStringArray& out);
    bool FindConditionOfAttribute(int& id);
    void OnConditionAdd();
    void OnConditionDelete();
    void FitComboDropWidth(CComboBox& combo);

    // Grid.
    void CreateGrid();
    void ResetGridColumns();
    void RefillGrid(const std::vector<ConfigNode*>& configs);
    int ReadGridRow(int row, QdStruct& qd, DeStruct& de);
    void CommitGridRow(int row);
    void CommitGrid();
    bool GetRowQdPath(CPath& path, int row);
    bool GetSelQdPath(CPath& path);
    LRESULT OnGridClick(NM_GRIDVIEW* info);
    LRESULT OnGridCellChange(NM_GRIDVIEW* info);
    LRESULT OnGridEndEdit(NM_GRIDVIEW* info);

    // List commands, pickers and the way out.
    void OnAddConfig();
    void OnCopyConfig();
    void OnDelConfig();
    void OnMoveUpConfig();
    void OnMoveDownConfig();
    void OnNewFile();
    // Moves the open-file lock to the file the presenter is on now.
    void HoldOpenFile();
    void OnOpenFile();
    void OnSaveFileAs();
    void OnImportFromCloud();
    // After a file switch: the selected small category's configurations from the new model.
    void RebuildPanes();
    void SetPickButtonText();
    void OnPickButton();
    void OnDeleteRows();
    void SyncPicker();
    CString PickerPosition();
    void DefaultFormula(const CString& smallCategoryPath, CString& formula);
    void SelectRowOfNumber(const CString& number);
    LRESULT OnApplyQd(WPARAM pick);
    LRESULT OnApplyDe(WPARAM pick);
    void CommitAndSave();
    void HidePickers();

    CQdDeConfigPresenter* m_pPresenter = nullptr;
    // The open file, held shared for as long as the workbench has it open: the tool then
    // refuses edits that the save on close would overwrite.
    FileLock m_openLock;
    std::vector<ConfigNode*> m_vecConfig;
    CStringArray m_arrAttDropKey;
    std::map<CString, CString> m_mapAttCode;
    CTabCtrl m_tabValue;
    CTreeCtrl m_treeComponent;
    CListCtrl m_listConfig;
    CExListBox m_listAtt;
    CExListBox m_listCondition;
    MyGridCtrl m_grid;
    CTTComboBox m_cmbEqualOp;
    CTTComboBox m_cmbRangeOp1;
    CTTComboBox m_cmbRangeOp2;
    CTTComboBox m_cmbValue;
    CTTComboBox m_cmbRange1;
    CTTComboBox m_cmbRange2;
    int m_nCurConfigId = 0;
    CSelQdDeDlg m_dlgSelQdDe;
    CSelDeDlg m_dlgSelDe;
};
