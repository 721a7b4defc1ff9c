#include "model/DeNode.h"

#include "xml/XmlVisitor.h"

bool DeNode::ReadData(XmlNode node) {
    QdDeConfigNode::ReadData(node);
    m_de.strName = XmlVisitor::getNodeAttribute(node, L"strName");
    m_de.strUnit = XmlVisitor::getNodeAttribute(node, L"strUnit");
    m_de.strUnitCode = XmlVisitor::getNodeAttribute(node, L"strUnitCode");
    m_de.strDeId = XmlVisitor::getNodeAttribute(node, L"strDeId");
    m_de.strDeCode = XmlVisitor::getNodeAttribute(node, L"strDeCode");
    m_de.strFormula = XmlVisitor::getNodeAttribute(node, L"strFormula");
    m_de.strAnnex = XmlVisitor::getNodeAttribute(node, L"strAnnex");
    return true;
}

bool DeNode::WriteData(XmlNode node) {
    QdDeConfigNode::WriteData(node);
    XmlVisitor::addatt(node, L"strName", m_de.strName);
    XmlVisitor::addatt(node, L"strUnit", m_de.strUnit);
    XmlVisitor::addatt(node, L"strUnitCode", m_de.strUnitCode);
    XmlVisitor::addatt(node, L"strDeId", m_de.strDeId);
    XmlVisitor::addatt(node, L"strDeCode", m_de.strDeCode);
    XmlVisitor::addatt(node, L"strFormula", m_de.strFormula);
    XmlVisitor::addatt(node, L"strAnnex", m_de.strAnnex);
    return true;
}
