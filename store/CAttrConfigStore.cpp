#include "store/CAttrConfigStore.h"

#include "host/QvKoProject/QvKoProject.h"
#include "host/QvKoSettings/QvKoSettings.h"
#include "platform/ComError.h"
#include "platform/FileSystem.h"
#include "platform/NumParse.h"
#include "xml/XmlVisitor.h"

#include <vector>

namespace {

const wchar_t* const kAttrConfigRoot = L"属性类型配置信息";
const wchar_t* const kAttrInfoRoot = L"属性参数信息";
const wchar_t* const kBuildingSpec = L"建筑";

CString ConfigFile(const wchar_t* name) {
    return JoinPath(QvKoSettings::GetAppProfile().GetConfigPath(), name);
}

XmlNode FindChildByName(XmlNode parent, const CString& name) {
    for (XmlNode child = XmlVisitor::firstChild(parent); child;
         child = XmlVisitor::nextSibling(child))
        if (XmlVisitor::getNodeAttribute(child, L"name") == name)
            return child;
    return XmlNode();
}

XmlNode AddNamed(XmlNode parent, const CString& tag, const CString& id, const CString& name) {
    XmlElement element = XmlVisitor::addChild(parent, tag);
    XmlVisitor::addatt(element, L"id", id);
    XmlVisitor::addatt(element, L"name", name);
    return element;
}

XmlNode FindOrAddSpec(XmlNode root, const CString& specName) {
    if (XmlNode found = FindChildByName(root, specName))
        return found;
    SQvKoSpecId id;
    SpecNameToId(specName, id);
    return AddNamed(root, specName, id.specId, specName);
}

XmlNode FindOrAddByTag(XmlNode parent, const CString& name, const CString& id) {
    if (XmlNode found = XmlVisitor::selectSingleNode(parent, name))
        return found;
    return AddNamed(parent, name, id, name);
}

// Loads a file that exists and finds its root element. A missing file gives a null root and
// no error; a file that can't be used gives a null root and the reason, naming the file.
XmlNode LoadExisting(XmlDocument& doc, const CString& file, const wchar_t* rootName,
                     std::string& error) {
    error.clear();
    if (!PathExists(file))
        return XmlNode();
    if (!doc.Load(file)) {
        const std::string path = ToUtf8(file);
        error = doc.LastError();
        if (error.rfind(path, 0) != 0)
            error = path + ": " + (error.empty() ? "can't be read" : error);
        return XmlNode();
    }
    XmlNode root = XmlVisitor::selectSingleNode(doc.Doc(), rootName);
    if (!root)
        error = ToUtf8(file) + ": the root element is <" + doc.DocumentElement().name() +
                ">, not <" + ToUtf8(std::wstring_view(rootName)) + ">";
    return root;
}

bool IsText(XmlNode node) {
    return node.type() == pugi::node_pcdata || node.type() == pugi::node_cdata;
}

} // namespace

CAttrConfigStore::CAttrConfigStore() : m_strFile(ConfigFile(L"AttrConfig.xml")) {
    m_pAttrInfoDoc = XmlVisitor::CreateXmlDocPtr();
    CheckPointer(m_pAttrInfoDoc.get());
    const CString infoFile = ConfigFile(L"AttributeInformation.xml");
    m_pAttrInfoRoot = LoadExisting(*m_pAttrInfoDoc, infoFile, kAttrInfoRoot, m_attrInfoError);
    if (!m_pAttrInfoRoot && m_attrInfoError.empty())
        m_attrInfoError = ToUtf8(infoFile) + ": file not found";
}

CAttrConfigStore::CAttrConfigStore(const CString& specName)
    : m_strFile(ConfigFile(L"AttrConfig.xml")), m_strSpec(specName) {
    Load();
}

bool CAttrConfigStore::Load() {
    XmlDocPtr doc = XmlVisitor::CreateXmlDocPtr();
    if (!doc)
        return false;
    XmlNode root = LoadExisting(*doc, m_strFile, kAttrConfigRoot, m_lastError);
    if (!root)
        return m_lastError.empty(); // no file: no settings generated yet
    XmlNode spec = FindChildByName(root, m_strSpec);
    // Text where an element belongs is a record or category written by hand that would
    // otherwise vanish; comments and processing instructions are no records and are skipped.
    auto textIn = [&](XmlNode parent, const CString& path, const char* what) {
        for (XmlNode child = XmlVisitor::firstChild(parent); child;
             child = XmlVisitor::nextSibling(child))
            if (IsText(child)) {
                m_lastError = ToUtf8(m_strFile) + ": text where the " + what + " of " +
                              ToUtf8(path) + " belong";
                m_mapAttr.clear();
                return true;
            }
        return false;
    };
    if (textIn(spec, m_strSpec, "large categories"))
        return false;
    for (XmlNode large = XmlVisitor::firstChild(spec); large;
         large = XmlVisitor::nextSibling(large)) {
        if (large.type() != pugi::node_element)
            continue;
        const CString largePath = m_strSpec + L"\\" + XmlVisitor::nodeName(large);
        if (textIn(large, largePath, "small categories"))
            return false;
        for (XmlNode small = XmlVisitor::firstChild(large); small;
             small = XmlVisitor::nextSibling(small)) {
            if (small.type() != pugi::node_element)
                continue;
            const CString path = largePath + L"\\" + XmlVisitor::nodeName(small);
            if (textIn(small, path, "attribute records"))
                return false;
            for (XmlNode attr = XmlVisitor::firstChild(small); attr;
                 attr = XmlVisitor::nextSibling(attr)) {
                if (attr.type() != pugi::node_element)
                    continue;
                AttrConfig record(XmlVisitor::getNodeAttribute(attr, L"name"),
                                  XmlVisitor::getNodeAttribute(attr, L"namecode"),
                                  WToI(XmlVisitor::getNodeAttribute(attr, L"vartype")),
                                  WToI(XmlVisitor::getNodeAttribute(attr, L"compar")),
                                  WToI(XmlVisitor::getNodeAttribute(attr, L"specrelation")));
                m_mapAttr[path + record.name] = record;
            }
        }
    }
    return true;
}

bool CAttrConfigStore::GetAttConfig(const CString& key, AttrConfig& out) const {
    auto it = m_mapAttr.find(key);
    if (it == m_mapAttr.end())
        return false;
    out = it->second;
    return true;
}

bool CAttrConfigStore::SetAttConfig(const CString& key, const AttrConfig& record) {
    auto it = m_mapAttr.find(key);
    if (it == m_mapAttr.end())
        return false;
    it->second.vartype = record.vartype;
    it->second.compar = record.compar;
    it->second.specrelation = record.specrelation;
    return true;
}

bool CAttrConfigStore::LookupAttrType(const CString& code, AttrConfig& record) const {
    XmlNode info = XmlVisitor::selectSingleNode(m_pAttrInfoRoot, code);
    if (!info)
        return false;
    switch (WToI(XmlVisitor::getNodeAttribute(info, L"type"))) {
    case 1:
    case 2:
    case 10:
    case 11:
        record.compar = 0;
        record.specrelation = 1;
        break;
    case 3:
    case 8:
        record.compar = 1;
        record.specrelation = 1;
        break;
    case 9:
        record.compar = 1;
        record.specrelation = 0;
        break;
    default:
        break;
    }
    return true;
}

bool CAttrConfigStore::Save() {
    auto refuse = [this](HRESULT hr, const std::string& why) {
        m_lastError = why;
        throw ComError(hr, why);
    };
    XmlDocPtr doc = XmlVisitor::CreateXmlDocPtr();
    if (!doc)
        return false;
    // An existing file is extended, a missing one started afresh; one that can't be read is
    // left for the user to mend rather than replaced.
    XmlNode root = LoadExisting(*doc, m_strFile, kAttrConfigRoot, m_lastError);
    if (!m_lastError.empty())
        refuse(E_FAIL, m_lastError);
    if (!root)
        root = XmlVisitor::GetRootNode_C(doc, kAttrConfigRoot);
    CAtt att;
    CStringArray specNames;
    att.GetAllSpecNames(specNames);
    for (const CString& specName : specNames) {
        if (specName.Find(kBuildingSpec) >= 0)
            continue;
        XmlNode specNode = FindOrAddSpec(root, specName);
        SQvKoSpecId specId;
        SpecNameToId(specName, specId);
        std::vector<SQvKoBigCategoryId> larges;
        att.GetAllBigCategoryIdsBySpec(specId, larges);
        for (const auto& largeId : larges) {
            CString largeName;
            att.GetBigCategoryName(largeId, largeName);
            XmlNode largeNode = FindOrAddByTag(specNode, largeName, largeId.bigCategoryId);
            std::vector<SQvKoSmallCategoryId> smalls;
            att.GetAllSmallCategoryIdsByBigCategory(largeId, smalls);
            for (const auto& smallId : smalls) {
                CString smallName;
                att.GetSmallCategoryName(smallId, smallName);
                XmlNode smallNode = FindOrAddByTag(largeNode, smallName, smallId.smallCategoryId);
                CStringArray list;
                CSysSmallCategoryMng(smallId).GetAttributeList(list);
                for (int k = 0; k < list.GetSize(); k += 4) {
                    if (k + 3 >= list.GetSize())
                        throw ComError(E_INVALIDARG, "attribute list is not in fours");
                    const CString& name = list[k + 1];
                    const CString& code = list[k + 3];
                    XmlNode attrNode = XmlVisitor::selectSingleNode(smallNode, code);
                    if (!attrNode)
                        attrNode = XmlVisitor::addChild(smallNode, code);
                    AttrConfig record(name, code, 1, 1, 1);
                    if (!m_pAttrInfoRoot)
                        refuse(E_POINTER, m_attrInfoError.empty()
                                              ? "a reader can't generate the attribute settings"
                                              : m_attrInfoError);
                    if (!LookupAttrType(code, record))
                        continue;
                    XmlVisitor::addatt(attrNode, L"name", record.name);
                    XmlVisitor::addatt(attrNode, L"namecode", record.namecode);
                    XmlVisitor::addatt(attrNode, L"vartype", IntToText(record.vartype));
                    XmlVisitor::addatt(attrNode, L"compar", IntToText(record.compar));
                    XmlVisitor::addatt(attrNode, L"specrelation", IntToText(record.specrelation));
                }
            }
        }
    }
    if (!doc->Save(m_strFile))
        refuse(E_FAIL, ToUtf8(m_strFile) + ": can't be written");
    return true;
}
