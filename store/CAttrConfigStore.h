#pragma once
// Per-attribute settings of every small category ("AttrConfig.xml" in the configuration
// folder): the input kind, whether the attribute compares as a range, and whether it depends
// on the material. One object is one of two forms for its whole life:
// - the generator (no arguments): builds AttrConfig.xml from the project's lists and the
//   attribute types of "AttributeInformation.xml";
// - the reader (a specialty name): reads that specialty's records into memory.

#include "platform/CString.h"
#include "platform/Export.h"
#include "xml/XmlDocument.h"

#include <map>
#include <string>

struct KOQDDE_API AttrConfig {
    AttrConfig() = default;
    AttrConfig(const CString& name, const CString& namecode, int vartype, int compar,
               int specrelation)
        : name(name), namecode(namecode), vartype(vartype), compar(compar),
          specrelation(specrelation) {}

    CString name;         // display name
    CString namecode;     // attribute code
    int vartype = 0;      // 0 drop-down, 1 drop-down or typed, 2 typed
    int compar = 0;       // 1 comparable as a range
    int specrelation = 0; // 0 depends on the material, 1 does not
};

class KOQDDE_API CAttrConfigStore {
public:
    // Generator form.
    CAttrConfigStore();
    // Reader form for one specialty.
    explicit CAttrConfigStore(const CString& specName);
    CAttrConfigStore(const CAttrConfigStore&) = delete;
    CAttrConfigStore& operator=(const CAttrConfigStore&) = delete;

    // The key is the small category's path (specialty\large\small) directly followed by the
    // attribute's display name. False when there is no such record.
    bool GetAttConfig(const CString& key, AttrConfig& out) const;
    // Overwrites vartype, compar and specrelation in memory only; false for an unknown key.
    bool SetAttConfig(const CString& key, const AttrConfig& record);
    // Generates AttrConfig.xml. Raises ComError(E_POINTER) on a reader-form store or when
    // "AttributeInformation.xml" is missing or can't be read, and ComError(E_FAIL) when an
    // existing AttrConfig.xml can't be read (not well-formed, another root, not a readable
    // file) or written; the file is then left as it was and LastError() says why.
    bool Save();

    const std::map<CString, AttrConfig>& Records() const { return m_mapAttr; }
    CString GetFilePath() const { return m_strFile; }
    // Why the file the reader read, or the last generation, could not be used: the file's path
    // and the fault, one line. Empty when it was used or did not exist (no settings generated
    // yet). A reader that can't use its file holds no records, as one without a file does;
    // the programs around it use this to stop instead.
    const std::string& LastError() const { return m_lastError; }

private:
    bool Load();
    bool LookupAttrType(const CString& code, AttrConfig& record) const;

    std::map<CString, AttrConfig> m_mapAttr;
    CString m_strFile;
    CString m_strSpec;
    XmlDocPtr m_pAttrInfoDoc;
    XmlNode m_pAttrInfoRoot;
    std::string m_attrInfoError; // why the attribute types can't be used, or empty
    std::string m_lastError;
};
