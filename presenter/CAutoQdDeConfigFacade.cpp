#include "presenter/CAutoQdDeConfigFacade.h"

#include "host/QvKoProject/QvKoProject.h"
#include "host/QvXmlKit/QvXmlKit.h"
#include "store/CAttrConfigStore.h"
#include "store/CFileHeadWriter.h"
#include "store/CXmlQdDeConfig.h"

void CAutoQdDeConfigFacade::AttrConfig() {
    CAttrConfigStore generator;
    generator.Save();
}

std::unique_ptr<CQdDeConfigPresenter>
CAutoQdDeConfigFacade::GetQdDeConfigPresenter(const CString& file) {
    return std::make_unique<CQdDeConfigPresenter>(file);
}

void CAutoQdDeConfigFacade::WriteHead(const CString& file) {
    using QvXmlKit::MSXMLUtilityPtr;
    XmlDocPtr doc;
    if (!MSXMLUtilityPtr::CreateDOMObj(doc))
        return;
    if (!MSXMLUtilityPtr::OpenXml(doc, file))
        return;
    XmlNode root;
    MSXMLUtilityPtr::SelectNode(doc, kConfigRootName, root);
    if (!root)
        return;
    CAtt att;
    bool billMode = att.GetQdDeMode() == SQdDeInfo::eQdMode;
    // The year goes to "QuotaArea" and the local code to "QuotaYear": readers expect it so.
    MSXMLUtilityPtr::SetAttribute(root, L"CalMode", billMode ? L"清单版" : L"定额版");
    MSXMLUtilityPtr::SetAttribute(root, L"BillName", att.GetQdFileName());
    MSXMLUtilityPtr::SetAttribute(root, L"BillGuid", att.GetQdCode());
    MSXMLUtilityPtr::SetAttribute(root, L"BillCorpCode", att.GetQdLocal());
    MSXMLUtilityPtr::SetAttribute(root, L"QuotaName",
                                  billMode ? att.GetQdDeFileName() : att.GetDeFileName());
    MSXMLUtilityPtr::SetAttribute(root, L"QuotaGuid",
                                  billMode ? att.GetQdDeCode() : att.GetDeCode());
    MSXMLUtilityPtr::SetAttribute(root, L"QuotaArea",
                                  billMode ? att.GetQdDeYear() : att.GetDeYear());
    MSXMLUtilityPtr::SetAttribute(root, L"QuotaYear",
                                  billMode ? att.GetQdDeLocal() : att.GetDeLocal());
    MSXMLUtilityPtr::SaveXml(doc, file);
    CFileHeadWriter().WriteFileHead(file);
}
