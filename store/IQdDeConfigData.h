#pragma once
// The abstract store of one configuration file: opens, reloads, saves and copies it, and
// answers every query and edit of the configuration tree by a CPath.

#include "model/CPath.h"
#include "model/ConditionNode.h"
#include "model/ConfigNode.h"
#include "model/QdDeStructs.h"
#include "platform/CString.h"
#include "platform/Export.h"

#include <map>
#include <set>
#include <vector>

class KOQDDE_API IQdDeConfigData {
public:
    IQdDeConfigData() = default;
    IQdDeConfigData(const IQdDeConfigData&) = default;
    IQdDeConfigData& operator=(const IQdDeConfigData&) = default;
    virtual ~IQdDeConfigData() = default;

    virtual CString GetFilePath() = 0;
    virtual bool Save() = 0;
    virtual bool SaveAs(const CString& target) = 0;
    virtual bool ReLoad(const CString& file) = 0;
    virtual bool NewFile(const CString& file) = 0;
    virtual ConfigNode* GetConfig(const CPath& path) = 0;
    virtual bool GetConfig(const CPath& path, std::vector<ConfigNode*>& configs) = 0;
    virtual bool GetExistQdIndex(const CPath& path, std::vector<CString>& numbers) = 0;
    virtual bool AddConfig(const CPath& path, int& newId) = 0;
    virtual bool MoveUpConfig(const CPath& path) = 0;
    virtual bool MoveDownConfig(const CPath& path) = 0;
    virtual bool AddConfigByCopy(const CPath& path, int& newId) = 0;
    virtual bool DelConfig(const CPath& path) = 0;
    virtual bool AddCondition(const CPath& path, const ConditionNode& condition) = 0;
    virtual bool ResetCondition(const CPath& path, const ConditionNode& condition) = 0;
    virtual bool DelCondition(const CPath& path, std::vector<ConfigNode*>& configs) = 0;
    virtual bool AddQd(const QdStruct& qd, const CPath& path,
                       std::vector<ConfigNode*>& configs) = 0;
    virtual bool AddDe2QdNode(const DeStruct& de, const CPath& path,
                              std::vector<ConfigNode*>& configs) = 0;
    virtual bool AddDe2ConfigNode(const DeStruct& de, const CPath& path,
                                  std::vector<ConfigNode*>& configs) = 0;
    virtual bool DelQd(const CPath& path, const std::set<int>& ids) = 0;
    virtual bool DelDeInQdNode(const CPath& path, const std::map<int, std::set<int>>& ids) = 0;
    virtual bool DelDeInConfigNode(const CPath& path, const std::set<int>& ids) = 0;
    virtual bool ResetQd(const CPath& path, const QdStruct& qd) = 0;
    virtual bool ResetDeToConfig(const CPath& path, const DeStruct& de) = 0;
    virtual bool ResetDeToQd(const CPath& path, const DeStruct& de) = 0;
};
