#include "model/SMember.h"

#include "platform/NumParse.h"
#include "xml/XmlVisitor.h"

void SMember::AddConfig(ConfigNode* config) {
    m_configs.Append(std::unique_ptr<ConfigNode>(config));
}

bool SMember::AddConfig(const CPath& /*path*/, int& newId) {
    auto config = std::make_unique<ConfigNode>();
    config->SetParent(this);
    config->SetId(++m_lastConfigId);
    newId = config->GetId();
    m_configs.Insert(InsertPosition(), std::move(config));
    return true;
}

bool SMember::AddConfigByCopy(int sourceId, int& newId) {
    ConfigNode* source = GetConfig(sourceId);
    if (!source)
        return false;
    std::unique_ptr<ConfigNode> copy(source->Clone());
    copy->SetId(++m_lastConfigId);
    copy->SetParent(this);
    newId = copy->GetId();
    m_configs.Insert(InsertPosition(), std::move(copy));
    return true;
}

bool SMember::DelConfig(int id) {
    int index = m_configs.IndexOf(id);
    if (index == m_configs.Size())
        return true;
    // The configuration goes with everything it still holds; conditions a caller took out
    // before with DeleteAllCondition are that caller's and are not touched.
    m_configs.Take(index);
    return true;
}

bool SMember::MoveUpConfig(const CPath& path) {
    int n = m_configs.Size();
    int i = m_configs.IndexOf(path.ConfigId);
    if (n < 1 || i < 1 || i >= n - 1)
        return false;
    m_configs.Swap(i, i - 1);
    return true;
}

bool SMember::MoveDownConfig(const CPath& path) {
    int n = m_configs.Size();
    int i = m_configs.IndexOf(path.ConfigId);
    if (i >= n - 2)
        return false;
    m_configs.Swap(i, i + 1);
    return true;
}

XmlElement SMember::AddDefaultConfig(XmlNode listElement) {
    XmlElement config = XmlVisitor::addChild(listElement, L"config");
    XmlVisitor::addatt(config, L"id", L"1");
    XmlVisitor::addatt(config, L"bDefault", L"1");
    XmlVisitor::addatt(config, L"LastQdId", L"0");
    XmlVisitor::addatt(config, L"LastConditionId", L"0");
    XmlVisitor::addatt(config, L"LastDeId", L"0");
    return config;
}

bool SMember::ReadData(XmlNode node) {
    // The id comes from the project, and LastConfigId is recomputed from the ids read.
    m_name = XmlVisitor::getNodeAttribute(node, L"name");
    XmlNode list = XmlVisitor::selectSingleNode(node, L"Config");
    if (!list) {
        list = XmlVisitor::addChild(node, L"Config");
        if (!list)
            return false;
        AddDefaultConfig(list);
    }
    bool hasDefault = false;
    for (XmlNode child = XmlVisitor::firstChild(list); child;
         child = XmlVisitor::nextSibling(child)) {
        auto config = std::make_unique<ConfigNode>();
        config->SetParent(this);
        if (!config->ReadData(child))
            continue;
        hasDefault = hasDefault || config->IfDefault();
        if (config->GetId() > m_lastConfigId)
            m_lastConfigId = config->GetId();
        m_configs.Append(std::move(config));
    }
    if (!hasDefault) {
        // Reading the new element gives the default the id 1 whatever the counter says; the
        // counter keeps its raised value.
        XmlElement element = AddDefaultConfig(list);
        auto config = std::make_unique<ConfigNode>();
        config->SetParent(this);
        config->SetId(++m_lastConfigId);
        if (config->ReadData(element))
            m_configs.Append(std::move(config));
    }
    return true;
}

bool SMember::WriteData(XmlNode node) {
    QdDeConfigNode::WriteData(node);
    XmlVisitor::addatt(node, L"name", m_name);
    XmlVisitor::addatt(node, L"LastConfigId", IntToText(m_lastConfigId));
    XmlElement list = XmlVisitor::addChild(node, L"Config");
    for (const auto& config : m_configs)
        config->WriteData(XmlVisitor::addChild(list, L"Config"));
    return true;
}
