#include "model/Spec.h"

#include "host/QvKoProject/QvKoProject.h"
#include "model/CategoryRead.h"
#include "platform/NumParse.h"

Spec& Spec::operator=(const Spec& other) {
    if (this != &other) {
        QdDeConfigNode::operator=(other);
        DeleteAllLMember();
        m_lmembers = other.m_lmembers;
        m_name = other.m_name;
    }
    return *this;
}

LMember* Spec::GetLMember(int id) const {
    for (const auto& large : m_lmembers)
        if (large->GetId() == id)
            return large.get();
    return nullptr;
}

std::vector<LMember*> Spec::GetAllLMember() const {
    std::vector<LMember*> out;
    for (const auto& large : m_lmembers)
        out.push_back(large.get());
    return out;
}

int Spec::GetLMemberId(const CString& name) const {
    SQvKoBigCategoryId id;
    BigCategoryNameToId(m_name + L"\\" + name, id);
    return WToI(id.bigCategoryId);
}

bool Spec::ReadData(XmlNode node) {
    QdDeConfigNode::ReadData(node);
    std::map<CString, XmlNode> byName = ChildrenByName(node);
    SQvKoSpecId specId;
    SpecNameToId(m_name, specId);
    std::vector<SQvKoBigCategoryId> ids;
    if (!CAtt().GetAllBigCategoryIdsBySpec(specId, ids))
        return false;
    CString name; // keeps the previous name when a lookup fails
    for (const auto& id : ids) {
        CAtt().GetBigCategoryName(id, name);
        XmlNode child;
        auto found = byName.find(name);
        if (found != byName.end()) {
            child = found->second;
        } else {
            child = XmlVisitor::addChild(node, L"LMember");
            XmlVisitor::addatt(child, L"id", IntToText(GetLMemberId(name)));
            XmlVisitor::addatt(child, L"name", name);
        }
        auto large = std::make_shared<LMember>();
        large->SetId(GetLMemberId(name));
        large->SetName(name);
        large->SetParent(this);
        if (large->ReadData(child))
            m_lmembers.push_back(std::move(large));
    }
    return true;
}

bool Spec::WriteData(XmlNode node) {
    QdDeConfigNode::WriteData(node);
    XmlVisitor::addatt(node, L"name", m_name);
    for (const auto& large : m_lmembers)
        large->WriteData(XmlVisitor::addChild(node, L"LMember"));
    return true;
}
