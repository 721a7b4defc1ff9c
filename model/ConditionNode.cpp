#include "model/ConditionNode.h"

#include "xml/XmlVisitor.h"

ConditionNode::ConditionNode(const CString& strCFType, bool bEqual, const CString& strEqualoperator,
                             const CString& strRangeoperator1, const CString& strRangeoperator2,
                             const CString& strValue, const CString& strRange1,
                             const CString& strRange2)
    : m_strCFType(strCFType), m_bEqual(bEqual), m_strEqualoperator(strEqualoperator),
      m_strRangeoperator1(strRangeoperator1), m_strRangeoperator2(strRangeoperator2),
      m_strValue(strValue), m_strRange1(strRange1), m_strRange2(strRange2) {}

ConditionNode::ConditionNode(const ConditionNode& other) : QdDeConfigNode() {
    CopyFields(other);
}

ConditionNode& ConditionNode::operator=(const ConditionNode& other) {
    if (this != &other) {
        QdDeConfigNode::operator=(other);
        CopyFields(other);
    }
    return *this;
}

void ConditionNode::Reset(const ConditionNode& other) {
    if (this != &other)
        CopyFields(other);
}

void ConditionNode::CopyFields(const ConditionNode& other) {
    m_strCFType = other.m_strCFType;
    m_bEqual = other.m_bEqual;
    m_strEqualoperator = other.m_strEqualoperator;
    m_strRangeoperator1 = other.m_strRangeoperator1;
    m_strRangeoperator2 = other.m_strRangeoperator2;
    m_strValue = other.m_strValue;
    m_strRange1 = other.m_strRange1;
    m_strRange2 = other.m_strRange2;
}

CString ConditionNode::GetConditionString() const {
    if (m_bEqual)
        return m_strCFType + m_strEqualoperator + m_strValue;
    bool lower = !m_strRange1.IsEmpty();
    bool upper = !m_strRange2.IsEmpty();
    if (lower && upper) {
        // Read from low to high: the lower bound's operator is mirrored.
        CString mirrored = m_strRangeoperator1 == L"\uFF1E" ? L"\uFF1C" : L"\u2264";
        return m_strRange1 + mirrored + m_strCFType + m_strRangeoperator2 + m_strRange2;
    }
    if (lower)
        return m_strCFType + m_strRangeoperator1 + m_strRange1;
    if (upper)
        return m_strCFType + m_strRangeoperator2 + m_strRange2;
    return m_strCFType;
}

bool ConditionNode::ReadData(XmlNode node) {
    QdDeConfigNode::ReadData(node);
    m_strCFType = XmlVisitor::getNodeAttribute(node, L"strCFType");
    m_bEqual = XmlVisitor::getNodeAttribute(node, L"bEqual") == L"true";
    m_strEqualoperator = XmlVisitor::getNodeAttribute(node, L"strEqualoperator");
    m_strRangeoperator1 = XmlVisitor::getNodeAttribute(node, L"strRangeoperator1");
    m_strRangeoperator2 = XmlVisitor::getNodeAttribute(node, L"strRangeoperator2");
    m_strValue = XmlVisitor::getNodeAttribute(node, L"strValue");
    m_strRange1 = XmlVisitor::getNodeAttribute(node, L"strRange1");
    m_strRange2 = XmlVisitor::getNodeAttribute(node, L"strRange2");
    return true;
}

bool ConditionNode::WriteData(XmlNode node) {
    QdDeConfigNode::WriteData(node);
    XmlVisitor::addatt(node, L"strCFType", m_strCFType);
    XmlVisitor::addatt(node, L"bEqual", m_bEqual ? L"true" : L"false");
    XmlVisitor::addatt(node, L"strEqualoperator", m_strEqualoperator);
    XmlVisitor::addatt(node, L"strRangeoperator1", m_strRangeoperator1);
    XmlVisitor::addatt(node, L"strRangeoperator2", m_strRangeoperator2);
    XmlVisitor::addatt(node, L"strValue", m_strValue);
    XmlVisitor::addatt(node, L"strRange1", m_strRange1);
    XmlVisitor::addatt(node, L"strRange2", m_strRange2);
    return true;
}
