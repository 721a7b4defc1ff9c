// A host that links only the core library: it tells the module its categories and its
// configuration folder, opens the folder's current configuration and prints what each small
// category receives, as a host reads the configuration before applying it to its components.
// Usage: core-host CONFIG-FOLDER

#include "host/HostData.h"
#include "platform/ComError.h"
#include "presenter/CAutoQdDeConfigFacade.h"

#include <cstdio>
#include <filesystem>
#include <system_error>

namespace {

// What the host knows of its project: one specialty with two small categories of pipe.
HostData DescribeProject(const CString& folder) {
    HostData host;
    HostSmallCategory supply;
    supply.id = 101;
    supply.name = L"给水管";
    supply.attributes.push_back({L"Material", L"材质", L"", L"A01"});
    HostSmallCategory drain;
    drain.id = 102;
    drain.name = L"排水管";
    host.catalog.push_back({2, L"给排水", {{1, L"管道", {supply, drain}}}});
    // The record of the current configuration, SysRegedit.ini, goes beside the project file.
    host.project.path = folder + L"/project.kprj";
    host.project.currentSpec = L"给排水";
    host.profile.configPath = folder;
    return host;
}

void PrintConfigurations(CQdDeConfigPresenter& presenter, const HostData& host) {
    for (const HostSpecialty& spec : host.catalog)
        for (const HostLargeCategory& large : spec.larges)
            for (const HostSmallCategory& small : large.smalls) {
                std::printf("%s\\%s\\%s\n", ToUtf8(spec.name).c_str(), ToUtf8(large.name).c_str(),
                            ToUtf8(small.name).c_str());
                CPath path;
                path.SpecId = spec.id;
                path.LMemberId = large.id;
                path.SMemberId = small.id;
                std::vector<ConfigNode*> configs;
                // False: the configuration has no such category (not the current specialty).
                if (!presenter.GetConfig(path, configs))
                    continue;
                int position = 0;
                for (ConfigNode* config : configs) {
                    std::printf("  #%d %s\n", ++position,
                                ToUtf8(config->GetConditionString()).c_str());
                    for (QdNode* bill : config->GetQd())
                        std::printf("    %s %s %s\n", ToUtf8(bill->m_qd.strQdId).c_str(),
                                    ToUtf8(bill->m_qd.strName).c_str(),
                                    ToUtf8(bill->m_qd.strUnit).c_str());
                }
            }
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("usage: core-host CONFIG-FOLDER\n", stderr);
        return 2;
    }
    std::error_code error;
    if (!std::filesystem::is_directory(argv[1], error)) {
        std::fprintf(stderr,
                     "core-host: the configuration folder %s does not exist; create it or "
                     "name another\n",
                     argv[1]);
        return 1;
    }
    HostData host = DescribeProject(FromUtf8(argv[1]));
    HostDataScope scope(&host);
    // A file the module can't write or read raises ComError; it is the host's to report.
    try {
        auto presenter = CAutoQdDeConfigFacade::GetQdDeConfigPresenter(CString());
        std::printf("%s\n", ToUtf8(CQdDeConfigPresenter::GetCurConfigDetailPath()).c_str());
        PrintConfigurations(*presenter, host);
    } catch (const ComError& e) {
        std::fprintf(stderr, "core-host: %s (HRESULT 0x%08X)\n", e.what(),
                     static_cast<unsigned>(e.Error()));
        return 1;
    }
    return 0;
}
