#include "support/TestHost.h"

#include "host/sqlite/LibraryFiles.h"
#include "platform/NumParse.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

namespace {
int KnownSpecId(const CString& name) {
    const wchar_t* names[] = {L"建筑", L"给排水", L"电气", L"暖通", L"消防", L"弱电"};
    for (int i = 0; i < 6; ++i)
        if (name == names[i])
            return i + 1;
    return 0;
}
} // namespace

TestHost::TestHost() {
    std::filesystem::create_directories(ToUtf8(ConfigDir()));
    std::filesystem::create_directories(ToUtf8(ProjectDir()));
    data.project.path = ProjectDir() + L"/test.kprj";
    data.project.currentSpec = L"给排水";
    data.profile.configPath = ConfigDir();
    data.profile.version = L"2.5.0";
}

CString LibrarySchemaFile() {
    return FromUtf8(KOQDDE_SOURCE_DIR "/data/sample/libraries/schema.sql");
}

CString BuildLibrary(const TempDir& dir, const CString& name, const std::string& statements) {
    const CString db = dir.File(name + L".db");
    CString error;
    EXPECT_TRUE(
        BuildLibraryDatabase(LibrarySchemaFile(), dir.Write(name + L".sql", statements), db, error))
        << ToUtf8(error);
    return db;
}

std::string Fields(const SQdInfo& bill) {
    return ToUtf8(bill.strQdNum + L"|" + bill.strName + L"|" + bill.strUnit + L"|" +
                  bill.strFormula + L"|" + IntToText(bill.nUnitCoef) + L"|" +
                  IntToText(bill.nAnnex) + L"|" + bill.strFeature);
}

std::string Fields(const SDeInfo& quota) {
    return ToUtf8(quota.strDeNum + L"|" + quota.strName + L"|" + quota.strUnit + L"|" +
                  quota.strFormula + L"|" + IntToText(quota.nUnitCoef) + L"|" +
                  IntToText(quota.nAnnex));
}

CString TestHost::AddLibrary(const CString& name, const std::string& statements) {
    data.libraryFiles.push_back(BuildLibrary(dir, name, statements));
    return data.libraryFiles.back();
}

CString TestHost::DefaultConfigFile() const {
    return ConfigDir() + L"/自动套配置/DefaultConfig.xml";
}

HostSpecialty& TestHost::AddSpec(const CString& spec) {
    for (auto& s : data.catalog)
        if (s.name == spec)
            return s;
    int id = KnownSpecId(spec);
    if (id == 0)
        id = 100 + static_cast<int>(data.catalog.size());
    data.catalog.push_back({id, spec, {}});
    return data.catalog.back();
}

HostLargeCategory& TestHost::AddLarge(const CString& spec, const CString& large, int largeId) {
    HostSpecialty& s = AddSpec(spec);
    for (auto& l : s.larges)
        if (l.name == large)
            return l;
    int id = largeId;
    if (id == 0)
        for (const auto& l : s.larges)
            id = std::max(id, l.id);
    s.larges.push_back({largeId ? largeId : id + 1, large, {}});
    return s.larges.back();
}

void TestHost::Add(const CString& spec, const CString& large, const CString& small, int largeId,
                   int smallId) {
    HostLargeCategory& l = AddLarge(spec, large, largeId);
    for (auto& s : l.smalls)
        if (s.name == small)
            return;
    int id = smallId;
    if (id == 0) {
        id = l.id * 100;
        for (const auto& s : l.smalls)
            id = std::max(id, s.id);
        ++id;
    }
    HostSmallCategory category;
    category.id = id;
    category.name = small;
    l.smalls.push_back(category);
}
