#include "xml/XmlVisitor.h"

#include "platform/ComError.h"
#include "platform/MessageBox.h"
#include "xml/XmlName.h"

#include <new>

namespace {

bool IsElement(XmlNode node) {
    return node.type() == pugi::node_element;
}

// A DOM refuses to make an element or attribute of a name XML does not allow, and a file
// holding one would not load again.
void CheckName(const CString& name) {
    if (!IsXmlName(ToUtf8(name)))
        throw ComError(E_INVALIDARG, "not a valid XML name: \"" + ToUtf8(name) + "\"");
}

// A short name of ASCII letters, digits and "_" starting with a letter, narrowed on the stack:
// valid as it stands, and the model reads and writes millions of attributes by such names.
class PlainName {
public:
    explicit PlainName(const wchar_t* name) {
        size_t length = 0;
        for (; name && name[length]; ++length) {
            const wchar_t c = name[length];
            const bool letter = (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z');
            const bool other = (c >= L'0' && c <= L'9') || c == L'_';
            if (length + 1 >= sizeof m_text || !(letter || (length > 0 && other)))
                return;
            m_text[length] = static_cast<char>(c);
        }
        m_text[length] = '\0';
        m_plain = length > 0;
    }
    explicit operator bool() const { return m_plain; }
    const char* c_str() const { return m_text; }

private:
    char m_text[64];
    bool m_plain = false;
};

void SetAttribute(XmlElement element, const char* key, const CString& value) {
    // An existing attribute keeps its place; a new one goes last.
    pugi::xml_attribute attribute = element.attribute(key);
    if (!attribute)
        attribute = element.append_attribute(key);
    if (!attribute || !attribute.set_value(ToUtf8(value).c_str()))
        throw ComError(E_OUTOFMEMORY, "can't set an attribute");
}

} // namespace

XmlDocPtr XmlVisitor::CreateXmlDocPtr() {
    try {
        return std::make_shared<XmlDocument>();
    } catch (const std::bad_alloc&) {
        ShowWarning(L"无法创建DOMDocument对象，请检查是否安装了MS XML Parser 运行库!");
        return nullptr;
    }
}

XmlNode XmlVisitor::GetRootNode_C(const XmlDocPtr& doc, const CString& name) {
    if (!doc)
        throw ComError(E_POINTER, "no document");
    XmlNode root = selectSingleNode(doc->Doc(), name);
    if (root)
        return root;
    CheckName(name);
    // A document takes one document element only.
    if (doc->DocumentElement())
        throw ComError(E_FAIL, "the document already has another document element");
    root = doc->Doc().append_child(ToUtf8(name).c_str());
    if (!root)
        throw ComError(E_OUTOFMEMORY, "can't create the document element");
    return root;
}

XmlElement XmlVisitor::addChild(XmlElement parent, const CString& name) {
    if (!IsElement(parent) && parent.type() != pugi::node_document)
        throw ComError(E_POINTER, "no parent element");
    CheckName(name);
    XmlElement child = parent.append_child(ToUtf8(name).c_str());
    if (!child)
        throw ComError(E_OUTOFMEMORY, "can't create an element");
    return child;
}

void XmlVisitor::addatt(XmlElement element, const CString& name, const CString& value) {
    if (!IsElement(element))
        throw ComError(E_POINTER, "no element");
    CheckName(name);
    SetAttribute(element, ToUtf8(name).c_str(), value);
}

void XmlVisitor::addatt(XmlElement element, const wchar_t* name, const CString& value) {
    const PlainName plain(name);
    if (!plain || !IsElement(element))
        return addatt(element, CString(name), value);
    SetAttribute(element, plain.c_str(), value);
}

CString XmlVisitor::getNodeAttribute(XmlElement element, const CString& name) {
    if (!IsElement(element))
        return {};
    return FromUtf8(element.attribute(ToUtf8(name).c_str()).value());
}

CString XmlVisitor::getNodeAttribute(XmlElement element, const wchar_t* name) {
    const PlainName plain(name);
    if (!plain)
        return getNodeAttribute(element, CString(name));
    if (!IsElement(element))
        return {};
    return FromUtf8(element.attribute(plain.c_str()).value());
}

XmlNode XmlVisitor::selectSingleNode(XmlNode parent, const CString& name) {
    const std::string wanted = ToUtf8(name);
    for (XmlNode child : parent.children())
        if (IsElement(child) && wanted == child.name())
            return child;
    return {};
}

CString XmlVisitor::nodeName(XmlNode node) {
    // Nodes without a name of their own are called as a DOM calls them.
    switch (node.type()) {
    case pugi::node_document:
        return L"#document";
    case pugi::node_pcdata:
        return L"#text";
    case pugi::node_cdata:
        return L"#cdata-section";
    case pugi::node_comment:
        return L"#comment";
    default:
        return FromUtf8(node.name());
    }
}
