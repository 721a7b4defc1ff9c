#pragma once
// One quota item, under a bill item or directly under a configuration.

#include "model/QdDeConfigNode.h"
#include "model/QdDeStructs.h"
#include "platform/Export.h"

class KOQDDE_API DeNode : public QdDeConfigNode {
public:
    DeNode() = default;

    // Copies id, parent and the record.
    virtual DeNode* Clone() const { return new DeNode(*this); }

    bool ReadData(XmlNode node) override;
    bool WriteData(XmlNode node) override;

    DeStruct m_de;
};
