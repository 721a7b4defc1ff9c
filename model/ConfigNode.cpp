#include "model/ConfigNode.h"

#include "model/ReadList.h"
#include "platform/NumParse.h"
#include "xml/XmlVisitor.h"

bool ConfigNode::AddCondition(const ConditionNode& condition) {
    auto node = std::make_unique<ConditionNode>(condition);
    node->SetId(++m_lastConditionId);
    m_conditions.Append(std::move(node));
    return true;
}

bool ConfigNode::AddQd(const QdStruct& qd) {
    auto node = std::make_unique<QdNode>();
    node->SetParent(this);
    node->m_qd = qd;
    node->SetId(++m_lastQdId);
    m_qd.Append(std::move(node));
    return true;
}

bool ConfigNode::AddDe(const DeStruct& de) {
    auto node = std::make_unique<DeNode>();
    node->SetParent(this);
    node->m_de = de;
    node->SetId(++m_lastDeId);
    m_de.Append(std::move(node));
    return true;
}

void ConfigNode::AddCondition(ConditionNode* condition) {
    m_conditions.Append(std::unique_ptr<ConditionNode>(condition));
}

void ConfigNode::AddQd(QdNode* qd) {
    m_qd.Append(std::unique_ptr<QdNode>(qd));
}

void ConfigNode::AddDe(DeNode* de) {
    m_de.Append(std::unique_ptr<DeNode>(de));
}

bool ConfigNode::ResetCondition(int id, const ConditionNode& condition) {
    ConditionNode* node = m_conditions.FindById(id);
    if (!node)
        return false;
    node->Reset(condition);
    return true;
}

bool ConfigNode::ResetQd(int id, const QdStruct& qd) {
    QdNode* node = m_qd.FindById(id);
    if (!node)
        return false;
    node->m_qd = qd;
    return true;
}

bool ConfigNode::ResetDe(int id, const DeStruct& de) {
    DeNode* node = m_de.FindById(id);
    if (!node)
        return false;
    node->m_de = de;
    return true;
}

bool ConfigNode::DelCondition(int id) {
    int index = m_conditions.IndexOf(id);
    if (index == m_conditions.Size())
        return false;
    m_conditions.Take(index);
    return true;
}

bool ConfigNode::DelQd(const std::set<int>& ids) {
    m_qd.RemoveIds(ids);
    return true;
}

bool ConfigNode::DelDe(const std::set<int>& ids) {
    m_de.RemoveIds(ids);
    return true;
}

bool ConfigNode::GetExistQdIndex(std::vector<CString>& numbers) const {
    for (const auto& qd : m_qd)
        numbers.push_back(qd->m_qd.strQdId);
    return true;
}

CString ConfigNode::GetConditionString() const {
    if (m_bDefault)
        return L"\u5176\u5B83"; // 其它
    CString text;
    for (const auto& condition : m_conditions)
        text += condition->GetConditionString() + L";";
    return text;
}

ConfigNode* ConfigNode::Clone() const {
    auto copy = std::make_unique<ConfigNode>();
    copy->SetId(GetId());
    copy->SetParent(GetParent());
    copy->m_lastQdId = m_lastQdId;
    copy->m_lastDeId = m_lastDeId;
    copy->m_lastConditionId = m_lastConditionId;
    copy->m_bDefault = m_bDefault;
    for (const auto& qd : m_qd) {
        QdNode* clone = qd->Clone();
        clone->SetParent(copy.get());
        copy->AddQd(clone);
    }
    for (const auto& de : m_de) {
        DeNode* clone = de->Clone();
        clone->SetParent(copy.get());
        copy->AddDe(clone);
    }
    for (const auto& condition : m_conditions) {
        ConditionNode* clone = condition->Clone();
        clone->SetParent(copy.get());
        copy->AddCondition(clone);
    }
    return copy.release();
}

bool ConfigNode::ReadData(XmlNode node) {
    QdDeConfigNode::ReadData(node);
    m_lastQdId = WToI(XmlVisitor::getNodeAttribute(node, L"LastQdId"));
    m_lastConditionId = WToI(XmlVisitor::getNodeAttribute(node, L"LastConditionId"));
    m_bDefault = WToI(XmlVisitor::getNodeAttribute(node, L"bDefault")) != 0;
    m_lastDeId = WToI(XmlVisitor::getNodeAttribute(node, L"LastDeId"));
    // A configuration of a file the store has just created has no list elements at all.
    if (XmlNode list = XmlVisitor::selectSingleNode(node, L"Condition"))
        ReadListChildren(list, this, m_conditions, m_lastConditionId);
    if (XmlNode list = XmlVisitor::selectSingleNode(node, L"Qd"))
        ReadListChildren(list, this, m_qd, m_lastQdId);
    if (XmlNode list = XmlVisitor::selectSingleNode(node, L"De"))
        ReadListChildren(list, this, m_de, m_lastDeId);
    return true;
}

bool ConfigNode::WriteData(XmlNode node) {
    QdDeConfigNode::WriteData(node);
    XmlVisitor::addatt(node, L"LastQdId", IntToText(m_lastQdId));
    XmlVisitor::addatt(node, L"LastConditionId", IntToText(m_lastConditionId));
    XmlVisitor::addatt(node, L"bDefault", m_bDefault ? L"1" : L"0");
    XmlVisitor::addatt(node, L"LastDeId", IntToText(m_lastDeId));
    XmlElement conditions = XmlVisitor::addChild(node, L"Condition");
    for (const auto& condition : m_conditions)
        condition->WriteData(XmlVisitor::addChild(conditions, L"condition"));
    XmlElement bills = XmlVisitor::addChild(node, L"Qd");
    for (const auto& qd : m_qd)
        qd->WriteData(XmlVisitor::addChild(bills, L"qd"));
    XmlElement quotas = XmlVisitor::addChild(node, L"De");
    for (const auto& de : m_de)
        de->WriteData(XmlVisitor::addChild(quotas, L"De"));
    return true;
}
