#pragma once
// Base of every node of the configuration tree: an id that identifies it among its siblings,
// a non-owning link to its parent, and loading from / storing into an XML element.

#include "platform/Export.h"
#include "xml/XmlDocument.h"

class KOQDDE_API QdDeConfigNode {
public:
    QdDeConfigNode() = default;
    QdDeConfigNode(const QdDeConfigNode&) = default;
    QdDeConfigNode& operator=(const QdDeConfigNode& other);
    // Not virtual on purpose: owners delete nodes through their concrete type.
    ~QdDeConfigNode() = default;

    int GetId() const { return m_id; }
    void SetId(int id) { m_id = id; }
    QdDeConfigNode* GetParent() const { return m_parent; }
    void SetParent(QdDeConfigNode* parent) { m_parent = parent; }

    bool operator<(const QdDeConfigNode& other) const { return m_id < other.m_id; }

    // Reads the id from "id" (decimal prefix, 0 when absent).
    virtual bool ReadData(XmlNode node);
    // Writes "id" in decimal; derived classes call this first so "id" leads.
    virtual bool WriteData(XmlNode node);

private:
    int m_id = 0;
    QdDeConfigNode* m_parent = nullptr;
};
