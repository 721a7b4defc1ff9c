#pragma once
// The workbench as one page of the application's cloud-template wizard: the same panes on one
// given file, without the file commands, with the template's libraries shown, a note behind a
// link, and three buttons that end the page forward, back or out. Every way out saves the
// file; the result tells only the direction.

#include "platform/Export.h"
#include "workbench/CAutoConfigDlg.h"

#include <QFont>

class KOQDDE_API COnlineAutoConfigDlg : public CAutoConfigDlg {
public:
    // The wizard's results.
    static constexpr int kResultNext = 1;
    static constexpr int kResultPrevious = -1;
    static constexpr int kResultCancel = 0;

    COnlineAutoConfigDlg(const CString& strFile, const CString& strQdName, const CString& strDeName,
                         const CString& strDescription, bool bCanGoBack, CWnd* pParent);
    ~COnlineAutoConfigDlg() override;

    int DoModal() override;
    int GetWizardResult() const { return m_nWizardResult; }

protected:
    BOOL OnInitDialog() override;
    BOOL OnCommand(UINT id, UINT code) override;

    void ShowWizardControls(int nShow);
    void OnNextStep();
    void OnPrevStep();
    void OnCancelStep();
    void OnDescription();
    // The text colour of a control, as WM_CTLCOLOR answers it: blue for the link, red for the
    // warning line, the dialog's own for the rest.
    COLORREF OnCtlColor(int id, COLORREF base) const;

private:
    // The dialog layer sends no WM_CTLCOLOR: the colours OnCtlColor gives are put on the two
    // controls' palettes once, when the page opens.
    void ApplyControlColours();

    int m_nWizardResult = kResultCancel;
    CString m_strQdName;
    CString m_strDeName;
    CString m_strDescription;
    bool m_bCanGoBack = false;
    QFont m_fontLink;
};
