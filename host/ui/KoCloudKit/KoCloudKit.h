#pragma once
// Stand-in for the host's cloud disk: a store of shared templates, here a folder
// (HostData::cloudDir) with one subfolder per category ("自动套模板", ...). Its dialog lists the
// templates of a category with their size and date, and downloads the chosen one into the
// configuration folder as the current configuration.

#include "platform/CString.h"
#include "ui/CDialog.h"
#include "ui/CListCtrl.h"

#include <vector>

// Control ids of template IDD_NETDISK.
namespace NetDiskIds {
inline constexpr int kList = 1000;
inline constexpr int kFolder = 1001;
} // namespace NetDiskIds

struct CloudTemplate {
    CString name; // file name without ".xml"
    CString path; // full path in the store
    long long bytes = 0;
    CString modified; // "yyyy-MM-dd HH:mm", local time
};

// The templates of a category, by name; none when the store or the category is missing.
std::vector<CloudTemplate> ListCloudTemplates(const CString& storeDir, const CString& category);

class CNetDiskDlg : public CDialog {
public:
    static constexpr UINT IDD = 3100;
    CNetDiskDlg(const CString& category, CWnd* parent);
    // The name of the template downloaded by the last OK; empty when none was.
    const CString& GetDownloaded() const { return m_downloaded; }

protected:
    void DoDataExchange(CDataExchange* pDX) override;
    BOOL OnInitDialog() override;
    // Downloads the selected template; stays open when there is none or the user keeps the
    // file the download would replace.
    void OnOK() override;

private:
    bool Download(const CloudTemplate& item);

    CString m_category;
    std::vector<CloudTemplate> m_templates;
    CListCtrl m_list;
    CString m_downloaded;
};

class CNetDiskFunc {
public:
    static CNetDiskFunc* GetInstance();
    // Runs the dialog of the category modally and returns when the user has finished. The
    // second argument is the host's "download only" flag; the stand-in always downloads.
    void ShowDialog(const CString& category, bool downloadOnly);
};
