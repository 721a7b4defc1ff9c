// The pickers' search as the user types: one, two and three or more characters of a name, and
// a number's start, on the bundled pack's libraries and on a quota library a hundred times the
// size of the bundled one. A picker asks once per keystroke, so each answer has to come well
// within a keystroke's time.
#include "host/HostData.h"
#include "host/datapack/DataPack.h"
#include "host/sqlite/ItemLibrary.h"
#include "host/sqlite/LibraryFiles.h"
#include "platform/FileSystem.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace {

const char* const kNames[] = {"室内镀锌钢管(螺纹连接)",
                              "螺纹阀门安装",
                              "焊接法兰阀门安装",
                              "成套配电箱安装 悬挂嵌入式",
                              "塑料给水管(热熔连接)",
                              "电力电缆敷设 截面",
                              "矩形风管制作安装 镀锌薄钢板",
                              "喷淋头安装 有吊顶",
                              "接线盒安装 暗装",
                              "水表组成安装"};

struct Libraries {
    Libraries() {
        char pattern[] = "/tmp/koqdde-bench-XXXXXX";
        folder = FromUtf8(mkdtemp(pattern));
        DataPackOptions options;
        options.dataDir = BundledPackDir();
        options.configDir = folder + L"/cfg";
        CString error;
        if (!LoadDataPack(options, host, error))
            throw std::runtime_error(ToUtf8(error));
        bills.Open(host.libraryFiles, host.project.bill.code);
        quotas.Open(host.libraryFiles, host.project.billQuota.code);

        // 100 books of 10 chapters of 30 quotas each.
        std::string sql = "INSERT INTO library (key, value) VALUES ('kind', 'quota'), "
                          "('code', '{LARGE}');\n";
        int chapter = 0;
        for (int book = 1; book <= 100; ++book) {
            const int bookId = ++chapter;
            sql += "INSERT INTO chapter VALUES (" + std::to_string(bookId) + ", NULL, " +
                   std::to_string(book) + ", '" + std::to_string(book) + "', '第" +
                   std::to_string(book) + "册');\n";
            for (int c = 1; c <= 10; ++c) {
                const int id = ++chapter;
                sql += "INSERT INTO chapter VALUES (" + std::to_string(id) + ", " +
                       std::to_string(bookId) + ", " + std::to_string(c) + ", '" +
                       std::to_string(book) + "." + std::to_string(c) + "', '第" +
                       std::to_string(c) + "章');\n";
                for (int q = 1; q <= 30; ++q) {
                    const int seq = (c - 1) * 30 + q;
                    sql += "INSERT INTO quota (number, chapter, position, name, unit) VALUES ('" +
                           std::to_string(book) + "-" + std::to_string(seq) + "', " +
                           std::to_string(id) + ", " + std::to_string(q) + ", '" +
                           kNames[(book + seq) % 10] + " 规格" + std::to_string(seq) +
                           "', '10m');\n";
                }
            }
        }
        const CString source = folder + L"/large.sql";
        WriteFileAtomically(source, sql);
        const CString schema = BundledPackDir() + L"/libraries/schema.sql";
        if (!BuildLibraryDatabase(schema, source, folder + L"/large.db", error))
            throw std::runtime_error(ToUtf8(error));
        large.Open({folder + L"/large.db"}, L"{LARGE}");
    }
    ~Libraries() {
        std::error_code ec;
        std::filesystem::remove_all(ToUtf8(folder), ec);
    }
    CString folder;
    HostData host;
    ItemLibrary bills;
    ItemLibrary quotas;
    ItemLibrary large;
};

Libraries& World() {
    static Libraries libraries;
    return libraries;
}

const wchar_t* const kQueries[] = {L"阀", L"阀门", L"法兰阀门", L"0310", L"镀锌 钢管"};

void Search(benchmark::State& state, ItemLibrary Libraries::*library) {
    const ItemLibrary& lib = World().*library;
    const wchar_t* query = kQueries[state.range(0)];
    std::size_t found = 0;
    for (auto _ : state) {
        found = lib.Search(query).size();
        benchmark::DoNotOptimize(found);
    }
    state.SetLabel(ToUtf8(CString(query)) + ": " + std::to_string(found));
}

void BundledBills(benchmark::State& state) {
    Search(state, &Libraries::bills);
}
void BundledQuotas(benchmark::State& state) {
    Search(state, &Libraries::quotas);
}
void LargeQuotas(benchmark::State& state) {
    Search(state, &Libraries::large);
}

// Opening a library reads its chapter tree; a picker does it when it is first shown.
void OpenLarge(benchmark::State& state) {
    const CString file = World().folder + L"/large.db";
    for (auto _ : state) {
        ItemLibrary library;
        benchmark::DoNotOptimize(library.Open({file}, L"{LARGE}"));
    }
}

} // namespace

BENCHMARK(BundledBills)->DenseRange(0, 4)->Unit(benchmark::kMicrosecond);
BENCHMARK(BundledQuotas)->DenseRange(0, 4)->Unit(benchmark::kMicrosecond);
BENCHMARK(LargeQuotas)->DenseRange(0, 4)->Unit(benchmark::kMicrosecond);
BENCHMARK(OpenLarge)->Unit(benchmark::kMicrosecond);
