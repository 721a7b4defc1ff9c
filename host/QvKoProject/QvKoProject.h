#pragma once
// Stand-in for the host's project library: the open project, its category catalog, the
// attributes of each small category, its bill and quota libraries, and the version stamp of
// configuration files. Everything is answered from the installed HostData.

#include "host/QvBillKit/QvBillKit.h"
#include "platform/CString.h"
#include "platform/Export.h"

#include <vector>

struct SQvKoSpecId {
    CString specId;
};

struct SQvKoBigCategoryId {
    CString specId;
    CString bigCategoryId;
};

struct SQvKoSmallCategoryId {
    CString specId;
    CString bigCategoryId;
    CString smallCategoryId;
};

struct SQdDeInfo {
    enum EQdDeMode { eQdMode = 0, eDeMode = 1 };
};

// Name to id. A path text joins names with one backslash: "给排水", "给排水\管道",
// "给排水\管道\给水管". False (and the record left alone) for an unknown name.
bool SpecNameToId(const CString& specName, SQvKoSpecId& id);
KOQDDE_DIALOGS_API bool BigCategoryNameToId(const CString& path, SQvKoBigCategoryId& id);
KOQDDE_DIALOGS_API bool SmallCategoryNameToId(const CString& path, SQvKoSmallCategoryId& id);

class CProj {
public:
    CString GetPrjPath() const;
    KOQDDE_DIALOGS_API CString GetCurrentSpec() const;
    KOQDDE_DIALOGS_API int GetCurrentSpecId() const;
};

class CAtt {
public:
    // Every specialty of the catalog, in its order.
    bool GetAllSpecNames(CStringArray& names) const;
    KOQDDE_DIALOGS_API bool GetAllBigCategoryIdsBySpec(const SQvKoSpecId& spec,
                                                       std::vector<SQvKoBigCategoryId>& ids) const;
    KOQDDE_DIALOGS_API bool GetBigCategoryName(const SQvKoBigCategoryId& id, CString& name) const;
    KOQDDE_DIALOGS_API bool
    GetAllSmallCategoryIdsByBigCategory(const SQvKoBigCategoryId& large,
                                        std::vector<SQvKoSmallCategoryId>& ids) const;
    KOQDDE_DIALOGS_API bool GetSmallCategoryName(const SQvKoSmallCategoryId& id,
                                                 CString& name) const;

    KOQDDE_DIALOGS_API SQdDeInfo::EQdDeMode GetQdDeMode() const;
    // The bill library.
    CString GetQdFileName() const;
    KOQDDE_DIALOGS_API CString GetQdCode() const;
    CString GetQdLocal() const;
    // The quota library that goes with the bill library (bill mode).
    CString GetQdDeFileName() const;
    KOQDDE_DIALOGS_API CString GetQdDeCode() const;
    CString GetQdDeYear() const;
    CString GetQdDeLocal() const;
    // The quota library of the quota mode.
    CString GetDeFileName() const;
    KOQDDE_DIALOGS_API CString GetDeCode() const;
    CString GetDeYear() const;
    CString GetDeLocal() const;

    // The drop-down list of an attribute by its key; false when there is none.
    bool GetDropList(const CString& key, CStringArray& items) const;
    // The drop-down list of the attribute with this code, reached through the drop keys of a
    // small category's attributes (keys, in record order): the first key that an attribute of
    // this code uses in the catalog. False when none of them does.
    KOQDDE_DIALOGS_API bool GetDropList(const CString& code, CStringArray& items,
                                        const CStringArray& keys) const;
};

class CSysSmallCategoryMng {
public:
    explicit CSysSmallCategoryMng(const SQvKoSmallCategoryId& id) : m_id(id) {}
    // Four strings per attribute: field, display name, drop-list key, attribute code.
    KOQDDE_DIALOGS_API bool GetAttributeList(CStringArray& list) const;
    KOQDDE_DIALOGS_API int GetAttType() const;

private:
    SQvKoSmallCategoryId m_id;
};

// The project's bill history: the bills it has used, from its history database.
class CQdHistoryMng {
public:
    // Appends the bills used under this number (those whose number begins with it), in the
    // order they were first used. False when the project has no history.
    KOQDDE_DIALOGS_API bool GetQdInfoByQdNum(const CString& number,
                                             std::vector<SQdInfo>& records) const;
};

class CSys {
public:
    // Where a small category ("专业\大类\小类") opens the bill library's chapter tree:
    // chapter codes from the root joined by "\"; empty when the library doesn't say.
    KOQDDE_DIALOGS_API static CString GetIndexPath(const CString& treePath);
};

namespace QvKoXmlVertion {
// Stamps the root of a saved configuration file with the application's version. The file
// stays loadable; an empty version or an unreadable file leaves it as it is.
bool SetXmlVersion(const CString& version, const CString& file);
} // namespace QvKoXmlVertion
