#pragma once
// Stand-in for the host's small DOM wrappers, each with a bool result.

#include "platform/CString.h"
#include "xml/XmlDocument.h"

namespace QvXmlKit {

class MSXMLUtilityPtr {
public:
    static bool CreateDOMObj(XmlDocPtr& doc);
    static bool OpenXml(const XmlDocPtr& doc, const CString& file);
    // The first element of that name under the document (or node); false when none.
    static bool SelectNode(const XmlDocPtr& doc, const CString& name, XmlNode& node);
    static bool SetAttribute(XmlNode node, const CString& name, const CString& value);
    static bool SaveXml(const XmlDocPtr& doc, const CString& file);
};

} // namespace QvXmlKit
