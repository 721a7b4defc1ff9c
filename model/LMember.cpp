#include "model/LMember.h"

#include "host/QvKoProject/QvKoProject.h"
#include "model/CategoryRead.h"
#include "model/Spec.h"
#include "platform/NumParse.h"

CString LMember::ParentName() const {
    auto* spec = dynamic_cast<Spec*>(GetParent());
    return spec ? spec->GetSpecName() : CString();
}

int LMember::GetSMemberId(const CString& name) const {
    SQvKoSmallCategoryId id;
    SmallCategoryNameToId(ParentName() + L"\\" + m_name + L"\\" + name, id);
    return WToI(id.smallCategoryId);
}

bool LMember::ReadData(XmlNode node) {
    std::map<CString, XmlNode> byName = ChildrenByName(node);
    SQvKoBigCategoryId largeId;
    BigCategoryNameToId(ParentName() + L"\\" + m_name, largeId);
    std::vector<SQvKoSmallCategoryId> ids;
    if (!CAtt().GetAllSmallCategoryIdsByBigCategory(largeId, ids))
        return false;
    CString name; // keeps the previous name when a lookup fails
    for (const auto& id : ids) {
        CAtt().GetSmallCategoryName(id, name);
        XmlNode child;
        auto found = byName.find(name);
        if (found != byName.end()) {
            child = found->second;
        } else {
            child = XmlVisitor::addChild(node, L"SMember");
            XmlVisitor::addatt(child, L"name", name);
        }
        auto small = std::make_unique<SMember>();
        small->SetParent(this);
        small->SetName(name);
        small->SetId(GetSMemberId(name));
        if (small->ReadData(child))
            m_smembers.Append(std::move(small));
    }
    return true;
}

bool LMember::WriteData(XmlNode node) {
    QdDeConfigNode::WriteData(node);
    XmlVisitor::addatt(node, L"name", m_name);
    for (const auto& small : m_smembers)
        small->WriteData(XmlVisitor::addChild(node, L"SMember"));
    return true;
}
