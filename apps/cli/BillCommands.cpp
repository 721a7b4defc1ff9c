// apply COMPONENTS.csv: a component list through the configuration to a bill of quantities.
#include "Cli.h"
#include "Guards.h"
#include "Json.h"
#include "Translate.h"

#include "platform/FileSystem.h"
#include "rules/BillOfQuantities.h"
#include "rules/ComponentList.h"

#include <charconv>
#include <cstdio>

namespace {

// Quantities as an estimator reads them: up to three decimals, no trailing zeros.
std::string Quantity(double value) {
    char text[64];
    std::snprintf(text, sizeof text, "%.3f", value);
    std::string out = text;
    while (out.back() == '0')
        out.pop_back();
    if (out.back() == '.')
        out.pop_back();
    return out == "-0" ? "0" : out;
}

// Full precision for a file a program reads on.
std::string Exact(double value) {
    char text[32];
    return std::string(text, std::to_chars(text, text + sizeof text, value).ptr);
}

std::string Attributes(const ComponentRow& row) {
    std::string out;
    for (const auto& [name, value] : row.attributes)
        out += (out.empty() ? "" : " ") + ToUtf8(name) + "=" + ToUtf8(value);
    return out;
}

Json ItemJson(const BoqItem& item) {
    return Json::MakeObject()
        .Set("number", item.number)
        .Set("name", item.name)
        .Set("unit", item.unit)
        .Set("quantity", item.quantity)
        .Set("components", item.components);
}

Json BillJson(const BillOfQuantities& boq) {
    Json bills = Json::MakeArray();
    for (const BoqBill& bill : boq.bills) {
        Json quotas = Json::MakeArray();
        for (const BoqItem& quota : bill.quotas)
            quotas.Push(ItemJson(quota));
        bills.Push(ItemJson(bill.item).Set("quotas", std::move(quotas)));
    }
    Json quotas = Json::MakeArray();
    for (const BoqItem& quota : boq.quotas)
        quotas.Push(ItemJson(quota));
    Json uncovered = Json::MakeArray();
    for (const ComponentRow* row : boq.defaultOnly) {
        Json attributes = Json::MakeObject();
        for (const auto& [name, value] : row->attributes)
            attributes.Set(ToUtf8(name), value);
        uncovered.Push(Json::MakeObject()
                           .Set("line", row->line)
                           .Set("category", row->category)
                           .Set("attributes", std::move(attributes)));
    }
    Json problems = Json::MakeArray();
    for (const BoqProblem& p : boq.problems)
        problems.Push(Json::MakeObject()
                          .Set("line", p.line)
                          .Set("category", p.category)
                          .Set("kind", p.kind)
                          .Set("detail", p.detail));
    return Json::MakeObject()
        .Set("components", boq.components)
        .Set("bills", std::move(bills))
        .Set("quotas", std::move(quotas))
        .Set("defaultOnly", std::move(uncovered))
        .Set("problems", std::move(problems));
}

std::string ProblemText(const BoqProblem& p) {
    if (p.kind == "unknownCategory")
        return Tr("the configuration has no small category \"{1}\"", {ToUtf8(p.category)});
    if (p.kind == "noMatch")
        return Tr("no configuration of {1} matches (it has no default)", {ToUtf8(p.category)});
    if (p.kind == "badFormula")
        return Tr("a formula does not parse, the item is left out: {1}", {p.detail});
    return Tr("a quantity is not a number (division by zero?), the item is left out: {1}",
              {p.detail});
}

void PrintBill(const BillOfQuantities& boq) {
    PrintLine(Tr("No.\tNumber\tName\tUnit\tQuantity\tComponents"));
    ForEachBillLine(boq, [](const std::string& no, const BoqItem& item) {
        PrintLine(no + "\t" + ToUtf8(item.number) + "\t" + ToUtf8(item.name) + "\t" +
                  ToUtf8(item.unit) + "\t" + Quantity(item.quantity) + "\t" +
                  std::to_string(item.components));
    });
    if (!boq.defaultOnly.empty()) {
        PrintLine("");
        PrintLine(Tr("Only the default configuration (其它) took these {1} component(s):",
                     {std::to_string(boq.defaultOnly.size())}));
        for (const ComponentRow* row : boq.defaultOnly)
            PrintLine(Tr("line {1}", {std::to_string(row->line)}) + "\t" + ToUtf8(row->category) +
                      "\t" + Attributes(*row));
    }
    if (!boq.problems.empty()) {
        PrintLine("");
        PrintLine(Tr("Problems:"));
        for (const BoqProblem& p : boq.problems)
            PrintLine(Tr("line {1}", {std::to_string(p.line)}) + "\t" + ProblemText(p));
    }
}

// The bill as CSV: one row per bill, its quotas under it as 1.1, 1.2..., then the quotas of
// the configurations themselves; the uncovered components and the problems follow, each under
// a header row of its own.
std::string BillCsv(const BillOfQuantities& boq) {
    std::string out = "\xEF\xBB\xBF序号,编号,名称,单位,工程量,构件数\r\n";
    ForEachBillLine(boq, [&](const std::string& no, const BoqItem& item) {
        out += no + "," + CsvField(ToUtf8(item.number)) + "," + CsvField(ToUtf8(item.name)) + "," +
               CsvField(ToUtf8(item.unit)) + "," + Exact(item.quantity) + "," +
               std::to_string(item.components) + "\r\n";
    });
    if (!boq.defaultOnly.empty()) {
        out += "\r\n仅默认配置,类别,属性\r\n";
        for (const ComponentRow* r : boq.defaultOnly)
            out += std::to_string(r->line) + "," + CsvField(ToUtf8(r->category)) + "," +
                   CsvField(Attributes(*r)) + "\r\n";
    }
    if (!boq.problems.empty()) {
        out += "\r\n问题,类别,原因\r\n";
        for (const BoqProblem& p : boq.problems)
            out += std::to_string(p.line) + "," + CsvField(ToUtf8(p.category)) + "," +
                   CsvField(ProblemText(p)) + "\r\n";
    }
    return out;
}

} // namespace

bool AppliesComponentList(const std::vector<std::string>& raw) {
    return !raw.empty() && raw[0] != "bill" && raw[0] != "quota" && raw[0].rfind("-", 0) != 0;
}

int ApplyComponentList(CliContext& ctx, std::vector<std::string> raw) {
    for (std::string& arg : raw)
        if (arg == "-o")
            arg = "--output";
    ParsedArgs args = ParseArgs(raw, {"--output"});
    if (args.positional.size() != 1)
        throw UsageError(Tr("usage: {1}", {"apply COMPONENTS.csv [-o BILL.csv|BILL.xlsx]"}));
    const CString list = Arg(args.positional[0]);
    ExpectExisting(list);
    const FileBytes bytes = ReadRegularFile(list);
    if (!bytes)
        throw UsageError(Tr("cannot read {1}: {2}", {ToUtf8(list), bytes.Reason()}));
    std::vector<ComponentRow> rows;
    std::string error;
    if (!ReadComponentList(bytes.bytes, rows, error))
        throw UsageError(ToUtf8(list) + ": " + error);

    CString output;
    bool xlsx = false;
    if (args.Has("--output")) {
        output = Arg(args.values.at("--output"));
        const std::string name = ToUtf8(output);
        xlsx = name.size() > 5 && name.compare(name.size() - 5, 5, ".xlsx") == 0;
        if (!xlsx && (name.size() < 4 || name.compare(name.size() - 4, 4, ".csv") != 0))
            throw UsageError(Tr("-o writes a .csv or .xlsx file; {1} is neither", {name}));
        if (xlsx && !CanWriteXlsx())
            throw UsageError(
                Tr("this koqdde was built without XLSX support (libxlsxwriter); write .csv"));
        ExpectFolderOf(output, "-o");
    }
    const BillOfQuantities boq = ApplyComponents(ctx.Tree(), rows);
    const int status = boq.problems.empty() ? kExitTrue : kExitFalse;
    if (output.IsEmpty()) {
        if (ctx.Options().json)
            PrintLine(BillJson(boq).Dump());
        else
            PrintBill(boq);
        return status;
    }
    const bool replaces = MayReplace(ctx, output, "apply");
    if (ctx.Options().dryRun)
        return ReportPlan(ctx, true, output,
                          {Tr("dry run: nothing done; apply would write the bill of {1} "
                              "component(s) to {2}",
                              {std::to_string(boq.components), ToUtf8(output)})},
                          replaces);
    if (replaces)
        KeepBackup(output);
    std::string why;
    if (xlsx) {
        std::vector<std::string> texts;
        for (const BoqProblem& p : boq.problems)
            texts.push_back(ProblemText(p));
        WriteBillXlsx(boq, texts, output);
    } else if (!WriteFileAtomically(output, BillCsv(boq), &why)) {
        throw std::runtime_error(Tr("cannot write {1}: {2}", {ToUtf8(output), why}));
    }
    if (ctx.Options().json)
        PrintLine(BillJson(boq).Set("file", output).Dump());
    size_t quotas = boq.quotas.size();
    for (const BoqBill& bill : boq.bills)
        quotas += bill.quotas.size();
    if (!ctx.Options().json)
        PrintLine(Tr("{1}: {2} bill(s) and {3} quota(s) from {4} component(s); {5} only the "
                     "default took, {6} problem(s)",
                     {ToUtf8(output), std::to_string(boq.bills.size()), std::to_string(quotas),
                      std::to_string(boq.components), std::to_string(boq.defaultOnly.size()),
                      std::to_string(boq.problems.size())}));
    return status;
}
