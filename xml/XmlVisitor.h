#pragma once
// The single doorway through which model and stores make documents and elements and read
// and write attributes.

#include "platform/CString.h"
#include "platform/Export.h"
#include "xml/XmlDocument.h"

class KOQDDE_API XmlVisitor {
public:
    XmlVisitor& operator=(const XmlVisitor&) { return *this; }

    // A new empty document, or null after telling the user.
    static XmlDocPtr CreateXmlDocPtr();
    // The child element of the document with this name, created and appended when absent.
    static XmlNode GetRootNode_C(const XmlDocPtr& doc, const CString& name);
    // A new element appended as the parent's last child. Raises E_POINTER for a null parent.
    static XmlElement addChild(XmlElement parent, const CString& name);
    // Creates or replaces the attribute. Raises E_POINTER when the handle is no element.
    static void addatt(XmlElement element, const CString& name, const CString& value);
    // The same for the literal names the model passes, spared a conversion each call.
    static void addatt(XmlElement element, const wchar_t* name, const CString& value);
    // The attribute's text; "" when absent or when the handle is no element. Never raises.
    static CString getNodeAttribute(XmlElement element, const CString& name);
    static CString getNodeAttribute(XmlElement element, const wchar_t* name);

    // Helpers over pugixml for the DOM calls the model makes.
    // selectSingleNode with a plain element name: the first child element of that exact name.
    static XmlNode selectSingleNode(XmlNode parent, const CString& name);
    // Every child node of a list element that the DOM keeps (elements, comments, PIs, text).
    static XmlNode firstChild(XmlNode node) { return node.first_child(); }
    static XmlNode nextSibling(XmlNode node) { return node.next_sibling(); }
    static CString nodeName(XmlNode node);
};
