#pragma once
// Matching of a file's category elements to the project's categories, by "name".

#include "platform/CString.h"
#include "xml/XmlVisitor.h"

#include <map>

// Name to the first child node of that name, whatever the child's tag. Nodes without a name
// gather under "", which no category has.
inline std::map<CString, XmlNode> ChildrenByName(XmlNode node) {
    std::map<CString, XmlNode> byName;
    for (XmlNode child = XmlVisitor::firstChild(node); child;
         child = XmlVisitor::nextSibling(child))
        byName.emplace(XmlVisitor::getNodeAttribute(child, L"name"), child);
    return byName;
}
