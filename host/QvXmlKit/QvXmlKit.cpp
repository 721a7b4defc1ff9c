#include "host/QvXmlKit/QvXmlKit.h"

#include "xml/XmlVisitor.h"

namespace QvXmlKit {

bool MSXMLUtilityPtr::CreateDOMObj(XmlDocPtr& doc) {
    doc = std::make_shared<XmlDocument>();
    return true;
}

bool MSXMLUtilityPtr::OpenXml(const XmlDocPtr& doc, const CString& file) {
    return doc && doc->Load(file);
}

bool MSXMLUtilityPtr::SelectNode(const XmlDocPtr& doc, const CString& name, XmlNode& node) {
    node = doc ? XmlVisitor::selectSingleNode(doc->Doc(), name) : XmlNode();
    return static_cast<bool>(node);
}

bool MSXMLUtilityPtr::SetAttribute(XmlNode node, const CString& name, const CString& value) {
    if (node.type() != pugi::node_element)
        return false;
    XmlVisitor::addatt(node, name, value);
    return true;
}

bool MSXMLUtilityPtr::SaveXml(const XmlDocPtr& doc, const CString& file) {
    return doc && doc->Save(file);
}

} // namespace QvXmlKit
