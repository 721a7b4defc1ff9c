#pragma once
// One test on one attribute of a component: equal / not equal to a value, or within a range.
// The node stores the test as text and renders it for display; it never evaluates it.

#include "model/QdDeConfigNode.h"
#include "platform/CString.h"
#include "platform/Export.h"

class KOQDDE_API ConditionNode : public QdDeConfigNode {
public:
    ConditionNode() = default;
    ConditionNode(const CString& strCFType, bool bEqual, const CString& strEqualoperator,
                  const CString& strRangeoperator1, const CString& strRangeoperator2,
                  const CString& strValue, const CString& strRange1, const CString& strRange2);
    // Copies the eight fields only: the copy has id 0 and no parent.
    ConditionNode(const ConditionNode& other);
    // Copies id, parent and the eight fields.
    ConditionNode& operator=(const ConditionNode& other);

    // A heap copy made by the copy constructor (id 0, no parent).
    ConditionNode* Clone() const { return new ConditionNode(*this); }
    // Takes the other's eight fields; id and parent stay.
    void Reset(const ConditionNode& other);

    CString GetCFType() const { return m_strCFType; }
    bool IsEqual() const { return m_bEqual; }
    CString GetEqualOperator() const { return m_strEqualoperator; }
    CString GetRangeOperator1() const { return m_strRangeoperator1; }
    CString GetRangeOperator2() const { return m_strRangeoperator2; }
    CString GetValue() const { return m_strValue; }
    CString GetRange1() const { return m_strRange1; }
    CString GetRange2() const { return m_strRange2; }

    // "管径＝50", "5＜管径≤10", "管径＞5", ...
    CString GetConditionString() const;

    bool ReadData(XmlNode node) override;
    bool WriteData(XmlNode node) override;

private:
    void CopyFields(const ConditionNode& other);

    CString m_strCFType;
    bool m_bEqual = true;
    CString m_strEqualoperator;
    CString m_strRangeoperator1;
    CString m_strRangeoperator2;
    CString m_strValue;
    CString m_strRange1;
    CString m_strRange2;
};
