#pragma once
// Looks at and changes the attribute settings of each small category of the current specialty
// (input kind, comparable, material-related), and copies an attribute's settings from another
// small category of the same large category. It works on a presenter of its own, made on the
// current configuration when the dialog is made and freed with it.

#include "platform/Export.h"
#include "ui/CButton.h"
#include "ui/CComboBox.h"
#include "ui/CDialog.h"
#include "ui/CListBox.h"
#include "ui/CTreeCtrl.h"

#include <memory>

class CQdDeConfigPresenter;

class KOQDDE_API CDlgAttConfig : public CDialog {
public:
    static constexpr UINT IDD = 2001;

    explicit CDlgAttConfig(CWnd* pParent = nullptr);
    ~CDlgAttConfig() override;

protected:
    void DoDataExchange(CDataExchange* pDX) override;
    BOOL OnInitDialog() override;
    // Saves the attribute settings on the way out; Cancel leaves without saving.
    void OnOK() override;
    void OnClose() override;
    BOOL OnCommand(UINT id, UINT code) override;
    BOOL OnNotify(UINT id, NMHDR* header, LRESULT* result) override;

    void InitCategoryTree();
    // "specialty\large\small" of the selected small category; empty unless a leaf is selected.
    CString GetSelectedSmallPath() const;
    LRESULT OnCategoryChanged();
    void FillAttrList();
    void FillSmallList();
    void ShowAttrConfig();
    void OnApply();
    void OnCopyFromSmall();

    CTreeCtrl m_treeCategory;
    CComboBox m_cmbVarType;
    CComboBox m_cmbCompar;
    CComboBox m_cmbSpecRelation;
    CListBox m_listAttr;
    std::unique_ptr<CQdDeConfigPresenter> m_pPresenter;
    CListBox m_listSmall;

private:
    CString SelectedAttribute() const;
};
