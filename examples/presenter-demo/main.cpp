// Plays a tiny host: one specialty with one small category, a configuration folder in a
// temporary directory, then edits a configuration through the presenter and reads it back.
// Usage: presenter-demo WORK-DIR

#include "host/HostData.h"
#include "presenter/CAutoQdDeConfigFacade.h"

#include <cstdio>

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("usage: presenter-demo WORK-DIR\n", stderr);
        return 2;
    }
    CString work = FromUtf8(argv[1]);

    HostData host;
    HostSmallCategory pipe;
    pipe.id = 101;
    pipe.name = L"给水管";
    host.catalog.push_back({2, L"给排水", {{1, L"管道", {pipe}}}});
    host.project.path = work + L"/demo.kprj";
    host.project.currentSpec = L"给排水";
    host.profile.configPath = work;
    HostDataScope scope(&host);

    CString file = work + L"/demo.xml";
    {
        auto presenter = CAutoQdDeConfigFacade::GetQdDeConfigPresenter(file);
        CPath path;
        path.SpecId = 2;
        path.LMemberId = 1;
        path.SMemberId = 101;
        int id = 0;
        presenter->AddConfig(path, id);
        path.ConfigId = id;
        presenter->AddCondition(path, {L"材质", L"1", L"＝", L"", L"", L"镀锌钢管", L"", L""});
        QdStruct bill;
        bill.strQdId = L"031001001001";
        bill.strName = L"镀锌钢管";
        bill.strUnit = L"m";
        std::vector<ConfigNode*> configs;
        presenter->AddQd(bill, path, configs);
        presenter->Save();
    }

    auto reader = CAutoQdDeConfigFacade::GetQdDeConfigPresenter(file);
    CPath path;
    path.SpecId = 2;
    path.LMemberId = 1;
    path.SMemberId = 101;
    std::vector<ConfigNode*> configs;
    if (!reader->GetConfig(path, configs))
        return 1;
    for (ConfigNode* config : configs) {
        std::printf("config %d: %s", config->GetId(), ToUtf8(config->GetConditionString()).c_str());
        for (QdNode* qd : config->GetQd())
            std::printf(" | %s %s", ToUtf8(qd->m_qd.strQdId).c_str(),
                        ToUtf8(qd->m_qd.strName).c_str());
        std::printf("\n");
    }
    return configs.size() == 2 ? 0 : 1;
}
