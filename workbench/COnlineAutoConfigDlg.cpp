#include "workbench/COnlineAutoConfigDlg.h"

#include "platform/MessageBox.h"

#include <QPalette>
#include <QWidget>

using namespace AutoConfigIds;

namespace {

// A library name may come as its file name: show it up to ".mdb" (matched as written).
CString LibraryDisplayName(const CString& name) {
    int cut = name.Find(L".mdb");
    return cut >= 0 ? name.Left(cut) : name;
}

} // namespace

COnlineAutoConfigDlg::COnlineAutoConfigDlg(const CString& strFile, const CString& strQdName,
                                           const CString& strDeName, const CString& strDescription,
                                           bool bCanGoBack, CWnd* pParent)
    : CAutoConfigDlg(strFile, pParent), m_strQdName(strQdName), m_strDeName(strDeName),
      m_strDescription(strDescription), m_bCanGoBack(bCanGoBack) {}

COnlineAutoConfigDlg::~COnlineAutoConfigDlg() = default;

int COnlineAutoConfigDlg::DoModal() {
    return CDialog::DoModal();
}

BOOL COnlineAutoConfigDlg::OnInitDialog() {
    CAutoConfigDlg::OnInitDialog();
    ShowWizardControls(SW_SHOW);
    SetDlgItemText(kQdName, LibraryDisplayName(m_strQdName));
    SetDlgItemText(kDeName, LibraryDisplayName(m_strDeName));
    SetWindowText(L"自动套-云模板");
    if (CWnd* link = GetDlgItem(kDescription); link && link->widget()) {
        m_fontLink = link->widget()->font();
        m_fontLink.setUnderline(true);
        link->widget()->setFont(m_fontLink);
    }
    ApplyControlColours();
    return 1;
}

void COnlineAutoConfigDlg::ShowWizardControls(int nShow) {
    if (CWnd* back = GetDlgItem(kPrevious)) {
        back->ShowWindow(nShow);
        back->EnableWindow(m_bCanGoBack ? TRUE : FALSE);
    }
    for (int id : {kNext, kWizardCancel, kWizardNote, kQdLabel, kQdName, kDeLabel, kDeName})
        if (CWnd* control = GetDlgItem(id))
            control->ShowWindow(nShow);
    for (int id : {kNewFile, kSaveFileAs, kOpenFile, kImportFromCloud})
        if (CWnd* control = GetDlgItem(id))
            control->ShowWindow(SW_HIDE);
    if (!m_strDescription.IsEmpty()) {
        if (CWnd* link = GetDlgItem(kDescription)) {
            link->ShowWindow(SW_SHOW);
            link->EnableWindow(TRUE);
        }
    }
}

BOOL COnlineAutoConfigDlg::OnCommand(UINT id, UINT code) {
    switch (id) {
    case kDescription:
        OnDescription();
        return TRUE;
    case kNext:
        OnNextStep();
        return TRUE;
    case kPrevious:
        OnPrevStep();
        return TRUE;
    case kWizardCancel:
        OnCancelStep();
        return TRUE;
    default:
        return CAutoConfigDlg::OnCommand(id, code);
    }
}

void COnlineAutoConfigDlg::OnNextStep() {
    m_nWizardResult = kResultNext;
    CommitAndSave();
    CDialog::OnOK();
}

void COnlineAutoConfigDlg::OnPrevStep() {
    m_nWizardResult = kResultPrevious;
    CommitAndSave();
    CDialog::OnOK();
}

// "取消" keeps what the user did, like the close box: it saves and hides the pickers.
void COnlineAutoConfigDlg::OnCancelStep() {
    m_nWizardResult = kResultCancel;
    CAutoConfigDlg::OnCancel();
}

void COnlineAutoConfigDlg::OnDescription() {
    MessageBoxExW(widget(), m_strDescription, kMessageCaption, 0, 0);
}

COLORREF COnlineAutoConfigDlg::OnCtlColor(int id, COLORREF base) const {
    if (id == kDescription)
        return 0xFF0000; // blue
    if (id == kWizardNote)
        return 0x0000FF; // red
    return base;
}

void COnlineAutoConfigDlg::ApplyControlColours() {
    for (int id : {kDescription, kWizardNote}) {
        CWnd* control = GetDlgItem(id);
        if (!control || !control->widget())
            continue;
        QWidget* w = control->widget();
        QPalette palette = w->palette();
        const QColor base = palette.color(QPalette::WindowText);
        const COLORREF colour = OnCtlColor(id, RGB(base.red(), base.green(), base.blue()));
        palette.setColor(QPalette::WindowText,
                         QColor(GetRValue(colour), GetGValue(colour), GetBValue(colour)));
        w->setPalette(palette);
    }
}
