#include "workbench/DlgSaveAs.h"

#include "host/QvKoSettings/QvKoSettings.h"
#include "platform/FileSystem.h"
#include "platform/MessageBox.h"

#include <algorithm>
#include <cwchar>
#include <cwctype>
#include <filesystem>
#include <system_error>
#include <vector>

namespace {

constexpr int kIdFileList = 1000;
constexpr int kIdFileType = 1001;
constexpr int kIdName = 1069;

const wchar_t* const kConfigFolderName = L"自动套配置";
const wchar_t* const kExtension = L".xml";
// Characters a file name can't hold.
const wchar_t* const kForbidden = L"\\/:*?<>\"|";

struct ModeTexts {
    const wchar_t* caption;
    const wchar_t* okButton; // null: the template's text stays
    bool nameEditable;
};

ModeTexts TextsOf(int mode) {
    switch (mode) {
    case DlgSaveAs::kOpen:
        return {L"调用", L"调用", false};
    case DlgSaveAs::kNew:
        return {L"新建", L"新建", true};
    default:
        return {L"另存", nullptr, true};
    }
}

wchar_t FoldCase(wchar_t ch) {
    return static_cast<wchar_t>(std::towlower(ch));
}

// A file-name pattern with "*" and "?", matched without regard to case as the file system of
// the configuration folder's origin does.
bool MatchesPattern(const std::wstring& name, const std::wstring& pattern) {
    size_t n = 0, p = 0, starP = std::wstring::npos, starN = 0;
    while (n < name.size()) {
        if (p < pattern.size() &&
            (pattern[p] == L'?' || FoldCase(pattern[p]) == FoldCase(name[n]))) {
            ++n;
            ++p;
        } else if (p < pattern.size() && pattern[p] == L'*') {
            starP = p++;
            starN = n;
        } else if (starP != std::wstring::npos) {
            p = starP + 1;
            n = ++starN;
        } else {
            return false;
        }
    }
    while (p < pattern.size() && pattern[p] == L'*')
        ++p;
    return p == pattern.size();
}

} // namespace

DlgSaveAs::DlgSaveAs(int nMode, CWnd* pParent, const CString& strCurFile)
    : CDialog(IDD, pParent), m_nMode(nMode), m_strCurFile(strCurFile) {
    m_strFolder = QvKoSettings::GetAppProfile().GetConfigPath() + L"/" + kConfigFolderName;
}

DlgSaveAs::~DlgSaveAs() = default;

void DlgSaveAs::DoDataExchange(CDataExchange* pDX) {
    CDialog::DoDataExchange(pDX);
    DDX_Control(pDX, kIdFileList, m_listFile);
    DDX_Control(pDX, kIdFileType, m_cmbFileType);
    DDX_Control(pDX, kIdName, m_editName);
    DDX_Text(pDX, kIdName, m_strName);
}

BOOL DlgSaveAs::OnInitDialog() {
    CDialog::OnInitDialog();
    ListFiles(m_strFolder + L"/*" + kExtension);
    for (const CString& file : m_arrFileName) {
        int dot = file.ReverseFind(L'.');
        m_listFile.AddString(dot >= 0 ? file.Left(dot) : file);
    }
    ApplyMode();
    m_cmbFileType.SetCurSel(0);
    UpdateData(FALSE);
    return TRUE;
}

BOOL DlgSaveAs::OnCommand(UINT id, UINT code) {
    if (id == kIdFileList && code == LBN_SELCHANGE) {
        OnFileSelChange();
        return TRUE;
    }
    return CDialog::OnCommand(id, code);
}

// Every entry of the folder whose name fits the pattern's last part, folders included: a
// missing folder simply gives no names.
void DlgSaveAs::ListFiles(const CString& pattern) {
    m_arrFileName.RemoveAll();
    const std::wstring namePattern = FileNameOf(pattern).str();
    std::error_code error;
    std::filesystem::directory_iterator it(ToUtf8(FolderOf(pattern)), error);
    if (error)
        return;
    std::vector<std::wstring> found;
    for (const auto& entry : it) {
        std::wstring name = FromUtf8(entry.path().filename().string()).str();
        if (MatchesPattern(name, namePattern))
            found.push_back(std::move(name));
    }
    // Directory order is arbitrary here; name order keeps the result the same run to run.
    std::sort(found.begin(), found.end());
    for (const auto& name : found)
        m_arrFileName.Add(CString(name));
}

void DlgSaveAs::ApplyMode() {
    const ModeTexts texts = TextsOf(m_nMode);
    SetWindowText(texts.caption);
    if (texts.okButton)
        if (CWnd* ok = GetDlgItem(IDOK))
            ok->SetWindowText(texts.okButton);
    m_editName.EnableWindow(texts.nameEditable ? TRUE : FALSE);
}

void DlgSaveAs::OnFileSelChange() {
    int sel = m_listFile.GetCurSel();
    if (sel < 0)
        return;
    m_listFile.GetText(sel, m_strName);
    UpdateData(FALSE);
}

CString DlgSaveAs::GetFullFileName() {
    int dot = m_strName.ReverseFind(L'.');
    CString extension = dot >= 0 ? m_strName.Mid(dot) : m_strName;
    extension.MakeLower();
    if (extension == kExtension)
        return m_strFolder + L"/" + m_strName;
    return m_strFolder + L"/" + m_strName + kExtension;
}

BOOL DlgSaveAs::CheckFileName(const CString& name) {
    for (int i = 0; i < name.GetLength(); ++i) {
        if (std::wcschr(kForbidden, name[i]) == nullptr)
            continue;
        ShowWarning(CString(L"文件名不能包含下列任何字符:\n \\ /:*?\"<>|") + kRefusalMark);
        return FALSE;
    }
    return TRUE;
}

// Only an upper-case ".XML" is taken off before comparing: "a.xml" does not find the row "a",
// and the command then replaces that file without asking. Rows are compared with case.
BOOL DlgSaveAs::IsNameInList() {
    UpdateData(TRUE);
    CString name = m_strName;
    if (name.GetLength() > 4 && name.Right(4).Compare(L".XML") == 0)
        name = name.Left(name.GetLength() - 4);
    for (int i = 0; i < m_listFile.GetCount(); ++i)
        if (m_listFile.GetText(i).Compare(name) == 0)
            return TRUE;
    return FALSE;
}

void DlgSaveAs::OnOK() {
    UpdateData(TRUE);
    if (m_strName.IsEmpty())
        return;
    if (!CheckFileName(m_strName))
        return;
    if (m_nMode == kNew && m_strCurFile.CompareNoCase(GetFullFileName()) == 0) {
        ShowWarning(CString(L"当前配置文件不能覆盖") + kRefusalMark);
        return;
    }
    if (m_nMode != kOpen && IsNameInList()) {
        CString text = CString(L"是否覆盖已有配置文件") + kQuestionMark;
        if (MessageBoxExW(GetActiveWindow(), text, kMessageCaption, kQuestionFlags, 0) != IDYES)
            return;
    }
    CDialog::OnOK();
}
