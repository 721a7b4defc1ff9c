#pragma once
// A host world built in code for one test: a catalog, a project in a temporary folder, a
// configuration folder, and a message recorder. Installed while the object lives.

#include "host/HostData.h"
#include "support/MessageRecorder.h"
#include "support/TempDir.h"

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

    TempDir dir;
    HostData data;
    MessageRecorder messages;

private:
    HostDataScope m_scope{&data};
};
