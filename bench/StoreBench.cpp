// Load and save of a large configuration file: every small category of a sizeable catalog with
// a dozen configurations, each with conditions, bill items and quotas. Saving parses the whole
// file again, so both costs grow with the file, not with the edit.
#include "host/HostData.h"
#include "platform/FileSystem.h"
#include "store/CXmlQdDeConfig.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <string>

namespace {

struct World {
    World() {
        char pattern[] = "/tmp/koqdde-bench-XXXXXX";
        folder = FromUtf8(mkdtemp(pattern));
        file = folder + L"/big.xml";
        HostSpecialty spec{2, L"给排水", {}};
        for (int l = 1; l <= 10; ++l) {
            HostLargeCategory large{l, L"大类" + IntText(l), {}};
            for (int s = 1; s <= 10; ++s) {
                HostSmallCategory small;
                small.id = l * 100 + s;
                small.name = L"小类" + IntText(s);
                large.smalls.push_back(small);
            }
            spec.larges.push_back(large);
        }
        host.catalog.push_back(spec);
        host.project.currentSpec = L"给排水";
        host.project.path = folder + L"/p.kprj";
        host.profile.configPath = folder;
        host.profile.version = L"1.0.0";
        HostDataScope scope(&host);
        CXmlQdDeConfig store(file, L"给排水");
        for (int l = 1; l <= 10; ++l)
            for (int s = 1; s <= 10; ++s)
                Fill(store, l, l * 100 + s);
        store.Save();
    }
    ~World() { std::filesystem::remove_all(ToUtf8(folder)); }

    static CString IntText(int n) { return FromUtf8(std::to_string(n)); }

    static void Fill(CXmlQdDeConfig& store, int large, int small) {
        CPath path;
        path.SpecId = 2;
        path.LMemberId = large;
        path.SMemberId = small;
        for (int c = 0; c < 12; ++c) {
            int id = 0;
            store.AddConfig(path, id);
            path.ConfigId = id;
            ConfigNode* config = store.GetConfig(path);
            config->AddCondition(
                ConditionNode(L"管径", false, L"", L"＞", L"≤", L"", L"15", L"50"));
            config->AddCondition(
                ConditionNode(L"材质", true, L"＝", L"", L"", L"镀锌钢管", L"", L""));
            for (int q = 0; q < 3; ++q) {
                QdStruct qd;
                qd.strQdId = L"03100100100" + IntText(q);
                qd.strName = L"镀锌钢管";
                qd.strUnit = L"m";
                qd.strUnitCode = L"1";
                config->AddQd(qd);
                DeStruct de;
                de.strDeId = L"10-1-" + IntText(q);
                de.strName = L"室内镀锌钢管安装";
                config->GetQd(q + 1)->AddDe(de);
                config->GetQd(q + 1)->AddDe(de);
            }
        }
    }

    HostData host;
    CString folder;
    CString file;
};

World& TheWorld() {
    static World world;
    return world;
}

void BM_LoadLargeFile(benchmark::State& state) {
    World& world = TheWorld();
    HostDataScope scope(&world.host);
    for (auto _ : state) {
        CXmlQdDeConfig store(world.file, L"给排水");
        benchmark::DoNotOptimize(store.GetSpec().GetAllLMember().size());
    }
    state.counters["bytes"] = static_cast<double>(ReadFileBytes(world.file)->size());
}
BENCHMARK(BM_LoadLargeFile)->Unit(benchmark::kMillisecond);

void BM_SaveLargeFile(benchmark::State& state) {
    World& world = TheWorld();
    HostDataScope scope(&world.host);
    CXmlQdDeConfig store(world.file, L"给排水");
    for (auto _ : state)
        benchmark::DoNotOptimize(store.Save());
}
BENCHMARK(BM_SaveLargeFile)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
