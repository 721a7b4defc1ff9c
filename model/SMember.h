#pragma once
// A small category and its ordered list of configurations, the last being the default one.

#include "model/CPath.h"
#include "model/ConfigNode.h"
#include "model/OwnedList.h"
#include "model/QdDeConfigNode.h"
#include "platform/Export.h"

#include <memory>
#include <vector>

class KOQDDE_API SMember : public QdDeConfigNode {
public:
    SMember() = default;
    ~SMember() { DeleteAllConfig(); }
    SMember(const SMember&) = delete;
    SMember& operator=(const SMember&) = delete;

    CString GetName() const { return m_name; }
    void SetName(const CString& name) { m_name = name; }
    int GetLastConfigId() const { return m_lastConfigId; }

    ConfigNode* GetConfig(int id) const { return m_configs.FindById(id); }
    std::vector<ConfigNode*> GetAllConfig() const { return m_configs.Pointers(); }
    // Appends at the very end as it stands, taking ownership.
    void AddConfig(ConfigNode* config);
    // Deletes all configurations; LastConfigId stays.
    void DeleteAllConfig() { m_configs.Clear(); }

    // A new empty configuration in front of the last entry. Always true.
    bool AddConfig(const CPath& path, int& newId);
    // A copy of the source in front of the last entry; false when the source doesn't exist.
    bool AddConfigByCopy(int sourceId, int& newId);
    // Destroys the first configuration with this id, if any. Always true.
    bool DelConfig(int id);
    // One place towards the front / the end; the last entry never moves or is passed.
    bool MoveUpConfig(const CPath& path);
    bool MoveDownConfig(const CPath& path);

    bool ReadData(XmlNode node) override;
    bool WriteData(XmlNode node) override;

private:
    // Adds an empty default configuration element ("config") to the list element in the DOM.
    XmlElement AddDefaultConfig(XmlNode listElement);
    int InsertPosition() const { return m_configs.Empty() ? 0 : m_configs.Size() - 1; }

    CString m_name;
    int m_lastConfigId = 0;
    OwnedList<ConfigNode> m_configs;
};
