// lib, apply: the project's bill and quota libraries, and their items applied to a
// configuration with the numbering the bill number dialog uses.
#include "Cli.h"
#include "Json.h"
#include "Translate.h"

#include "host/HostData.h"
#include "host/QvKoProject/QvKoProject.h"
#include "host/sqlite/ItemLibrary.h"
#include "model/Spec.h"
#include "presenter/BillNumbering.h"
#include "presenter/LibraryItems.h"

#include <algorithm>
#include <cstdio>

namespace {

// The bill library, or with quotas the quota library of the project's mode.
ItemLibrary OpenLibrary(bool quotas) {
    const HostData* host = CurrentHostData();
    const HostProject& project = host->project;
    const HostLibrary& wanted =
        !quotas ? project.bill : (project.mode == 0 ? project.billQuota : project.quota);
    ItemLibrary library;
    if (!library.Open(host->libraryFiles, wanted.code))
        throw UsageError(quotas ? Tr("the project's quota library (code {1}) is not among the "
                                     "data pack's libraries",
                                     {ToUtf8(wanted.code)})
                                : Tr("the project's bill library (code {1}) is not among the "
                                     "data pack's libraries",
                                     {ToUtf8(wanted.code)}));
    return library;
}

Json ItemJson(const LibraryItem& item) {
    Json json = Json::MakeObject()
                    .Set("number", item.number)
                    .Set("name", item.name)
                    .Set("unit", item.unit)
                    .Set("unitCoefficient", item.unitCoefficient)
                    .Set("annex", item.annex != 0)
                    .Set("formula", item.formula);
    if (!item.feature.IsEmpty())
        json.Set("feature", item.feature);
    if (!item.work.IsEmpty())
        json.Set("work", item.work);
    return json;
}

std::string ItemLine(const LibraryItem& item) {
    return ToUtf8(item.number) + "\t" + ToUtf8(item.name) + "\t" + ToUtf8(item.unit);
}

CString ChapterPath(const ItemLibrary& library, int chapter) {
    CString path;
    for (const LibraryChapter* c = library.FindChapter(chapter); c;
         c = library.FindChapter(c->parent))
        path = path.IsEmpty() ? c->name : c->name + L" > " + path;
    return path;
}

LibraryItem FindItem(const ItemLibrary& library, const std::string& number, bool quotas) {
    LibraryItem item;
    if (!library.Find(Arg(number), item))
        throw UsageError(quotas ? Tr("no quota \"{1}\" in {2} (koqdde lib search --quotas TEXT "
                                     "finds numbers)",
                                     {number, ToUtf8(library.Name())})
                                : Tr("no bill \"{1}\" in {2} (koqdde lib search TEXT finds "
                                     "numbers)",
                                     {number, ToUtf8(library.Name())}));
    return item;
}

int Lib(CliContext& ctx, const std::vector<std::string>& raw) {
    ParsedArgs args = ParseArgs(raw, {"--limit"}, {"--quotas"});
    const std::string action = args.positional.empty() ? "" : args.positional[0];
    const bool quotas = args.Has("--quotas");
    const bool json = ctx.Options().json;
    if (action == "search") {
        if (args.positional.size() != 2 || args.positional[1].empty())
            throw UsageError(Tr("usage: {1}", {"lib search TEXT [--quotas] [--limit N]"}));
        size_t limit = ItemLibrary::kSearchLimit;
        if (args.values.count("--limit"))
            limit = static_cast<size_t>(std::max(1, ParseId(args.values.at("--limit"), "N")));
        ItemLibrary library = OpenLibrary(quotas);
        std::vector<LibraryItem> found = library.Search(Arg(args.positional[1]), limit);
        if (json) {
            Json list = Json::MakeArray();
            for (const LibraryItem& item : found)
                list.Push(ItemJson(item));
            PrintLine(Json::MakeObject()
                          .Set("library", library.Name())
                          .Set("items", std::move(list))
                          .Dump());
        } else {
            for (const LibraryItem& item : found)
                PrintLine(ItemLine(item));
        }
        return found.empty() ? kExitFalse : kExitTrue;
    }
    if (action == "show") {
        if (args.positional.size() != 2)
            throw UsageError(Tr("usage: {1}", {"lib show NUMBER [--quotas]"}));
        ItemLibrary library = OpenLibrary(quotas);
        LibraryItem item = FindItem(library, args.positional[1], quotas);
        std::vector<LibraryItem> linked;
        const bool billMode = CurrentHostData()->project.mode == 0;
        if (!quotas && billMode)
            linked = OpenLibrary(true).QuotasOfBill(item.number);
        if (json) {
            Json out = ItemJson(item);
            out.Set("chapter", ChapterPath(library, item.chapter));
            if (!quotas && billMode) {
                Json list = Json::MakeArray();
                for (const LibraryItem& quota : linked)
                    list.Push(ItemJson(quota));
                out.Set("quotas", std::move(list));
            }
            PrintLine(out.Dump());
            return kExitTrue;
        }
        PrintLine(ToUtf8(item.number) + "  " + ToUtf8(item.name));
        PrintLine("  library:  " + ToUtf8(library.Name()));
        PrintLine("  chapter:  " + ToUtf8(ChapterPath(library, item.chapter)));
        PrintLine("  unit:     " + ToUtf8(item.unit) + " (coefficient " +
                  std::to_string(item.unitCoefficient) + ")");
        PrintLine("  formula:  " + ToUtf8(item.formula));
        PrintLine(std::string("  fittings: ") + (item.annex ? "是" : "否"));
        if (!item.feature.IsEmpty())
            PrintLine("  feature:  " + ToUtf8(item.feature));
        if (!item.work.IsEmpty())
            PrintLine("  work:     " + ToUtf8(item.work));
        for (const LibraryItem& quota : linked)
            PrintLine("  quota:    " + ItemLine(quota));
        return kExitTrue;
    }
    throw UsageError(Tr("lib takes search or show"));
}

void FillDefaultFormula(CliContext& ctx, const CPath& path, CString& formula) {
    if (!formula.IsEmpty())
        return;
    const CString category = ctx.SmallCategoryPath(path);
    if (!DefaultFormulaOf(category, formula))
        std::fprintf(
            stderr, "koqdde: 计算规则不对应! %s\n",
            Tr("({1} has no calculation item); the item gets no formula", {ToUtf8(category)})
                .c_str());
}

bool Contains(const std::vector<CString>& list, const CString& text) {
    return std::find(list.begin(), list.end(), text) != list.end();
}

// The number a bill takes in the configuration, as the bill number dialog settles it: an
// existing number of the project's history, or the library number with a new sequence part.
CString SettleBillNumber(const CString& picked, const ParsedArgs& args,
                         const std::vector<CString>& inConfig) {
    int codeLength = -1;
    int suffixLength = -1;
    IBillLib::GetEnCodeRule(codeLength, suffixLength);
    const BillNumberSplit split = SplitBillNumber(picked, codeLength, suffixLength);
    std::vector<SQdInfo> records;
    CQdHistoryMng().GetQdInfoByQdNum(split.prefix, records);
    std::vector<CString> history;
    for (const SQdInfo& record : records)
        history.push_back(record.strQdNum);

    if (args.values.count("--existing")) {
        const CString number = Arg(args.values.at("--existing"));
        if (!Contains(history, number)) {
            std::string known;
            for (const CString& h : history)
                known += (known.empty() ? "" : ", ") + ToUtf8(h);
            throw UsageError(
                known.empty()
                    ? Tr("\"{1}\" is not among the project's numbers of {2} (it has none)",
                         {ToUtf8(number), ToUtf8(split.prefix)})
                    : Tr("\"{1}\" is not among the project's numbers of {2} ({3})",
                         {ToUtf8(number), ToUtf8(split.prefix), known}));
        }
        if (Contains(inConfig, number))
            throw UsageError("同一构件不能多次套同一清单 ! " +
                             Tr("({1} is already in this configuration)", {ToUtf8(number)}));
        return number;
    }
    if (codeLength == -1 || suffixLength == -1 || split.proposer == SuffixProposer::kNone)
        throw UsageError(Tr("the bill library's encoding rule ({1}, {2}) makes no new numbers; "
                            "use --existing NUMBER",
                            {std::to_string(codeLength), std::to_string(suffixLength)}));
    // Unlike the dialog, the proposal also passes the numbers of this configuration, which
    // the history may not hold yet: a script that applies a bill twice gets two numbers.
    std::vector<CString> taken = history;
    taken.insert(taken.end(), inConfig.begin(), inConfig.end());
    CString suffix;
    if (args.values.count("--suffix"))
        suffix = Arg(args.values.at("--suffix"));
    else if (split.proposer == SuffixProposer::kNext)
        suffix = ProposeNextSuffix(taken, suffixLength);
    else
        suffix = ProposeFreeSuffix(split.prefix, split.suffix, taken, IBillLib::IsInQdk);
    if (suffix.GetLength() != suffixLength)
        throw UsageError("新清单号不符合规范! " + Tr("(the sequence part has {1} characters)",
                                                     {std::to_string(suffixLength)}));
    const CString number = split.prefix + suffix;
    if (Contains(history, number))
        throw UsageError("清单已经套用! " +
                         Tr("({1} is in the project's history; use --existing)", {ToUtf8(number)}));
    if (Contains(inConfig, number))
        throw UsageError("同一构件不能多次套同一清单 ! " +
                         Tr("({1} is already in this configuration)", {ToUtf8(number)}));
    return number;
}

int Apply(CliContext& ctx, const std::vector<std::string>& raw) {
    // apply bill|quota puts a library item on a configuration; anything else is a component
    // list to run through the configuration.
    if (AppliesComponentList(raw))
        return ApplyComponentList(ctx, raw);
    ParsedArgs args = ParseArgs(raw, {"--existing", "--suffix", "--qd"});
    const std::string kind = args.positional.empty() ? "" : args.positional[0];
    if ((kind != "bill" && kind != "quota") || args.positional.size() != 4)
        throw UsageError(
            Tr("usage: {1}", {"apply bill|quota CATEGORY CONFIG-ID NUMBER [options]"}));
    CPath path = ctx.ResolveCategory(Arg(args.positional[1]));
    path.ConfigId = ctx.ResolveConfig(path, args.positional[2]);
    ConfigNode* config = ctx.Presenter().GetConfig(path);
    if (!config)
        throw UsageError(
            Tr("no configuration {1} in \"{2}\"", {args.positional[2], args.positional[1]}));
    CAtt att;
    const bool billMode = att.GetQdDeMode() == 0;
    std::vector<ConfigNode*> configs;

    if (kind == "bill") {
        if (!billMode)
            throw UsageError(Tr("the project is in quota mode: it takes quotas only"));
        if (args.values.count("--qd"))
            throw UsageError(Tr("--qd is for quotas"));
        if (args.values.count("--existing") && args.values.count("--suffix"))
            throw UsageError(Tr("give --existing or --suffix, not both"));
        const SQdInfo info = ToBillInfo(FindItem(OpenLibrary(false), args.positional[3], false));
        std::vector<CString> inConfig;
        for (QdNode* qd : config->GetQd())
            inConfig.push_back(qd->m_qd.strQdId);
        const CString number = SettleBillNumber(info.strQdNum, args, inConfig);
        QdStruct qd = QdFromLibrary(info, number, att.GetQdCode());
        FillDefaultFormula(ctx, path, qd.strFormula);
        const bool ok = ctx.Presenter().AddQd(qd, path, configs);
        if (ok && !ctx.Options().json)
            std::fprintf(stderr, "koqdde: bill %s %s\n", ToUtf8(number).c_str(),
                         ToUtf8(qd.strName).c_str());
        return FinishEdit(ctx, ok, args.positional[1], ok ? config->GetLastQdId() : 0);
    }

    if (args.values.count("--existing") || args.values.count("--suffix"))
        throw UsageError(Tr("--existing and --suffix are for bills"));
    QdNode* owner = nullptr;
    if (billMode) {
        if (!args.values.count("--qd"))
            throw UsageError(Tr("in bill mode a quota goes under a bill: give --qd QD-ID"));
        path.QdId = ParseId(args.values.at("--qd"), "QD-ID");
        owner = config->GetQd(path.QdId);
        if (!owner)
            throw UsageError(Tr("no bill item {1}", {args.values.at("--qd")}));
    } else if (args.values.count("--qd")) {
        throw UsageError(Tr("the project is in quota mode: quotas go to the configuration itself"));
    }
    LibraryItem item = FindItem(OpenLibrary(true), args.positional[3], true);
    DeStruct de = DeFromLibrary(ToQuotaPick(item), billMode ? att.GetQdDeCode() : att.GetDeCode());
    FillDefaultFormula(ctx, path, de.strFormula);
    const bool ok = billMode ? ctx.Presenter().AddDe2QdNode(de, path, configs)
                             : ctx.Presenter().AddDe2ConfigNode(de, path, configs);
    const int id = owner ? owner->GetLastDeId() : config->GetLastDeId();
    return FinishEdit(ctx, ok, args.positional[1], ok ? id : 0);
}

} // namespace

std::vector<CommandSpec> LibraryCommands() {
    return {
        {"lib", "search TEXT | show NUMBER [--quotas]",
         TrNoop("find and show items of the project's libraries"),
         TrNoop(
             "search finds items by the start of their number or by any part of their name\n"
             "(several words: all of them), one per line: number, name, unit (tab-separated);\n"
             "exit 1 when nothing is found. show prints one item in full and, for a bill in bill\n"
             "mode, the quotas the quota library links to it. --quotas looks in the quota\n"
             "library of the project's mode instead of the bill library; --limit N caps a "
             "search.\n\n"
             "Examples:\n  koqdde lib search 镀锌\n  koqdde lib search 0310010\n"
             "  koqdde --json lib show 031001001\n  koqdde lib search --quotas 螺纹连接"),
         Lib},
        {"apply",
         "bill|quota CATEGORY CONFIG-ID NUMBER [--existing N|--suffix S] [--qd QD-ID] | "
         "COMPONENTS.csv [-o BILL.csv|BILL.xlsx]",
         TrNoop(
             "apply a library item to a configuration, or a component list to the configuration"),
         TrNoop(
             "apply COMPONENTS.csv runs a component list (docs/bill-of-quantities.md: a column\n"
             "类别, the quantities L, N, S, an attribute per other column) through the\n"
             "configuration: each component gets the items of the configuration it matches, with\n"
             "their formulas over its L, N and S, summed by number into a bill of quantities\n"
             "(bills, the quotas under each, the configurations' own quotas), followed by the\n"
             "components only the default configuration took and the rows with problems (exit 1\n"
             "when there are any). -o BILL.csv or -o BILL.xlsx writes it as CSV or as a workbook\n"
             "(--force to replace a file).\n\n"
             "apply bill|quota takes the item from the project's library with its name, unit,\n"
             "coefficient, fittings flag and formula (the category's first calculation item when\n"
             "the library gives none) and adds it, as a pick in the workbench does. A bill is "
             "numbered "
             "as the\n"
             "bill number dialog numbers it: a new sequence part after the project's numbers of\n"
             "that bill (or the first free one, by the library's encoding rule); --suffix S gives\n"
             "the sequence part, --existing N takes a number the project already uses. In bill\n"
             "mode a quota goes under a bill (--qd QD-ID); in quota mode to the configuration.\n"
             "Prints the new item's id.\n\n"
             "Examples:\n  koqdde apply components.csv -o /tmp/清单.csv\n"
             "  koqdde apply bill '管道\\给水管' 2 031001001\n"
             "  koqdde apply bill '管道\\给水管' 2 031001001 --existing 031001001002\n"
             "  koqdde apply quota '管道\\给水管' 2 10-1-2 --qd 1"),
         Apply},
    };
}
