#pragma once
// The programming interface of the auto-apply configuration: dialogs and host modules call it,
// and it forwards to the store of the open file.

#include "model/CPath.h"
#include "model/ConfigNode.h"
#include "model/QdDeStructs.h"
#include "platform/CString.h"
#include "platform/Export.h"
#include "store/CAttrConfigStore.h"
#include "store/IQdDeConfigData.h"

#include <map>
#include <memory>
#include <set>
#include <vector>

class KOQDDE_API CQdDeConfigPresenter {
public:
    // An empty file means the current configuration of the project: the name recorded in the
    // project's "SysRegedit.ini" (or "DefaultConfig") in the configuration folder.
    explicit CQdDeConfigPresenter(const CString& file = CString());
    ~CQdDeConfigPresenter();
    CQdDeConfigPresenter(const CQdDeConfigPresenter&) = delete;
    // The assigned presenter shares the other's stores.
    CQdDeConfigPresenter& operator=(const CQdDeConfigPresenter&) = default;

    // The current configuration's name, read from the ini record each time. A recorded name
    // that is no bare file name (see IsConfigName) gives the default name instead.
    static CString GetCurConfig();
    // The name as the record holds it, whatever it is; empty when there is none.
    static CString RecordedCurConfig();
    // A configuration name is a bare file name: not empty, no "/" or "\", not "." or "..", no
    // control characters, and short enough for the record to hold it whole.
    static bool IsConfigName(const CString& name);
    static constexpr int kMaxConfigNameLength = 99;
    // The name a file is recorded under when it becomes current: its bare name up to the last
    // full stop; empty without one.
    static CString ConfigNameOf(const CString& file);
    // The full path that the current name means, making the configuration folder if needed.
    static CString GetCurConfigDetailPath();

    bool ReLoad(const CString& file);
    bool NewFile(const CString& file);
    bool Save();
    bool SaveAs(const CString& file);
    bool GetConfig(const CPath& path, std::vector<ConfigNode*>& configs);
    ConfigNode* GetConfig(const CPath& path);

    bool GetExistQdIndex(const CPath& path, std::vector<CString>& numbers);
    bool AddConfig(const CPath& path, int& newId);
    bool MoveUpConfig(const CPath& path);
    bool MoveDownConfig(const CPath& path);
    bool AddConfigByCopy(const CPath& path, int& newId);
    bool DelConfig(const CPath& path);
    // The eight strings of a condition: type, equal flag (non-zero = value form), equal
    // operator, range operators 1 and 2, value, ranges 1 and 2. Fewer than eight: false.
    bool AddCondition(const CPath& path, const CStringArray& condition);
    bool ResetCondition(const CPath& path, const CStringArray& condition);
    bool DelCondition(const CPath& path, std::vector<ConfigNode*>& configs);
    bool AddQd(const QdStruct& qd, const CPath& path, std::vector<ConfigNode*>& configs);
    bool AddDe2QdNode(const DeStruct& de, const CPath& path, std::vector<ConfigNode*>& configs);
    bool AddDe2ConfigNode(const DeStruct& de, const CPath& path, std::vector<ConfigNode*>& configs);
    bool DelQd(const CPath& path, const std::set<int>& ids);
    // Bill id to the ids of its quotas to delete; bills that don't exist are skipped.
    bool DelDeInQdNode(const CPath& path, const std::map<int, std::set<int>>& ids);
    bool DelDeInConfigNode(const CPath& path, const std::set<int>& ids);
    bool ResetQd(const CPath& path, const QdStruct& qd);
    bool ResetDeToConfig(const CPath& path, const DeStruct& de);
    bool ResetDeToQd(const CPath& path, const DeStruct& de);

    // Attribute settings of the current specialty: `first` (the small category's path) and
    // `second` (the attribute's display name) are joined into the record's key.
    bool GetAttConfig(const CString& first, const CString& second, AttrConfig& out);
    bool SetAttConfig(const CString& first, const CString& second, const AttrConfig& record);
    bool SaveAttConfig();
    // Why AttrConfig.xml could not be used when the presenter was made (its path and the
    // fault); empty when it was read or does not exist. The lookups above then find nothing.
    const std::string& AttConfigError() const { return m_pAttr->LastError(); }

    // The store, for tools that list the whole tree.
    IQdDeConfigData* GetData() const { return m_pData.get(); }

    // The record of the current configuration's name, and the folder of the configuration
    // files (made when missing). No file is opened: the host's cloud disk, which downloads a
    // template as the current configuration, writes the record through these.
    static void SetCurConfig(const CString& name);
    static CString ConfigFolder();

private:
    static CString IniPath();
    // Records the bare name of `file` (no folder, no extension) as the current configuration.
    void RecordCurrent(const CString& file);

    // Shared only between presenters assigned from one another.
    std::shared_ptr<IQdDeConfigData> m_pData;
    std::shared_ptr<CAttrConfigStore> m_pAttr;
};

// Makes `file` the current configuration. False, with "文件功能不匹配" in `error`, when the file
// can't be loaded; `error` is left alone otherwise. Exported under its plain name, so that a
// host can look it up in the loaded library by that name.
extern "C" KOQDDE_API bool RefreshAutoConfig(CString& error, const CString& file);
