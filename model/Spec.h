#pragma once
// One specialty as a store holds it: the root of the configuration tree.

#include "model/LMember.h"
#include "model/QdDeConfigNode.h"
#include "platform/Export.h"

#include <memory>
#include <vector>

class KOQDDE_API Spec : public QdDeConfigNode {
public:
    Spec() = default;
    ~Spec() { DeleteAllLMember(); }
    Spec(const Spec&) = delete;
    // Shares the other's large categories (both objects then hold the same LMember objects)
    // and copies id, parent and name.
    Spec& operator=(const Spec& other);

    CString GetSpecName() const { return m_name; }
    void SetSpecName(const CString& name) { m_name = name; }
    LMember* GetLMember(int id) const;
    std::vector<LMember*> GetAllLMember() const;
    void DeleteAllLMember() { m_lmembers.clear(); }

    // Builds the large categories from the project's list, matching the file's children by
    // name; false when the project gives no list for this specialty.
    bool ReadData(XmlNode node) override;
    bool WriteData(XmlNode node) override;

private:
    // The project's id of a large category of this specialty; 0 when unknown.
    int GetLMemberId(const CString& name) const;

    CString m_name;
    // Shared so that assigned copies may hold the same categories without freeing them twice.
    std::vector<std::shared_ptr<LMember>> m_lmembers;
};
