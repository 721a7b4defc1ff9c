// Selection in the workbench when one small category holds 500 configurations, each with four
// conditions, four bills of three quotas and two quotas of its own. A click on that category in
// the tree rebuilds the configuration list, the attribute list, the condition list and the grid;
// a click on a configuration rebuilds the condition list and the grid. Each is timed twice: the
// dialog's handlers alone, and with the events that follow (layout and painting) run as well.
#include "host/HostData.h"
#include "model/CPath.h"
#include "model/ConfigNode.h"
#include "platform/CString.h"
#include "platform/FileSystem.h"
#include "platform/MessageBox.h"
#include "presenter/CQdDeConfigPresenter.h"
#include "ui/ModalHook.h"
#include "workbench/CAutoConfigDlg.h"

#include <QApplication>
#include <QCoreApplication>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <initializer_list>
#include <stdexcept>
#include <string>

namespace {

using namespace AutoConfigIds;

constexpr int kLargeId = 1;
constexpr int kBusyId = 101;  // 管道\给水管, the category of 500
constexpr int kQuietId = 103; // 管道\排水管, the one the tree goes back to
constexpr int kBusyConfigs = 500;
constexpr int kQuietConfigs = 3;

const wchar_t* const kBillLib = L"{BILL-2013}";
const wchar_t* const kBillQuotaLib = L"{QUOTA-2018}";
const wchar_t* const kQuotaLib = L"{QUOTA-2016}";

CString Text(int n) {
    return FromUtf8(std::to_string(n));
}

CString Padded(int n) {
    std::string text = std::to_string(n);
    return FromUtf8(std::string(3 - std::min<size_t>(3, text.size()), '0') + text);
}

struct BillText {
    const wchar_t* number;
    const wchar_t* name;
    const wchar_t* unit;
};

struct QuotaText {
    const wchar_t* number;
    const wchar_t* name;
    const wchar_t* unit;
};

const BillText kBills[] = {
    {L"031001001", L"镀锌钢管 安装部位:室内 介质:给水 规格:DN25 连接形式:螺纹连接", L"m"},
    {L"031001006", L"塑料管 材质:PP-R 规格:De32 连接形式:热熔连接", L"m"},
    {L"031001007", L"复合管 材质:钢塑复合管 规格:DN50 连接形式:沟槽连接", L"m"},
    {L"031002001", L"管道支架 材质:型钢 管架形式:一般管架", L"kg"},
    {L"031003001", L"螺纹阀门 类型:截止阀 规格:DN25", L"个"},
    {L"031201001", L"管道刷油 除锈级别:轻锈 油漆品种:防锈漆两遍", L"m2"},
    {L"031208002", L"管道绝热 绝热材料:橡塑保温管 厚度:20mm", L"m3"},
};

const QuotaText kQuotas[] = {
    {L"10-1-12", L"室内镀锌钢管(螺纹连接) 公称直径(mm以内) 25", L"10m"},
    {L"10-1-13", L"室内镀锌钢管(螺纹连接) 公称直径(mm以内) 32", L"10m"},
    {L"10-1-285", L"室内塑料给水管(热熔连接) 公称外径(mm以内) 32", L"10m"},
    {L"10-1-401", L"管道消毒、冲洗 公称直径(mm以内) 50", L"100m"},
    {L"10-1-420", L"管道压力试验 公称直径(mm以内) 100", L"100m"},
    {L"10-11-1", L"管道支吊架制作 单件重量(kg以内) 5", L"100kg"},
    {L"10-11-8", L"管道支吊架安装 单件重量(kg以内) 5", L"100kg"},
    {L"10-5-3", L"螺纹阀门安装 公称直径(mm以内) 25", L"个"},
    {L"12-1-1", L"手工除锈 管道 轻锈", L"10m2"},
    {L"12-2-22", L"管道刷油 防锈漆 第一遍", L"10m2"},
    {L"12-4-150", L"橡塑保温管安装 管道 φ57以下", L"m3"},
};

const wchar_t* const kMaterials[] = {L"镀锌钢管", L"PP-R管",     L"衬塑钢管",
                                     L"不锈钢管", L"球墨铸铁管", L"铜管"};
const wchar_t* const kBounds[] = {L"0", L"25", L"50", L"80", L"100", L"150", L"200"};
const wchar_t* const kInsulations[] = {L"橡塑保温", L"玻璃棉", L"岩棉", L"聚氨酯"};
const wchar_t* const kSystems[] = {L"JL-1", L"JL-2", L"RJ-1", L"XH-1", L"ZP-1"};

template <class T, size_t N> const T& Pick(const T (&items)[N], int n) {
    return items[static_cast<size_t>(n) % N];
}

// Counts the message boxes the workbench raises.
class BoxCounter : public IMessageBoxHandler {
public:
    int Show(void*, const CString&, const CString&, unsigned) override {
        ++count;
        return IDOK;
    }
    int count = 0;
};

// A bill-mode project of 给排水 in a temporary folder; its current configuration file holds the
// two pipe categories filled as above.
struct World {
    World() {
        char pattern[] = "/tmp/koqdde-workbench-bench-XXXXXX";
        folder = FromUtf8(mkdtemp(pattern));
        std::filesystem::create_directories(ToUtf8(folder + L"/config"));
        std::filesystem::create_directories(ToUtf8(folder + L"/project"));
        host.project.path = folder + L"/project/bench.kprj";
        host.project.currentSpec = L"给排水";
        host.project.mode = 0;
        host.project.bill.code = kBillLib;
        host.project.billQuota.code = kBillQuotaLib;
        host.project.quota.code = kQuotaLib;
        host.profile.configPath = folder + L"/config";
        host.profile.version = L"2.5.0";

        HostSmallCategory water{kBusyId, L"给水管", 1, {}};
        water.attributes = {{L"GDCZ", L"材质", L"给水管材质", L"CZ"},
                            {L"GDGJ", L"管径(mm)", L"管径", L"GJ"},
                            {L"BWCZ", L"保温材质", L"保温材质", L"BWCZ"},
                            {L"XTBH", L"系统编号", L"", L"XTBH"}};
        HostSmallCategory drain{kQuietId, L"排水管", 1, {}};
        drain.attributes = {{L"GDCZ", L"材质", L"排水管材质", L"CZ"},
                            {L"GDGJ", L"管径(mm)", L"管径", L"GJ"}};
        HostLargeCategory pipes{kLargeId, L"管道", {water, {102, L"雨水管", 1, {}}, drain}};
        HostLargeCategory valves{2, L"阀门", {{201, L"阀门", 0, {}}}};
        host.catalog.push_back({2, L"给排水", {pipes, valves}});
        for (const wchar_t* material : kMaterials)
            host.dropLists[L"给水管材质"].Add(material);
        host.dropLists[L"排水管材质"] = {L"UPVC管", L"铸铁管"};
        host.dropLists[L"管径"] = {L"DN15", L"DN20", L"DN25", L"DN32", L"DN50", L"DN100"};
        for (const wchar_t* insulation : kInsulations)
            host.dropLists[L"保温材质"].Add(insulation);

        CQdDeConfigPresenter presenter;
        Fill(presenter, kBusyId, kBusyConfigs);
        Fill(presenter, kQuietId, kQuietConfigs);
        presenter.Save();
    }
    ~World() { std::filesystem::remove_all(ToUtf8(folder)); }

    static CPath Category(int small, int config = CPath::kNone) {
        CPath path;
        path.SpecId = 2;
        path.LMemberId = kLargeId;
        path.SMemberId = small;
        path.ConfigId = config;
        return path;
    }

    // Configuration n: its own combination of material, diameter range, insulation and system,
    // so that no two rows of the list read alike.
    static void Fill(CQdDeConfigPresenter& presenter, int small, int count) {
        for (int n = 0; n < count; ++n) {
            int id = 0;
            presenter.AddConfig(Category(small), id);
            ConfigNode* config = presenter.GetConfig(Category(small, id));
            config->AddCondition(
                ConditionNode(L"材质", true, L"＝", L"", L"", Pick(kMaterials, n), L"", L""));
            const int range = (n / 6) % 6;
            config->AddCondition(ConditionNode(L"管径(mm)", false, L"", L"＞", L"≤", L"",
                                               kBounds[range], kBounds[range + 1]));
            config->AddCondition(ConditionNode(L"保温材质", true, L"＝", L"", L"",
                                               Pick(kInsulations, n / 36), L"", L""));
            config->AddCondition(ConditionNode(L"系统编号", true, L"≠", L"", L"",
                                               Pick(kSystems, n / 144), L"", L""));
            for (int b = 0; b < 4; ++b) {
                const BillText& bill = Pick(kBills, n + b);
                QdStruct qd;
                qd.strQdId = CString(bill.number) + Padded(b + 1);
                qd.strQdIdUser = qd.strQdId;
                qd.strName = bill.name;
                qd.strUnit = bill.unit;
                qd.strUnitCode = L"1";
                qd.strQdCode = kBillLib;
                qd.strFormula = L"L";
                qd.strAnnex = b == 0 ? L"是" : L"否";
                config->AddQd(qd);
                QdNode* node = config->GetQd().back();
                for (int q = 0; q < 3; ++q)
                    node->AddDe(Quota(Pick(kQuotas, n + 3 * b + q), kBillQuotaLib));
            }
            for (int q = 0; q < 2; ++q)
                config->AddDe(Quota(Pick(kQuotas, n + q), kQuotaLib));
        }
    }

    static DeStruct Quota(const QuotaText& text, const wchar_t* library) {
        DeStruct de;
        de.strDeId = text.number;
        de.strName = text.name;
        de.strUnit = text.unit;
        de.strUnitCode = UnitCoefficient(text.unit);
        de.strDeCode = library;
        de.strFormula = L"L";
        de.strAnnex = L"否";
        return de;
    }

    // The unit's leading number, 1 without one: "100m" is 100.
    static CString UnitCoefficient(const wchar_t* unit) {
        int value = 0;
        for (const wchar_t* c = unit; *c >= L'0' && *c <= L'9'; ++c)
            value = value * 10 + (*c - L'0');
        return Text(value > 0 ? value : 1);
    }

    CString folder;
    HostData host;
    HostDataScope scope{&host};
};

// Runs body on the workbench opened on the project's current configuration, and leaves it
// without the way out: nothing is saved, so every run starts from the same file.
void WithWorkbench(const std::function<void(CDialog&)>& body) {
    koqdde::ui::ModalHookScope hook([&](CDialog& dialog) {
        if (dynamic_cast<CAutoConfigDlg*>(&dialog))
            body(dialog);
        return IDCANCEL;
    });
    CAutoConfigDlg workbench(CString(), nullptr);
    workbench.DoModal();
}

template <class T> T& Control(CDialog& dialog, int id) {
    auto* control = dynamic_cast<T*>(dialog.GetDlgItem(id));
    if (!control)
        throw std::logic_error("control " + std::to_string(id) + " is missing");
    return *control;
}

HTREEITEM Leaf(CTreeCtrl& tree, std::initializer_list<const wchar_t*> names) {
    HTREEITEM item = tree.GetRootItem();
    for (const wchar_t* name : names) {
        item = tree.GetChildItem(item);
        while (item && tree.GetItemText(item) != name)
            item = tree.GetNextSiblingItem(item);
    }
    return item;
}

// What follows a click before the user sees it: deferred layout of the views, then painting.
void Settle() {
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
}

// The panes a selection rebuilds.
struct Panes {
    CTreeCtrl& tree;
    CListCtrl& configs;
    CListBox& conditions;
    CGridCtrl& grid;

    // A configuration of the busy category is shown: four conditions, four bills of three
    // quotas under the header.
    bool ShowBusyConfiguration() const {
        return conditions.GetCount() == 4 && grid.GetRowCount() == 1 + 4 * 4;
    }
};

// Runs body on the workbench's panes, and fails the benchmark when the workbench raised a
// message box: a selection that raises one has gone wrong, and its timing means nothing.
void OnPanes(benchmark::State& state, const std::function<void(Panes&)>& body) {
    BoxCounter boxes;
    MessageBoxHandlerScope boxScope(&boxes);
    WithWorkbench([&](CDialog& dialog) {
        Panes panes{Control<CTreeCtrl>(dialog, kTree), Control<CListCtrl>(dialog, kConfigList),
                    Control<CListBox>(dialog, kConditionList), Control<CGridCtrl>(dialog, kGrid)};
        body(panes);
    });
    if (boxes.count != 0)
        state.SkipWithError("the workbench raised a message box");
}

void BM_SelectCategoryOf500(benchmark::State& state) {
    const bool paint = state.range(0) != 0;
    OnPanes(state, [&](Panes& panes) {
        HTREEITEM busy = Leaf(panes.tree, {L"管道", L"给水管"});
        HTREEITEM quiet = Leaf(panes.tree, {L"管道", L"排水管"});
        for (auto _ : state) {
            state.PauseTiming();
            panes.tree.UserSelect(quiet);
            Settle();
            const bool left = panes.configs.GetItemCount() == kQuietConfigs + 1;
            state.ResumeTiming();
            panes.tree.UserSelect(busy);
            if (paint)
                Settle();
            state.PauseTiming();
            // Row 0 is selected.
            if (!left || panes.configs.GetItemCount() != kBusyConfigs + 1 ||
                !panes.ShowBusyConfiguration()) {
                state.SkipWithError("the selection did not rebuild the panes");
                break;
            }
            state.ResumeTiming();
        }
    });
}
BENCHMARK(BM_SelectCategoryOf500)
    ->ArgName("paint")
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

void BM_SelectConfigurationAmong500(benchmark::State& state) {
    const bool paint = state.range(0) != 0;
    OnPanes(state, [&](Panes& panes) {
        panes.tree.UserSelect(Leaf(panes.tree, {L"管道", L"给水管"}));
        Settle();
        // Rows far apart, never the same twice running; the default row (500) is left out.
        int row = 0;
        for (auto _ : state) {
            row = (row + 137) % kBusyConfigs;
            panes.configs.UserClickItem(row);
            if (paint)
                Settle();
            state.PauseTiming();
            if (panes.configs.GetNextItem(-1, LVNI_SELECTED) != row ||
                !panes.ShowBusyConfiguration()) {
                state.SkipWithError("the click did not rebuild the panes");
                break;
            }
            state.ResumeTiming();
        }
    });
}
BENCHMARK(BM_SelectConfigurationAmong500)
    ->ArgName("paint")
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

} // namespace

int main(int argc, char** argv) {
    // The offscreen platform unless the caller chose one: no display is needed.
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    QApplication app(argc, argv);
    World world;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
