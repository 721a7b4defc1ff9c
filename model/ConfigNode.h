#pragma once
// One configuration of a small category: its conditions, and the bill items and quota items a
// component meeting them receives. The last configuration of a category is its default.

#include "model/ConditionNode.h"
#include "model/DeNode.h"
#include "model/OwnedList.h"
#include "model/QdDeConfigNode.h"
#include "model/QdNode.h"
#include "platform/Export.h"

#include <memory>
#include <set>
#include <vector>

class KOQDDE_API ConfigNode : public QdDeConfigNode {
public:
    ConfigNode() = default;
    // Destroys what the three lists still hold, conditions included: a condition handed out by
    // GetCondition dies with its configuration, as every other node does with its parent.
    ~ConfigNode() = default;
    ConfigNode(const ConfigNode&) = delete;
    ConfigNode& operator=(const ConfigNode&) = delete;

    bool IfDefault() const { return m_bDefault; }
    void SetDefault(bool value) { m_bDefault = value; }
    int GetLastQdId() const { return m_lastQdId; }
    void SetLastQdId(int id) { m_lastQdId = id; }
    int GetLastDeId() const { return m_lastDeId; }
    void SetLastDeId(int id) { m_lastDeId = id; }
    int GetLastConditionId() const { return m_lastConditionId; }
    void SetLastConditionId(int id) { m_lastConditionId = id; }

    std::vector<ConditionNode*> GetCondition() const { return m_conditions.Pointers(); }
    std::vector<QdNode*> GetQd() const { return m_qd.Pointers(); }
    std::vector<DeNode*> GetDe() const { return m_de.Pointers(); }
    QdNode* GetQd(int id) const { return m_qd.FindById(id); }
    DeNode* GetDe(int id) const { return m_de.FindById(id); }

    // Copies, numbers with the next id and appends. Always true.
    bool AddCondition(const ConditionNode& condition);
    bool AddQd(const QdStruct& qd);
    bool AddDe(const DeStruct& de);
    // Append as they stand, taking ownership: no id, no parent, counters untouched.
    void AddCondition(ConditionNode* condition);
    void AddQd(QdNode* qd);
    void AddDe(DeNode* de);

    bool ResetCondition(int id, const ConditionNode& condition);
    bool ResetQd(int id, const QdStruct& qd);
    bool ResetDe(int id, const DeStruct& de);
    bool DelCondition(int id);
    bool DelQd(const std::set<int>& ids);
    bool DelDe(const std::set<int>& ids);

    // Empties the condition list without destroying the conditions: from here on the caller,
    // who took their pointers with GetCondition, owns them; it may hand them back with
    // AddCondition(ConditionNode*) or delete them.
    void DeleteAllCondition() { m_conditions.ReleaseAll(); }
    void DeleteAllQd() { m_qd.Clear(); }
    void DeleteAllDe() { m_de.Clear(); }

    // Appends the bill number of every bill item, in list order, to what `numbers` holds.
    bool GetExistQdIndex(std::vector<CString>& numbers) const;
    // "其它" for the default configuration, else each condition's text followed by ";".
    CString GetConditionString() const;

    // A deep copy with the same ids; its conditions have id 0.
    virtual ConfigNode* Clone() const;

    bool ReadData(XmlNode node) override;
    bool WriteData(XmlNode node) override;

private:
    int m_lastConditionId = 0;
    int m_lastQdId = 0;
    int m_lastDeId = 0;
    bool m_bDefault = false;
    OwnedList<ConditionNode> m_conditions;
    OwnedList<QdNode> m_qd;
    OwnedList<DeNode> m_de;
};
