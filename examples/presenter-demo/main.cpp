// Plays a tiny host: one specialty with one small category and a configuration folder, then
// adds a configuration to the folder's current configuration through the presenter and reads
// it back.
// Usage: presenter-demo CONFIG-FOLDER

#include "host/HostData.h"
#include "platform/ComError.h"
#include "presenter/CAutoQdDeConfigFacade.h"

#include <cstdio>
#include <filesystem>
#include <system_error>

namespace {

CPath PipePath() {
    CPath path;
    path.SpecId = 2;
    path.LMemberId = 1;
    path.SMemberId = 101;
    return path;
}

// Adds a configuration for galvanised steel pipe with its bill, and saves.
bool AddGalvanisedPipe() {
    auto presenter = CAutoQdDeConfigFacade::GetQdDeConfigPresenter(CString());
    CPath path = PipePath();
    int id = 0;
    if (!presenter->AddConfig(path, id))
        return false;
    path.ConfigId = id;
    if (!presenter->AddCondition(path, {L"材质", L"1", L"＝", L"", L"", L"镀锌钢管", L"", L""}))
        return false;
    QdStruct bill;
    bill.strQdId = L"031001001001";
    bill.strName = L"镀锌钢管";
    bill.strUnit = L"m";
    std::vector<ConfigNode*> configs;
    return presenter->AddQd(bill, path, configs) && presenter->Save();
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("usage: presenter-demo CONFIG-FOLDER\n", stderr);
        return 2;
    }
    std::error_code error;
    if (!std::filesystem::is_directory(argv[1], error)) {
        std::fprintf(stderr,
                     "presenter-demo: the configuration folder %s does not exist; create it or "
                     "name another\n",
                     argv[1]);
        return 1;
    }
    const CString folder = FromUtf8(argv[1]);
    HostData host;
    HostSmallCategory pipe;
    pipe.id = 101;
    pipe.name = L"给水管";
    host.catalog.push_back({2, L"给排水", {{1, L"管道", {pipe}}}});
    host.project.path = folder + L"/demo.kprj";
    host.project.currentSpec = L"给排水";
    host.profile.configPath = folder;
    HostDataScope scope(&host);

    try {
        if (!AddGalvanisedPipe()) {
            std::fputs("presenter-demo: the configuration refused the edit\n", stderr);
            return 1;
        }
        auto reader = CAutoQdDeConfigFacade::GetQdDeConfigPresenter(CString());
        std::vector<ConfigNode*> configs;
        if (!reader->GetConfig(PipePath(), configs))
            return 1;
        for (ConfigNode* config : configs) {
            std::printf("config %d: %s", config->GetId(),
                        ToUtf8(config->GetConditionString()).c_str());
            for (QdNode* qd : config->GetQd())
                std::printf(" | %s %s", ToUtf8(qd->m_qd.strQdId).c_str(),
                            ToUtf8(qd->m_qd.strName).c_str());
            std::printf("\n");
        }
    } catch (const ComError& e) {
        std::fprintf(stderr, "presenter-demo: %s (HRESULT 0x%08X)\n", e.what(),
                     static_cast<unsigned>(e.Error()));
        return 1;
    }
    return 0;
}
