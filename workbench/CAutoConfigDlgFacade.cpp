// The facade's entry point that shows the workbench.
#include "presenter/CAutoQdDeConfigFacade.h"
#include "workbench/CAutoConfigDlg.h"

void CAutoQdDeConfigFacade::StartQdDeConfig(CWnd*, const CRect&) {
    CAutoConfigDlg dialog(CString(), nullptr);
    dialog.DoModal();
}
