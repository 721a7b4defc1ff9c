#pragma once
// A host world built in code for one test: a catalog, a project in a temporary folder, a
// configuration folder, and a message recorder. Installed while the object lives.

#include "host/HostData.h"
#include "host/QvBillKit/QvBillKit.h"
#include "support/MessageRecorder.h"
#include "support/TempDir.h"

#include <string>

// The bundled pack's library schema.
CString LibrarySchemaFile();
// Builds <dir>/<name>.db from INSERT statements on that schema (the test fails when it can't)
// and gives its path.
CString BuildLibrary(const TempDir& dir, const CString& name, const std::string& statements);

// A bill or a quota as a library hands it over, on one line:
// number|name|unit|formula|unit coefficient|annex (and a bill's feature after them).
std::string Fields(const SQdInfo& bill);
std::string Fields(const SDeInfo& quota);

class TestHost {
public:
    // The current specialty is "给排水"; the project file is <tmp>/project/test.kprj and the
    // configuration folder <tmp>/config (both folders exist).
    TestHost();

    // Adds the specialty, large and small category when missing (by name). Ids: the usual
    // specialty numbers, then the given ids, else the next free number among the siblings.
    void Add(const CString& spec, const CString& large, const CString& small, int largeId = 0,
             int smallId = 0);
    // Adds a specialty with no categories.
    HostSpecialty& AddSpec(const CString& spec);
    HostLargeCategory& AddLarge(const CString& spec, const CString& large, int largeId = 0);

    CString ConfigDir() const { return dir.File(L"config"); }
    CString ProjectDir() const { return dir.File(L"project"); }
    // The default configuration file of the configuration folder.
    CString DefaultConfigFile() const;
    // Builds a library database (see BuildLibrary) and adds it to the project's libraries.
    CString AddLibrary(const CString& name, const std::string& statements);

    TempDir dir;
    HostData data;
    MessageRecorder messages;

private:
    HostDataScope m_scope{&data};
};
