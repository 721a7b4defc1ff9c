#pragma once
// The small file dialog behind the workbench's file commands: lists the configuration files of
// the application's configuration folder, lets the user pick or type a name, refuses names a
// file can't have, and hands back a full path. It writes nothing to disk itself.

#include "platform/Export.h"
#include "ui/CButton.h"
#include "ui/CComboBox.h"
#include "ui/CDialog.h"
#include "ui/CListBox.h"

class KOQDDE_API DlgSaveAs : public CDialog {
public:
    // What the dialog is opened for; the caption and the OK button follow it.
    enum Mode { kOpen = 0, kNew = 1, kSaveAs = 2 };
    static constexpr UINT IDD = 1050;

    // strCurFile: full path of the file open in the workbench ("" when none is to be
    // protected). The configuration folder is fixed here, when the dialog is made.
    DlgSaveAs(int nMode, CWnd* pParent, const CString& strCurFile);
    ~DlgSaveAs() override;

    // The chosen file in the configuration folder; ".xml" is added unless the name already
    // ends with it (in any case). Ask after DoModal returned IDOK.
    CString GetFullFileName();

    const CString& GetFolder() const { return m_strFolder; }

protected:
    void DoDataExchange(CDataExchange* pDX) override;
    BOOL OnInitDialog() override;
    void OnOK() override;
    BOOL OnCommand(UINT id, UINT code) override;

    void OnFileSelChange();

private:
    void ListFiles(const CString& pattern);
    void ApplyMode();
    BOOL CheckFileName(const CString& name);
    BOOL IsNameInList();

    CString m_strFolder;
    CStringArray m_arrFileName;
    int m_nMode;
    CListBox m_listFile;
    CComboBox m_cmbFileType;
    CEdit m_editName;
    CString m_strName;
    CString m_strCurFile;
};
