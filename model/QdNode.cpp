#include "model/QdNode.h"

#include "model/ReadList.h"
#include "xml/XmlVisitor.h"

bool QdNode::AddDe(const DeStruct& de) {
    auto node = std::make_unique<DeNode>();
    node->SetParent(this);
    node->m_de = de;
    node->SetId(++m_lastDeId);
    m_de.Append(std::move(node));
    return true;
}

void QdNode::AddDe(DeNode* de) {
    m_de.Append(std::unique_ptr<DeNode>(de));
}

bool QdNode::ReSetDe(int id, const DeStruct& de) {
    DeNode* node = m_de.FindById(id);
    if (!node)
        return false;
    node->m_de = de;
    return true;
}

bool QdNode::DelDe(const std::set<int>& ids) {
    m_de.RemoveIds(ids);
    return true;
}

QdNode* QdNode::Clone() const {
    auto copy = std::make_unique<QdNode>();
    copy->SetId(GetId());
    copy->SetParent(GetParent());
    copy->m_lastDeId = m_lastDeId;
    copy->m_qd = m_qd;
    for (const auto& de : m_de) {
        DeNode* clone = de->Clone();
        clone->SetParent(copy.get());
        copy->AddDe(clone);
    }
    return copy.release();
}

bool QdNode::ReadData(XmlNode node) {
    QdDeConfigNode::ReadData(node);
    m_qd.strQdId = XmlVisitor::getNodeAttribute(node, L"strQdId");
    m_qd.strQdIdUser = XmlVisitor::getNodeAttribute(node, L"strQdIdUser");
    m_qd.strName = XmlVisitor::getNodeAttribute(node, L"strName");
    m_qd.strUnit = XmlVisitor::getNodeAttribute(node, L"strUnit");
    m_qd.strUnitCode = XmlVisitor::getNodeAttribute(node, L"strUnitCode");
    m_qd.strtypeid = XmlVisitor::getNodeAttribute(node, L"strtypeid");
    m_qd.strQdCode = XmlVisitor::getNodeAttribute(node, L"strQdCode");
    m_qd.strFormula = XmlVisitor::getNodeAttribute(node, L"strFormula");
    m_qd.strAnnex = XmlVisitor::getNodeAttribute(node, L"strAnnex");
    XmlNode list = XmlVisitor::selectSingleNode(node, L"De");
    if (list)
        ReadListChildren(list, this, m_de, m_lastDeId);
    return true;
}

bool QdNode::WriteData(XmlNode node) {
    QdDeConfigNode::WriteData(node);
    XmlVisitor::addatt(node, L"strQdId", m_qd.strQdId);
    XmlVisitor::addatt(node, L"strQdIdUser", m_qd.strQdIdUser);
    XmlVisitor::addatt(node, L"strName", m_qd.strName);
    XmlVisitor::addatt(node, L"strUnit", m_qd.strUnit);
    XmlVisitor::addatt(node, L"strUnitCode", m_qd.strUnitCode);
    XmlVisitor::addatt(node, L"strtypeid", m_qd.strtypeid);
    XmlVisitor::addatt(node, L"strQdCode", m_qd.strQdCode);
    XmlVisitor::addatt(node, L"strFormula", m_qd.strFormula);
    XmlVisitor::addatt(node, L"strAnnex", m_qd.strAnnex);
    XmlElement list = XmlVisitor::addChild(node, L"De");
    for (const auto& de : m_de)
        de->WriteData(XmlVisitor::addChild(list, L"De"));
    return true;
}
