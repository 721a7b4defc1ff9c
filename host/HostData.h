#pragma once
// What the host application knows and the module asks for: the category catalog with the
// attributes of each small category, the open project and the application profile. The
// stand-ins of the host's libraries read the one installed HostData; the shells install it
// from a data pack, tests build their own in code.

#include "platform/CString.h"
#include "platform/Export.h"

#include <map>
#include <vector>

struct HostAttribute {
    CString field;   // first string of the record (the host's internal field name)
    CString name;    // display name
    CString dropKey; // key of the attribute's drop-down list
    CString code;    // attribute code, the key into AttributeInformation.xml
};

struct HostSmallCategory {
    int id = 0;
    CString name;
    int attType = 0; // non-zero: the category's items may carry pipe fittings
    std::vector<HostAttribute> attributes;
};

struct HostLargeCategory {
    int id = 0;
    CString name;
    std::vector<HostSmallCategory> smalls;
};

struct HostSpecialty {
    int id = 0;
    CString name;
    std::vector<HostLargeCategory> larges;
};

// One library in use by the project: file name, code (guid), local (corp) code and year.
struct HostLibrary {
    CString fileName;
    CString code;
    CString local;
    CString year;
};

struct HostProject {
    CString path;          // full path of the project file
    CString currentSpec;   // name of the current specialty
    int mode = 0;          // 0 bill mode, otherwise quota mode
    HostLibrary bill;      // the bill library
    HostLibrary billQuota; // the quota library that goes with the bill library (bill mode)
    HostLibrary quota;     // the quota library of the quota mode
};

struct HostProfile {
    CString configPath; // the application's configuration folder
    CString version;    // the application's version text; may be empty
};

struct KOQDDE_API HostData {
    std::vector<HostSpecialty> catalog;
    HostProject project;
    HostProfile profile;
    std::map<CString, CStringArray> dropLists; // drop-down lists by key
    // The library databases (bill and quota libraries, calculation rules); each names its
    // kind and code in its "library" table. The project's libraries are found by code.
    std::vector<CString> libraryFiles;
    CString historyFile; // the project's bill history database; empty for none
    // The cloud disk's template store: one folder per category ("自动套模板"); empty for none.
    CString cloudDir;

    const HostSpecialty* FindSpec(const CString& name) const;
    const HostSpecialty* FindSpecById(int id) const;
    const HostLargeCategory* FindLarge(int specId, int largeId) const;
    const HostSmallCategory* FindSmall(int specId, int largeId, int smallId) const;
};

// Installs host data for the lifetime of the scope, restoring what was there before.
class KOQDDE_API HostDataScope {
public:
    explicit HostDataScope(const HostData* data);
    ~HostDataScope();
    HostDataScope(const HostDataScope&) = delete;
    HostDataScope& operator=(const HostDataScope&) = delete;

private:
    const HostData* m_previous;
};

// The installed host data, or null when none is installed.
KOQDDE_API const HostData* CurrentHostData();
