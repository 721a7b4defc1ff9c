#pragma once
// A large category and its small categories, in the project's order.

#include "model/OwnedList.h"
#include "model/QdDeConfigNode.h"
#include "model/SMember.h"
#include "platform/Export.h"

#include <vector>

class KOQDDE_API LMember : public QdDeConfigNode {
public:
    LMember() = default;
    ~LMember() { DeleteAllSMember(); }
    LMember(const LMember&) = delete;
    LMember& operator=(const LMember&) = delete;

    CString GetName() const { return m_name; }
    void SetName(const CString& name) { m_name = name; }
    SMember* GetSMember(int id) const { return m_smembers.FindById(id); }
    std::vector<SMember*> GetAllSMember() const { return m_smembers.Pointers(); }
    void DeleteAllSMember() { m_smembers.Clear(); }

    // Builds the small categories from the project's list, matching the file's children by
    // name; false when the project gives no list for this large category.
    bool ReadData(XmlNode node) override;
    bool WriteData(XmlNode node) override;

private:
    // The project's id of a small category of this large category; 0 when unknown.
    int GetSMemberId(const CString& name) const;
    CString ParentName() const;

    CString m_name;
    OwnedList<SMember> m_smembers;
};
