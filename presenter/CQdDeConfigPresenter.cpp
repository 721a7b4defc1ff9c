#include "presenter/CQdDeConfigPresenter.h"

#include "host/QvKoProject/QvKoProject.h"
#include "host/QvKoSettings/QvKoSettings.h"
#include "platform/FileSystem.h"
#include "platform/NumParse.h"
#include "platform/ProfileIni.h"
#include "store/CXmlQdDeConfig.h"

#include <algorithm>
#include <memory>

namespace {
const wchar_t* const kConfigFolderName = L"\u81EA\u52A8\u5957\u914D\u7F6E"; // 自动套配置
const wchar_t* const kIniSection = L"QdDeConfigInfo";
const wchar_t* const kIniKey = L"ConfigName";
const wchar_t* const kDefaultConfigName = L"DefaultConfig";
const wchar_t* const kMismatchText =
    L"\u6587\u4EF6\u529F\u80FD\u4E0D\u5339\u914D"; // 文件功能不匹配
constexpr int kNameBufferSize = CQdDeConfigPresenter::kMaxConfigNameLength + 1;
} // namespace

CQdDeConfigPresenter::CQdDeConfigPresenter(const CString& file) {
    CString path = file.IsEmpty() ? ConfigFolder() + L"/" + GetCurConfig() + L".xml" : file;
    m_pData = std::make_shared<CXmlQdDeConfig>(path, CProj().GetCurrentSpec());
    m_pAttr = std::make_shared<CAttrConfigStore>(CProj().GetCurrentSpec());
}

CQdDeConfigPresenter::~CQdDeConfigPresenter() {
    m_pData.reset();
    m_pAttr.reset();
}

bool CQdDeConfigPresenter::GetAttConfig(const CString& first, const CString& second,
                                        AttrConfig& out) {
    return m_pAttr->GetAttConfig(first + second, out);
}

bool CQdDeConfigPresenter::SetAttConfig(const CString& first, const CString& second,
                                        const AttrConfig& record) {
    return m_pAttr->SetAttConfig(first + second, record);
}

bool CQdDeConfigPresenter::SaveAttConfig() {
    return m_pAttr->Save();
}

CString CQdDeConfigPresenter::ConfigFolder() {
    CString folder = QvKoSettings::GetAppProfile().GetConfigPath() + L"/" + kConfigFolderName;
    if (!PathExists(folder))
        MakeDirectory(folder);
    return folder;
}

CString CQdDeConfigPresenter::IniPath() {
    CString project = CProj().GetPrjPath();
    int cut = std::max(project.ReverseFind(L'/'), project.ReverseFind(L'\\'));
    CString folder = cut >= 0 ? project.Left(cut) : CString();
    return folder + L"/SysRegedit.ini";
}

CString CQdDeConfigPresenter::RecordedCurConfig() {
    CString name;
    GetPrivateProfileStringW(kIniSection, kIniKey, L"", name, kNameBufferSize, IniPath());
    return name;
}

bool CQdDeConfigPresenter::IsConfigName(const CString& name) {
    if (name.IsEmpty() || name.GetLength() > kMaxConfigNameLength || name == L"." || name == L"..")
        return false;
    for (int i = 0; i < name.GetLength(); ++i) {
        const wchar_t ch = name[i];
        if (ch == L'/' || ch == L'\\' || ch < 0x20 || ch == 0x7F)
            return false;
    }
    return true;
}

// The record names a file of the configuration folder; a name that would reach outside it
// (a separator, "..") is not taken.
CString CQdDeConfigPresenter::GetCurConfig() {
    CString name = RecordedCurConfig();
    return IsConfigName(name) ? name : CString(kDefaultConfigName);
}

void CQdDeConfigPresenter::SetCurConfig(const CString& name) {
    WritePrivateProfileStringW(kIniSection, kIniKey, name, IniPath());
}

CString CQdDeConfigPresenter::GetCurConfigDetailPath() {
    return ConfigFolder() + L"/" + GetCurConfig() + L".xml";
}

CString CQdDeConfigPresenter::ConfigNameOf(const CString& file) {
    CString name = FileNameOf(file);
    int dot = name.ReverseFind(L'.');
    return dot >= 0 ? name.Left(dot) : CString();
}

void CQdDeConfigPresenter::RecordCurrent(const CString& file) {
    SetCurConfig(ConfigNameOf(file));
}

bool CQdDeConfigPresenter::ReLoad(const CString& file) {
    if (!m_pData->ReLoad(file))
        return false;
    RecordCurrent(file);
    return true;
}

bool CQdDeConfigPresenter::NewFile(const CString& file) {
    if (!m_pData->NewFile(file))
        return false;
    RecordCurrent(file);
    return true;
}

bool CQdDeConfigPresenter::Save() {
    return m_pData->Save();
}

bool CQdDeConfigPresenter::SaveAs(const CString& file) {
    return m_pData->SaveAs(file);
}

bool CQdDeConfigPresenter::GetConfig(const CPath& path, std::vector<ConfigNode*>& configs) {
    return m_pData->GetConfig(path, configs);
}

ConfigNode* CQdDeConfigPresenter::GetConfig(const CPath& path) {
    return m_pData->GetConfig(path);
}

bool CQdDeConfigPresenter::GetExistQdIndex(const CPath& path, std::vector<CString>& numbers) {
    return m_pData->GetExistQdIndex(path, numbers);
}

bool CQdDeConfigPresenter::AddConfig(const CPath& path, int& newId) {
    return m_pData->AddConfig(path, newId);
}

bool CQdDeConfigPresenter::MoveUpConfig(const CPath& path) {
    return m_pData->MoveUpConfig(path);
}

bool CQdDeConfigPresenter::MoveDownConfig(const CPath& path) {
    return m_pData->MoveDownConfig(path);
}

bool CQdDeConfigPresenter::AddConfigByCopy(const CPath& path, int& newId) {
    return m_pData->AddConfigByCopy(path, newId);
}

bool CQdDeConfigPresenter::DelConfig(const CPath& path) {
    return m_pData->DelConfig(path);
}

namespace {
std::unique_ptr<ConditionNode> BuildCondition(const CStringArray& s) {
    if (s.GetSize() < 8)
        return nullptr;
    return std::make_unique<ConditionNode>(s[0], WToI(s[1]) != 0, s[2], s[3], s[4], s[5], s[6],
                                           s[7]);
}
} // namespace

bool CQdDeConfigPresenter::AddCondition(const CPath& path, const CStringArray& condition) {
    auto node = BuildCondition(condition);
    return node && m_pData->AddCondition(path, *node);
}

bool CQdDeConfigPresenter::ResetCondition(const CPath& path, const CStringArray& condition) {
    auto node = BuildCondition(condition);
    return node && m_pData->ResetCondition(path, *node);
}

bool CQdDeConfigPresenter::DelCondition(const CPath& path, std::vector<ConfigNode*>& configs) {
    return m_pData->DelCondition(path, configs);
}

bool CQdDeConfigPresenter::AddQd(const QdStruct& qd, const CPath& path,
                                 std::vector<ConfigNode*>& configs) {
    return m_pData->AddQd(qd, path, configs);
}

bool CQdDeConfigPresenter::AddDe2QdNode(const DeStruct& de, const CPath& path,
                                        std::vector<ConfigNode*>& configs) {
    return m_pData->AddDe2QdNode(de, path, configs);
}

bool CQdDeConfigPresenter::AddDe2ConfigNode(const DeStruct& de, const CPath& path,
                                            std::vector<ConfigNode*>& configs) {
    return m_pData->AddDe2ConfigNode(de, path, configs);
}

bool CQdDeConfigPresenter::DelQd(const CPath& path, const std::set<int>& ids) {
    return m_pData->DelQd(path, ids);
}

bool CQdDeConfigPresenter::DelDeInQdNode(const CPath& path,
                                         const std::map<int, std::set<int>>& ids) {
    return m_pData->DelDeInQdNode(path, ids);
}

bool CQdDeConfigPresenter::DelDeInConfigNode(const CPath& path, const std::set<int>& ids) {
    return m_pData->DelDeInConfigNode(path, ids);
}

bool CQdDeConfigPresenter::ResetQd(const CPath& path, const QdStruct& qd) {
    return m_pData->ResetQd(path, qd);
}

bool CQdDeConfigPresenter::ResetDeToConfig(const CPath& path, const DeStruct& de) {
    return m_pData->ResetDeToConfig(path, de);
}

bool CQdDeConfigPresenter::ResetDeToQd(const CPath& path, const DeStruct& de) {
    return m_pData->ResetDeToQd(path, de);
}

extern "C" bool RefreshAutoConfig(CString& error, const CString& file) {
    CQdDeConfigPresenter presenter{CString()};
    bool loaded = presenter.ReLoad(file);
    if (!loaded)
        error = kMismatchText;
    return loaded;
}
