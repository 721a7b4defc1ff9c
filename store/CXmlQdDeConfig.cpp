#include "store/CXmlQdDeConfig.h"

#include "host/QvKoProject/QvKoProject.h"
#include "host/QvKoSettings/QvKoSettings.h"
#include "platform/ComError.h"
#include "platform/FileSystem.h"
#include "platform/MessageBox.h"
#include "xml/XmlVisitor.h"

namespace {

const wchar_t* const kMissingFileText =
    L"\u6587\u4EF6\u4E0D\u5B58\u5728\uFF0C\u8BF7\u91CD\u65B0\u9009\u62E9\u8C03"
    L"\u7528\u6587\u4EF6"; // 文件不存在，请重新选择调用文件
const wchar_t* const kSaveAsFailedText =
    L"\u6587\u4EF6\u53E6\u5B58\u4E3A\u51FA\u9519,"
    L"\u8BF7\u7A0D\u5019\u5728\u8BD5"; // 文件另存为出错,请稍候在试

CString VersionText() {
    return QvKoSettings::GetAppProfile().GetVersion().ToString();
}

XmlNode AddSpecNode(XmlNode root, const CString& specName) {
    XmlElement element = XmlVisitor::addChild(root, specName);
    SQvKoSpecId id;
    SpecNameToId(specName, id);
    XmlVisitor::addatt(element, L"id", id.specId);
    XmlVisitor::addatt(element, L"name", specName);
    return element;
}

} // namespace

std::string OtherRootError(const CString& file, const char* found) {
    return ToUtf8(file) + ": the document element is <" + found + ">, not <" +
           ToUtf8(CString(kConfigRootName)) + ">";
}

XmlNode GetOrCreateRoot(const XmlDocPtr& doc, const CString& rootName) {
    XmlNode found = XmlVisitor::selectSingleNode(CheckPointer(doc.get()).Doc(), rootName);
    if (found)
        return found;
    // A document takes one document element only: one with another name can't get ours.
    if (doc->DocumentElement())
        return XmlNode();
    CString version = VersionText();
    if (version.IsEmpty())
        version = L"1.0.0";
    XmlElement root = XmlVisitor::addChild(doc->Doc(), rootName);
    XmlVisitor::addatt(root, L"Version", version);
    return root;
}

XmlNode FindOrCreateSpecNode(XmlNode root, const CString& specName) {
    for (XmlNode child = XmlVisitor::firstChild(root); child;
         child = XmlVisitor::nextSibling(child)) {
        if (XmlVisitor::getNodeAttribute(child, L"name") == specName)
            return child;
    }
    return AddSpecNode(root, specName);
}

XmlNode RebuildSpecNode(XmlNode root, const CString& specName) {
    for (XmlNode child = XmlVisitor::firstChild(root); child;
         child = XmlVisitor::nextSibling(child)) {
        if (XmlVisitor::getNodeAttribute(child, L"name") == specName) {
            root.remove_child(child);
            break;
        }
    }
    return AddSpecNode(root, specName);
}

CXmlQdDeConfig::CXmlQdDeConfig(const CString& file, const CString& specName)
    : m_strFile(file), m_strSpec(specName) {
    m_spec.SetSpecName(specName);
    const bool loaded = m_file.Open(file, specName);
    if (!loaded && m_file.Failure() != XmlLoadFailure::Missing)
        m_loadError = m_file.Error();
    XmlNode root = GetOrCreateRoot(m_file.Dom(), kConfigRootName);
    if (!root) {
        m_loadError = OtherRootError(file, m_file.Dom()->DocumentElement().name());
        m_file.DropDom();
        return;
    }
    XmlNode specNode = FindOrCreateSpecNode(root, specName);
    m_spec.ReadData(specNode);
    // A missing file comes into being as reading left the DOM; an unreadable one is kept.
    std::string why;
    if (!loaded && !PathExists(file) &&
        m_file.Save(file, specNode, specName, FromUtf8(root.attribute("Version").value()), &why) !=
            ConfigFile::Saved::Written)
        throw ComError(E_FAIL, "cannot write " + ToUtf8(file) + ": " + why);
    m_file.DropDom();
}

bool CXmlQdDeConfig::Save() {
    pugi::xml_document scratch;
    XmlNode specNode = AddSpecNode(scratch, m_strSpec);
    m_spec.WriteData(specNode);
    // The version goes into the same write as the tree, so that a save killed halfway leaves
    // the old file or the new one and never a third state; the stamp below then finds it set.
    const CString version = VersionText();
    std::string why;
    switch (m_file.Save(m_strFile, specNode, m_strSpec, version, &why)) {
    case ConfigFile::Saved::Written:
        break;
    // A missing or corrupt file takes the current specialty alone. A file that is there but
    // can't be read is neither: replacing it would lose what the user can't see.
    case ConfigFile::Saved::Unreadable:
        throw ComError(E_ACCESSDENIED, "cannot save " + why);
    case ConfigFile::Saved::OtherRoot:
        return false;
    case ConfigFile::Saved::Failed:
        throw ComError(E_FAIL, "cannot write " + ToUtf8(m_strFile) + ": " + why);
    }
    QvKoXmlVertion::SetXmlVersion(version, m_strFile);
    return true;
}

bool CXmlQdDeConfig::SaveAs(const CString& target) {
    if (target.Compare(m_strFile) != 0 && !CopyFileOverwrite(m_strFile, target)) {
        ShowWarning(CString(kSaveAsFailedText) + kRefusalMark);
        return false;
    }
    // The store stays on its own file: the tree as it stands is now also in the target.
    CString own = m_strFile;
    m_strFile = target;
    bool saved = false;
    try {
        saved = Save();
    } catch (...) {
        m_strFile = own;
        throw;
    }
    m_strFile = own;
    return saved;
}

bool CXmlQdDeConfig::ReLoad(const CString& file) {
    // Another file is saved to first; the open one, however it is spelled, is read anew.
    if (!IsSameFile(file, m_strFile))
        Save();
    if (!PathExists(file)) {
        ShowWarning(CString(kMissingFileText) + kRefusalMark);
        return false;
    }
    ConfigFile opened;
    if (!opened.Open(file, m_strSpec))
        return false;
    XmlNode root = GetOrCreateRoot(opened.Dom(), kConfigRootName);
    if (!root)
        return false;
    XmlNode specNode = FindOrCreateSpecNode(root, m_strSpec);
    if (!specNode)
        return false;
    m_spec.DeleteAllLMember();
    m_spec.ReadData(specNode);
    opened.DropDom();
    m_file = std::move(opened);
    m_strFile = file;
    m_loadError.clear();
    return true;
}

bool CXmlQdDeConfig::NewFile(const CString& file) {
    CopyFileOverwrite(JoinPath(QvKoSettings::GetAppProfile().GetConfigPath(), L"QdDeConfig.def"),
                      file);
    return ReLoad(file);
}

SMember* CXmlQdDeConfig::FindSMember(const CPath& path) const {
    if (path.SpecId != m_spec.GetId())
        return nullptr;
    LMember* large = m_spec.GetLMember(path.LMemberId);
    return large ? large->GetSMember(path.SMemberId) : nullptr;
}

ConfigNode* CXmlQdDeConfig::GetConfig(const CPath& path) {
    SMember* small = FindSMember(path);
    return small ? small->GetConfig(path.ConfigId) : nullptr;
}

bool CXmlQdDeConfig::GetConfig(const CPath& path, std::vector<ConfigNode*>& configs) {
    SMember* small = FindSMember(path);
    if (!small)
        return false;
    configs = small->GetAllConfig();
    return true;
}

QdNode* CXmlQdDeConfig::FindQd(const CPath& path) {
    ConfigNode* config = GetConfig(path);
    return config ? config->GetQd(path.QdId) : nullptr;
}

std::vector<ConfigNode*> CXmlQdDeConfig::SiblingConfigs(const QdDeConfigNode* node) {
    auto* small = dynamic_cast<SMember*>(node ? node->GetParent() : nullptr);
    return small ? small->GetAllConfig() : std::vector<ConfigNode*>();
}

bool CXmlQdDeConfig::GetExistQdIndex(const CPath& path, std::vector<CString>& numbers) {
    ConfigNode* config = GetConfig(path);
    return config && config->GetExistQdIndex(numbers);
}

bool CXmlQdDeConfig::AddConfig(const CPath& path, int& newId) {
    SMember* small = FindSMember(path);
    return small && small->AddConfig(path, newId);
}

bool CXmlQdDeConfig::MoveUpConfig(const CPath& path) {
    SMember* small = FindSMember(path);
    return small && small->MoveUpConfig(path);
}

bool CXmlQdDeConfig::MoveDownConfig(const CPath& path) {
    SMember* small = FindSMember(path);
    return small && small->MoveDownConfig(path);
}

bool CXmlQdDeConfig::AddConfigByCopy(const CPath& path, int& newId) {
    SMember* small = FindSMember(path);
    return small && small->AddConfigByCopy(path.ConfigId, newId);
}

bool CXmlQdDeConfig::DelConfig(const CPath& path) {
    SMember* small = FindSMember(path);
    return small && small->DelConfig(path.ConfigId);
}

bool CXmlQdDeConfig::AddCondition(const CPath& path, const ConditionNode& condition) {
    ConfigNode* config = GetConfig(path);
    return config && config->AddCondition(condition);
}

bool CXmlQdDeConfig::ResetCondition(const CPath& path, const ConditionNode& condition) {
    ConfigNode* config = GetConfig(path);
    return config && config->ResetCondition(path.ConditionId, condition);
}

bool CXmlQdDeConfig::DelCondition(const CPath& path, std::vector<ConfigNode*>& configs) {
    ConfigNode* config = GetConfig(path);
    if (!config)
        return false;
    config->DelCondition(path.ConditionId);
    configs = SiblingConfigs(config);
    return true;
}

bool CXmlQdDeConfig::AddQd(const QdStruct& qd, const CPath& path,
                           std::vector<ConfigNode*>& configs) {
    ConfigNode* config = GetConfig(path);
    if (!config)
        return false;
    configs = SiblingConfigs(config);
    return config->AddQd(qd);
}

bool CXmlQdDeConfig::AddDe2QdNode(const DeStruct& de, const CPath& path,
                                  std::vector<ConfigNode*>& configs) {
    QdNode* qd = FindQd(path);
    if (!qd)
        return false;
    configs = SiblingConfigs(qd->GetParent());
    return qd->AddDe(de);
}

bool CXmlQdDeConfig::AddDe2ConfigNode(const DeStruct& de, const CPath& path,
                                      std::vector<ConfigNode*>& configs) {
    ConfigNode* config = GetConfig(path);
    if (!config)
        return false;
    configs = SiblingConfigs(config);
    return config->AddDe(de);
}

bool CXmlQdDeConfig::DelQd(const CPath& path, const std::set<int>& ids) {
    ConfigNode* config = GetConfig(path);
    return config && config->DelQd(ids);
}

bool CXmlQdDeConfig::DelDeInQdNode(const CPath& path, const std::map<int, std::set<int>>& ids) {
    CPath each = path;
    for (const auto& [qdId, deIds] : ids) {
        each.QdId = qdId;
        if (QdNode* qd = FindQd(each))
            qd->DelDe(deIds);
    }
    return true;
}

bool CXmlQdDeConfig::DelDeInConfigNode(const CPath& path, const std::set<int>& ids) {
    ConfigNode* config = GetConfig(path);
    return config && config->DelDe(ids);
}

bool CXmlQdDeConfig::ResetQd(const CPath& path, const QdStruct& qd) {
    ConfigNode* config = GetConfig(path);
    return config && config->ResetQd(path.QdId, qd);
}

bool CXmlQdDeConfig::ResetDeToConfig(const CPath& path, const DeStruct& de) {
    ConfigNode* config = GetConfig(path);
    return config && config->ResetDe(path.DeId, de);
}

bool CXmlQdDeConfig::ResetDeToQd(const CPath& path, const DeStruct& de) {
    QdNode* qd = FindQd(path);
    return qd && qd->ReSetDe(path.DeId, de);
}
