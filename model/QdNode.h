#pragma once
// One bill item with the quota items under it.

#include "model/DeNode.h"
#include "model/OwnedList.h"
#include "model/QdDeConfigNode.h"
#include "model/QdDeStructs.h"
#include "platform/Export.h"

#include <set>
#include <vector>

class KOQDDE_API QdNode : public QdDeConfigNode {
public:
    QdNode() = default;
    ~QdNode() { DeleteAllDe(); }
    QdNode(const QdNode&) = delete;
    QdNode& operator=(const QdNode&) = delete;

    int GetLastDeId() const { return m_lastDeId; }
    void SetLastDeId(int id) { m_lastDeId = id; }

    // A new quota with the next id. Always true.
    bool AddDe(const DeStruct& de);
    // Appends as it stands, taking ownership: no id given, no parent set.
    void AddDe(DeNode* de);
    DeNode* GetDe(int id) const { return m_de.FindById(id); }
    std::vector<DeNode*> GetDe() const { return m_de.Pointers(); }
    // Overwrites the record of the first quota with this id; false when there is none.
    bool ReSetDe(int id, const DeStruct& de);
    // Deletes every quota whose id is in the set; unknown ids are ignored. Always true.
    bool DelDe(const std::set<int>& ids);
    void DeleteAllDe() { m_de.Clear(); }

    // A deep copy with the same ids; the copy's parent is still this node's parent.
    QdNode* Clone() const;

    bool ReadData(XmlNode node) override;
    bool WriteData(XmlNode node) override;

    QdStruct m_qd;

private:
    int m_lastDeId = 0;
    OwnedList<DeNode> m_de;
};
