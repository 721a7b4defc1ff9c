#pragma once
// The reading pattern shared by every list level: each child node of the list element, whatever
// its tag (comments and text included), becomes a node; the counter is raised to the highest
// id read, so a damaged counter in the file is mended by the ids found.

#include "model/OwnedList.h"
#include "xml/XmlVisitor.h"

#include <memory>

template <class T>
void ReadListChildren(XmlNode listElement, QdDeConfigNode* parent, OwnedList<T>& list,
                      int& lastId) {
    for (XmlNode child = XmlVisitor::firstChild(listElement); child;
         child = XmlVisitor::nextSibling(child)) {
        auto node = std::make_unique<T>();
        node->SetParent(parent);
        if (!node->ReadData(child))
            continue;
        if (node->GetId() > lastId)
            lastId = node->GetId();
        list.Append(std::move(node));
    }
}
