// The facade's entry points that show the workbench.
#include "presenter/CAutoQdDeConfigFacade.h"
#include "workbench/CAutoConfigDlg.h"
#include "workbench/COnlineAutoConfigDlg.h"

void CAutoQdDeConfigFacade::StartQdDeConfig(CWnd*, const CRect&) {
    CAutoConfigDlg dialog(CString(), nullptr);
    dialog.DoModal();
}

// The page's result, whatever DoModal answered: Enter ends the page with 0 too.
int CAutoQdDeConfigFacade::StartOnlineConfig(const CString& file, const CString& qdName,
                                             const CString& deName, const CString& description,
                                             bool canGoBack, CWnd* parent) {
    COnlineAutoConfigDlg dialog(file, qdName, deName, description, canGoBack, parent);
    dialog.DoModal();
    return dialog.GetWizardResult();
}
