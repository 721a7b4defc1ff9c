#include "host/ui/KoCloudKit/KoCloudKit.h"

#include "host/HostData.h"
#include "platform/FileSystem.h"
#include "platform/MessageBox.h"
#include "platform/NumParse.h"
#include "presenter/CQdDeConfigPresenter.h"
#include "ui/QtString.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>

#include <algorithm>

using koqdde::ui::FromQString;
using koqdde::ui::ToQString;

namespace {

CString SizeText(long long bytes) {
    // Whole kilobytes, rounded up, as file lists show them.
    return IntToText(static_cast<int>((bytes + 1023) / 1024)) + L" KB";
}

} // namespace

std::vector<CloudTemplate> ListCloudTemplates(const CString& storeDir, const CString& category) {
    std::vector<CloudTemplate> out;
    if (storeDir.IsEmpty())
        return out;
    QDir folder(ToQString(JoinPath(storeDir, category)));
    const QFileInfoList files =
        folder.entryInfoList({QStringLiteral("*.xml")}, QDir::Files | QDir::Readable, QDir::Name);
    for (const QFileInfo& file : files) {
        CloudTemplate item;
        item.name = FromQString(file.completeBaseName());
        item.path = FromQString(file.absoluteFilePath());
        item.bytes = file.size();
        item.modified =
            FromQString(file.lastModified().toString(QStringLiteral("yyyy-MM-dd HH:mm")));
        out.push_back(item);
    }
    return out;
}

CNetDiskDlg::CNetDiskDlg(const CString& category, CWnd* parent)
    : CDialog(IDD, parent), m_category(category) {}

void CNetDiskDlg::DoDataExchange(CDataExchange* pDX) {
    CDialog::DoDataExchange(pDX);
    DDX_Control(pDX, NetDiskIds::kList, m_list);
}

BOOL CNetDiskDlg::OnInitDialog() {
    CDialog::OnInitDialog();
    const HostData* host = CurrentHostData();
    const CString store = host ? host->cloudDir : CString();
    SetWindowText(L"云盘 - " + m_category);
    m_templates = ListCloudTemplates(store, m_category);
    SetDlgItemText(NetDiskIds::kFolder,
                   store.IsEmpty() ? CString(L"没有云盘目录") : JoinPath(store, m_category));
    m_list.InsertColumn(0, L"名称", LVCFMT_LEFT, 250);
    m_list.InsertColumn(1, L"大小", LVCFMT_RIGHT, 80);
    m_list.InsertColumn(2, L"修改日期", LVCFMT_LEFT, 140);
    m_list.SetExtendedStyle(LVS_EX_FULLROWSELECT);
    for (size_t i = 0; i < m_templates.size(); ++i) {
        int row = m_list.InsertItem(static_cast<int>(i), m_templates[i].name);
        m_list.SetItemText(row, 1, SizeText(m_templates[i].bytes));
        m_list.SetItemText(row, 2, m_templates[i].modified);
        m_list.SetItemData(row, static_cast<LPARAM>(i));
    }
    if (!m_templates.empty())
        m_list.SetItemState(0, LVIS_SELECTED, LVIS_SELECTED);
    if (CWnd* download = GetDlgItem(IDOK))
        download->EnableWindow(m_templates.empty() ? FALSE : TRUE);
    return TRUE;
}

void CNetDiskDlg::OnOK() {
    int row = m_list.GetNextItem(-1, LVNI_SELECTED);
    if (row < 0 || static_cast<size_t>(m_list.GetItemData(row)) >= m_templates.size())
        return;
    if (Download(m_templates[m_list.GetItemData(row)]))
        CDialog::OnOK();
}

// The template becomes <configuration folder>/<name>.xml and the current configuration. A
// file of that name is only replaced when the user says so: it may hold a day's work.
bool CNetDiskDlg::Download(const CloudTemplate& item) {
    const CString target = JoinPath(CQdDeConfigPresenter::ConfigFolder(), item.name + L".xml");
    if (PathExists(target)) {
        CString question = L"配置文件“" + item.name + L"”已存在，下载将覆盖它。是否覆盖?";
        if (MessageBoxExW(GetActiveWindow(), question, kMessageCaption, kQuestionFlags, 0) != IDYES)
            return false;
    }
    if (!CopyFileOverwrite(item.path, target)) {
        ShowWarning(L"下载失败: 无法写入 " + target);
        return false;
    }
    CQdDeConfigPresenter::SetCurConfig(item.name);
    m_downloaded = item.name;
    return true;
}

CNetDiskFunc* CNetDiskFunc::GetInstance() {
    static CNetDiskFunc instance;
    return &instance;
}

void CNetDiskFunc::ShowDialog(const CString& category, bool) {
    CNetDiskDlg dialog(category, nullptr);
    dialog.DoModal();
}
