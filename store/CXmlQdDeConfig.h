#pragma once
// The store on an XML file. It holds the tree of the project's current specialty only; the
// file may hold every specialty, and a save rewrites the current one and leaves the others as
// they are on disk (see ConfigFile). No DOM is kept between operations.

#include "model/Spec.h"
#include "platform/Export.h"
#include "store/ConfigFile.h"
#include "store/IQdDeConfigData.h"
#include "xml/XmlDocument.h"

class KOQDDE_API CXmlQdDeConfig : public IQdDeConfigData {
public:
    // Opens the file, or creates it when it doesn't exist, and builds the tree of `specName`.
    CXmlQdDeConfig(const CString& file, const CString& specName);
    ~CXmlQdDeConfig() override = default;
    CXmlQdDeConfig(const CXmlQdDeConfig&) = delete;
    CXmlQdDeConfig& operator=(const CXmlQdDeConfig&) = delete;

    CString GetFilePath() override { return m_strFile; }
    bool Save() override;
    bool SaveAs(const CString& target) override;
    bool ReLoad(const CString& file) override;
    bool NewFile(const CString& file) override;
    ConfigNode* GetConfig(const CPath& path) override;
    bool GetConfig(const CPath& path, std::vector<ConfigNode*>& configs) override;
    bool GetExistQdIndex(const CPath& path, std::vector<CString>& numbers) override;
    bool AddConfig(const CPath& path, int& newId) override;
    bool MoveUpConfig(const CPath& path) override;
    bool MoveDownConfig(const CPath& path) override;
    bool AddConfigByCopy(const CPath& path, int& newId) override;
    bool DelConfig(const CPath& path) override;
    bool AddCondition(const CPath& path, const ConditionNode& condition) override;
    bool ResetCondition(const CPath& path, const ConditionNode& condition) override;
    bool DelCondition(const CPath& path, std::vector<ConfigNode*>& configs) override;
    bool AddQd(const QdStruct& qd, const CPath& path, std::vector<ConfigNode*>& configs) override;
    bool AddDe2QdNode(const DeStruct& de, const CPath& path,
                      std::vector<ConfigNode*>& configs) override;
    bool AddDe2ConfigNode(const DeStruct& de, const CPath& path,
                          std::vector<ConfigNode*>& configs) override;
    bool DelQd(const CPath& path, const std::set<int>& ids) override;
    bool DelDeInQdNode(const CPath& path, const std::map<int, std::set<int>>& ids) override;
    bool DelDeInConfigNode(const CPath& path, const std::set<int>& ids) override;
    bool ResetQd(const CPath& path, const QdStruct& qd) override;
    bool ResetDeToConfig(const CPath& path, const DeStruct& de) override;
    bool ResetDeToQd(const CPath& path, const DeStruct& de) override;

    // The tree as the store holds it (for listing tools).
    const Spec& GetSpec() const { return m_spec; }
    // Why the file the store is on did not load as a configuration when the store was opened
    // or last reloaded; empty when it loaded or did not exist. The store goes on as its
    // contract says; the tools around it use this to refuse or warn.
    const std::string& LoadError() const { return m_loadError; }

private:
    SMember* FindSMember(const CPath& path) const;
    QdNode* FindQd(const CPath& path);
    // The configurations of the small category that holds `node`.
    static std::vector<ConfigNode*> SiblingConfigs(const QdDeConfigNode* node);

    // Reads the file's current specialty into the tree; the file's own state stays in m_file.
    bool Read(const CString& file, bool createMissing);

    CString m_strFile;
    CString m_strSpec;
    ConfigFile m_file;
    Spec m_spec;
    std::string m_loadError;
};

// File-level framing, shared with the tools that inspect configuration files.
// The document element when it has this name; otherwise, if the document has none, a new one
// with "Version"; null when the document has another document element.
XmlNode GetOrCreateRoot(const XmlDocPtr& doc, const CString& rootName);
// The first child of the root whose "name" equals the specialty's name; created when none.
XmlNode FindOrCreateSpecNode(XmlNode root, const CString& specName);
// Removes the specialty's element, if any, and appends a new empty one at the end.
XmlNode RebuildSpecNode(XmlNode root, const CString& specName);
// Why a document whose element is `found` is no configuration file.
std::string OtherRootError(const CString& file, const char* found);
