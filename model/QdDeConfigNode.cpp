#include "model/QdDeConfigNode.h"

#include "platform/NumParse.h"
#include "xml/XmlVisitor.h"

QdDeConfigNode& QdDeConfigNode::operator=(const QdDeConfigNode& other) {
    if (this != &other) {
        m_id = other.m_id;
        m_parent = other.m_parent;
    }
    return *this;
}

bool QdDeConfigNode::ReadData(XmlNode node) {
    m_id = WToI(XmlVisitor::getNodeAttribute(node, L"id"));
    return true;
}

bool QdDeConfigNode::WriteData(XmlNode node) {
    XmlVisitor::addatt(node, L"id", IntToText(m_id));
    return true;
}
