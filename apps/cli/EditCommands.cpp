// config, condition, qd, de: editing a small category's configurations. Each edit is saved
// unless --dry-run is given; bad input changes nothing and exits with status 2.
#include "Checks.h"
#include "Cli.h"
#include "Json.h"
#include "Translate.h"

#include "host/QvKoProject/QvKoProject.h"
#include "model/Spec.h"
#include "presenter/ConditionRules.h"

#include <cstdio>
#include <functional>
#include <tuple>

namespace {

using namespace ConditionOperator;

// The category and, when asked for, the configuration an edit addresses, checked to exist.
struct Target {
    std::string category;
    CPath path;
    ConfigNode* config = nullptr;
};

Target Resolve(CliContext& ctx, const ParsedArgs& args, size_t need, const std::string& usage) {
    if (args.positional.size() < need)
        throw UsageError(Tr("usage: {1}", {usage}));
    Target target;
    target.category = args.positional[1];
    target.path = ctx.ResolveCategory(Arg(target.category));
    if (need >= 3) {
        target.path.ConfigId = ctx.ResolveConfig(target.path, args.positional[2]);
        target.config = ctx.Presenter().GetConfig(target.path);
    }
    return target;
}

void ExpectCount(const ParsedArgs& args, size_t count, const std::string& usage) {
    if (args.positional.size() != count)
        throw UsageError(Tr("usage: {1}", {usage}));
}

// An edit the module refuses, or one that would change nothing: exit 1 with the reason after
// the general line.
int Refused(CliContext& ctx, const std::string& category, const std::string& why) {
    const int status = FinishEdit(ctx, false, category);
    std::fprintf(stderr, "koqdde: %s\n", why.c_str());
    return status;
}

// Why a configuration can't move: the first can't go up, nothing passes the default one.
std::string WhyNoMove(CliContext& ctx, const Target& t, bool up) {
    std::vector<ConfigNode*> configs;
    ctx.Presenter().GetConfig(t.path, configs);
    const std::string id = std::to_string(t.config->GetId());
    if (t.config->IfDefault())
        return Tr("configuration {1} is the default one (其它), which always stays last", {id});
    if (up)
        return Tr("configuration {1} is already the first; nothing moved", {id});
    return Tr("configuration {1} is already the last before the default one (其它), which stays "
              "last; nothing moved",
              {id});
}

// --- config -------------------------------------------------------------------------------

int Config(CliContext& ctx, const std::vector<std::string>& raw) {
    ParsedArgs args = ParseArgs(raw, {});
    std::string action = args.positional.empty() ? "" : args.positional[0];
    CQdDeConfigPresenter& p = ctx.Presenter();
    if (action == "add") {
        const std::string usage = "config add CATEGORY";
        ExpectCount(args, 2, usage);
        Target t = Resolve(ctx, args, 2, usage);
        int id = 0;
        bool ok = p.AddConfig(t.path, id);
        return FinishEdit(ctx, ok, t.category, ok ? id : 0);
    }
    const std::string usage = "config " + action + " CATEGORY CONFIG-ID";
    if (action != "copy" && action != "delete" && action != "up" && action != "down")
        throw UsageError(Tr("config takes add, copy, delete, up or down"));
    ExpectCount(args, 3, usage);
    Target t = Resolve(ctx, args, 3, usage);
    if ((action == "copy" || action == "delete") && t.config->IfDefault())
        throw UsageError(
            action == "copy"
                ? Tr("configuration {1} is the default one (其它); it can't be copied",
                     {args.positional[2]})
                : Tr("configuration {1} is the default one (其它); it can't be deleted",
                     {args.positional[2]}));
    if (action == "copy") {
        int id = 0;
        bool ok = p.AddConfigByCopy(t.path, id);
        return FinishEdit(ctx, ok, t.category, ok ? id : 0);
    }
    if (action == "delete")
        return FinishEdit(ctx, p.DelConfig(t.path), t.category);
    const bool up = action == "up";
    if (up ? p.MoveUpConfig(t.path) : p.MoveDownConfig(t.path))
        return FinishEdit(ctx, true, t.category);
    return Refused(ctx, t.category, WhyNoMove(ctx, t, up));
}

// --- condition ----------------------------------------------------------------------------

const std::set<std::string> kConditionOptions = {"--attr", "--eq", "--ne", "--gt",
                                                 "--ge",   "--lt", "--le"};

// The eight strings of a condition, from --strings or from the readable options.
CStringArray BuildConditionArray(const ParsedArgs& args, size_t firstString) {
    if (args.flags.count("--strings")) {
        if (args.positional.size() != firstString + 8)
            throw UsageError(Tr("--strings needs exactly eight strings: type, equal flag, "
                                "equal operator, range operators 1 and 2, value, ranges 1 and 2"));
        CStringArray strings;
        for (size_t i = firstString; i < args.positional.size(); ++i)
            strings.Add(Arg(args.positional[i]));
        return strings;
    }
    if (args.positional.size() != firstString)
        throw UsageError(Tr("unexpected argument \"{1}\"", {args.positional[firstString]}));
    auto value = [&](const char* option) { return Arg(args.values.at(option)); };
    if (!args.Has("--attr") || args.values.at("--attr").empty())
        throw UsageError(Tr("a condition needs --attr NAME (or --strings and eight strings)"));
    CString attr = value("--attr");
    bool valueForm = args.Has("--eq") || args.Has("--ne");
    bool rangeForm = args.Has("--gt") || args.Has("--ge") || args.Has("--lt") || args.Has("--le");
    if (valueForm == rangeForm)
        throw UsageError(Tr("give either --eq/--ne VALUE or range bounds (--gt/--ge, --lt/--le)"));
    if (valueForm) {
        if (args.Has("--eq") && args.Has("--ne"))
            throw UsageError(Tr("--eq and --ne exclude each other"));
        bool eq = args.Has("--eq");
        return {attr, L"1", eq ? kEqual : kNotEqual, L"", L"", value(eq ? "--eq" : "--ne"),
                L"",  L""};
    }
    if ((args.Has("--gt") && args.Has("--ge")) || (args.Has("--lt") && args.Has("--le")))
        throw UsageError(Tr("one operator per bound: --gt or --ge, --lt or --le"));
    CString op1 = args.Has("--gt") ? kAbove : (args.Has("--ge") ? kAtLeast : L"");
    CString op2 = args.Has("--lt") ? kBelow : (args.Has("--le") ? kAtMost : L"");
    CString lower = args.Has("--gt") ? value("--gt") : (args.Has("--ge") ? value("--ge") : L"");
    CString upper = args.Has("--lt") ? value("--lt") : (args.Has("--le") ? value("--le") : L"");
    if (lower.IsEmpty() && upper.IsEmpty())
        throw UsageError(Tr("a range needs at least one non-empty bound"));
    return {attr, L"0", L"", op1, op2, L"", lower, upper};
}

bool HasCondition(const ConfigNode& config, int id) {
    for (ConditionNode* c : config.GetCondition())
        if (c->GetId() == id)
            return true;
    return false;
}

int Condition(CliContext& ctx, const std::vector<std::string>& raw) {
    ParsedArgs args = ParseArgs(raw, kConditionOptions, {"--strings", "--allow-unknown"});
    std::string action = args.positional.empty() ? "" : args.positional[0];
    CQdDeConfigPresenter& p = ctx.Presenter();
    const bool allowUnknown = args.Has("--allow-unknown");
    if (action == "add") {
        Target t = Resolve(ctx, args, 3, "condition add CATEGORY CONFIG-ID CONDITION");
        CStringArray strings = BuildConditionArray(args, 3);
        CheckCondition(ctx, t.path, strings, allowUnknown);
        // One condition per attribute: a second replaces the first, as the workbench's ">>".
        if (ConditionNode* same = ConditionOn(*t.config, strings[0])) {
            const std::string id = std::to_string(same->GetId());
            if (HoldsCondition(*same, strings))
                return Refused(ctx, t.category,
                               Tr("condition {1} is this condition already", {id}));
            std::fprintf(stderr, "koqdde: %s\n",
                         Tr("condition {1} already tests {2}; it is replaced, as the workbench "
                            "replaces it",
                            {id, ToUtf8(strings[0])})
                             .c_str());
            t.path.ConditionId = same->GetId();
            const bool ok = p.ResetCondition(t.path, strings);
            return FinishEdit(ctx, ok, t.category, ok ? same->GetId() : 0);
        }
        bool ok = p.AddCondition(t.path, strings);
        return FinishEdit(ctx, ok, t.category, ok ? t.config->GetLastConditionId() : 0);
    }
    if (action != "reset" && action != "delete")
        throw UsageError(Tr("condition takes add, reset or delete"));
    const std::string usage = "condition " + action + " CATEGORY CONFIG-ID CONDITION-ID" +
                              (action == "reset" ? " CONDITION" : "");
    Target t = Resolve(ctx, args, 4, usage);
    t.path.ConditionId = ParseId(args.positional[3], "CONDITION-ID");
    if (!HasCondition(*t.config, t.path.ConditionId))
        throw UsageError(
            Tr("no condition {1} in configuration {2}", {args.positional[3], args.positional[2]}));
    if (action == "reset") {
        CStringArray strings = BuildConditionArray(args, 4);
        CheckCondition(ctx, t.path, strings, allowUnknown);
        const ConditionNode* same = ConditionOn(*t.config, strings[0]);
        if (same && same->GetId() != t.path.ConditionId)
            throw UsageError(Tr("condition {1} already tests {2}: reset that one, or delete it "
                                "first",
                                {std::to_string(same->GetId()), ToUtf8(strings[0])}));
        if (same && HoldsCondition(*same, strings))
            return Refused(ctx, t.category,
                           Tr("condition {1} holds these values already", {args.positional[3]}));
        return FinishEdit(ctx, p.ResetCondition(t.path, strings), t.category);
    }
    ExpectCount(args, 4, usage);
    std::vector<ConfigNode*> configs;
    return FinishEdit(ctx, p.DelCondition(t.path, configs), t.category);
}

// --- qd and de ----------------------------------------------------------------------------

const std::set<std::string> kQdOptions = {"--number", "--user-number", "--name",
                                          "--unit",   "--unit-code",   "--type-id",
                                          "--code",   "--formula",     "--annex"};
const std::set<std::string> kDeOptions = {"--qd",        "--number", "--name",    "--unit",
                                          "--unit-code", "--code",   "--formula", "--annex"};

void Take(const ParsedArgs& args, const char* option, CString& field) {
    auto it = args.values.find(option);
    if (it != args.values.end())
        field = Arg(it->second);
}

QdStruct ApplyQd(const ParsedArgs& args, QdStruct qd) {
    Take(args, "--number", qd.strQdId);
    Take(args, "--user-number", qd.strQdIdUser);
    Take(args, "--name", qd.strName);
    Take(args, "--unit", qd.strUnit);
    Take(args, "--unit-code", qd.strUnitCode);
    Take(args, "--type-id", qd.strtypeid);
    Take(args, "--code", qd.strQdCode);
    Take(args, "--formula", qd.strFormula);
    Take(args, "--annex", qd.strAnnex);
    return qd;
}

DeStruct ApplyDe(const ParsedArgs& args, DeStruct de) {
    Take(args, "--number", de.strDeId);
    Take(args, "--name", de.strName);
    Take(args, "--unit", de.strUnit);
    Take(args, "--unit-code", de.strUnitCode);
    Take(args, "--code", de.strDeCode);
    Take(args, "--formula", de.strFormula);
    Take(args, "--annex", de.strAnnex);
    return de;
}

// `where` says where an id that is not found is, when it is elsewhere.
std::set<int> Ids(const ParsedArgs& args, size_t first, const std::string& what,
                  const std::function<bool(int)>& exists,
                  const std::function<std::string(int)>& where = {}) {
    if (args.positional.size() <= first)
        throw UsageError(Tr("give at least one {1}", {what}));
    std::set<int> ids;
    for (size_t i = first; i < args.positional.size(); ++i) {
        int id = ParseId(args.positional[i], what);
        if (!exists(id)) {
            const std::string hint = where ? where(id) : std::string();
            throw UsageError(Tr("no {1} {2}", {what, args.positional[i]}) +
                             (hint.empty() ? "" : "; " + hint));
        }
        ids.insert(id);
    }
    return ids;
}

auto Fields(const QdStruct& q) {
    return std::tie(q.strQdId, q.strQdIdUser, q.strName, q.strUnit, q.strUnitCode, q.strtypeid,
                    q.strQdCode, q.strFormula, q.strAnnex);
}

auto Fields(const DeStruct& d) {
    return std::tie(d.strName, d.strUnit, d.strUnitCode, d.strDeId, d.strDeCode, d.strFormula,
                    d.strAnnex);
}

// A reset changes the fields given: none is a usage error.
void ExpectFields(const ParsedArgs& args, const std::string& command) {
    for (const auto& [option, value] : args.values)
        if (option != "--qd")
            return;
    throw UsageError(Tr("{1} changes the fields given; give at least one (see {2} --help)",
                        {command, command.substr(0, command.find(' '))}));
}

// Where a quota item that is not where the command looked is: under a bill item, or on the
// configuration itself; "" when it is nowhere.
std::string WhereQuotaIs(const ConfigNode& config, const QdNode* lookedIn, int id) {
    for (const QdNode* qd : config.GetQd())
        if (qd != lookedIn && qd->GetDe(id))
            return Tr("it is under bill item {1}: use --qd {1}", {std::to_string(qd->GetId())});
    if (lookedIn && config.GetDe(id))
        return Tr("it hangs on the configuration itself: leave out --qd");
    return "";
}

int Qd(CliContext& ctx, const std::vector<std::string>& raw) {
    ParsedArgs args = ParseArgs(raw, kQdOptions);
    std::string action = args.positional.empty() ? "" : args.positional[0];
    CQdDeConfigPresenter& p = ctx.Presenter();
    std::vector<ConfigNode*> configs;
    if (action == "add") {
        const std::string usage = "qd add CATEGORY CONFIG-ID --number NUMBER [fields]";
        Target t = Resolve(ctx, args, 3, usage);
        ExpectCount(args, 3, usage);
        if (!args.Has("--number") || args.values.at("--number").empty())
            throw UsageError(Tr("a bill item needs --number"));
        QdStruct qd = ApplyQd(args, QdStruct());
        // The workbench's grid shows the bills of the project's bill library only.
        if (!args.Has("--code"))
            qd.strQdCode = CAtt().GetQdCode();
        CheckItemFields(ctx, t.path, args);
        CheckBillNumber(*t.config, qd.strQdId, 0);
        bool ok = p.AddQd(qd, t.path, configs);
        return FinishEdit(ctx, ok, t.category, ok ? t.config->GetLastQdId() : 0);
    }
    if (action == "reset") {
        const std::string usage = "qd reset CATEGORY CONFIG-ID QD-ID [fields]";
        Target t = Resolve(ctx, args, 4, usage);
        ExpectCount(args, 4, usage);
        t.path.QdId = ParseId(args.positional[3], "QD-ID");
        QdNode* qd = t.config->GetQd(t.path.QdId);
        if (!qd)
            throw UsageError(Tr("no bill item {1}", {args.positional[3]}));
        ExpectFields(args, "qd reset");
        CheckItemFields(ctx, t.path, args);
        const QdStruct record = ApplyQd(args, qd->m_qd);
        if (args.Has("--number"))
            CheckBillNumber(*t.config, record.strQdId, t.path.QdId);
        if (Fields(record) == Fields(qd->m_qd))
            return Refused(ctx, t.category,
                           Tr("bill item {1} holds these values already", {args.positional[3]}));
        return FinishEdit(ctx, p.ResetQd(t.path, record), t.category);
    }
    if (action == "delete") {
        if (!args.values.empty())
            throw UsageError(Tr("qd delete takes no field options"));
        Target t = Resolve(ctx, args, 4, "qd delete CATEGORY CONFIG-ID QD-ID...");
        std::set<int> ids = Ids(args, 3, "QD-ID", [&](int id) { return t.config->GetQd(id); });
        return FinishEdit(ctx, p.DelQd(t.path, ids), t.category);
    }
    throw UsageError(Tr("qd takes add, reset or delete"));
}

int De(CliContext& ctx, const std::vector<std::string>& raw) {
    ParsedArgs args = ParseArgs(raw, kDeOptions);
    std::string action = args.positional.empty() ? "" : args.positional[0];
    CQdDeConfigPresenter& p = ctx.Presenter();
    std::vector<ConfigNode*> configs;
    if (action != "add" && action != "reset" && action != "delete")
        throw UsageError(Tr("de takes add, reset or delete"));
    const std::string usage = "de " + action + " CATEGORY CONFIG-ID" +
                              (action == "add" ? "" : " DE-ID") + " [--qd QD-ID]";
    Target t = Resolve(ctx, args, action == "add" ? 3 : 4, usage);
    QdNode* qd = nullptr;
    if (args.Has("--qd")) {
        t.path.QdId = ParseId(args.values.at("--qd"), "QD-ID");
        qd = t.config->GetQd(t.path.QdId);
        if (!qd)
            throw UsageError(Tr("no bill item {1}", {args.values.at("--qd")}));
    }
    auto find = [&](int id) -> DeNode* { return qd ? qd->GetDe(id) : t.config->GetDe(id); };
    if (action == "add") {
        ExpectCount(args, 3, usage);
        DeStruct de = ApplyDe(args, DeStruct());
        if (de.strDeId.IsEmpty())
            throw UsageError(Tr("a quota item needs --number"));
        // The workbench's grid shows the quotas of the mode's quota library only.
        CAtt att;
        if (!args.Has("--code"))
            de.strDeCode = att.GetQdDeMode() == 0 ? att.GetQdDeCode() : att.GetDeCode();
        CheckItemFields(ctx, t.path, args);
        bool ok =
            qd ? p.AddDe2QdNode(de, t.path, configs) : p.AddDe2ConfigNode(de, t.path, configs);
        int id = qd ? qd->GetLastDeId() : t.config->GetLastDeId();
        return FinishEdit(ctx, ok, t.category, ok ? id : 0);
    }
    if (action == "reset") {
        ExpectCount(args, 4, usage);
        t.path.DeId = ParseId(args.positional[3], "DE-ID");
        DeNode* de = find(t.path.DeId);
        if (!de) {
            const std::string hint = WhereQuotaIs(*t.config, qd, t.path.DeId);
            throw UsageError(Tr("no quota item {1}", {args.positional[3]}) +
                             (hint.empty() ? "" : "; " + hint));
        }
        ExpectFields(args, "de reset");
        CheckItemFields(ctx, t.path, args);
        DeStruct record = ApplyDe(args, de->m_de);
        if (Fields(record) == Fields(de->m_de))
            return Refused(ctx, t.category,
                           Tr("quota item {1} holds these values already", {args.positional[3]}));
        bool ok = qd ? p.ResetDeToQd(t.path, record) : p.ResetDeToConfig(t.path, record);
        return FinishEdit(ctx, ok, t.category);
    }
    for (const auto& [option, value] : args.values)
        if (option != "--qd")
            throw UsageError(Tr("de delete takes no field options"));
    std::set<int> ids = Ids(
        args, 3, "DE-ID", [&](int id) { return find(id) != nullptr; },
        [&](int id) { return WhereQuotaIs(*t.config, qd, id); });
    bool ok = qd ? p.DelDeInQdNode(t.path, {{t.path.QdId, ids}}) : p.DelDeInConfigNode(t.path, ids);
    return FinishEdit(ctx, ok, t.category);
}

} // namespace

int FinishEdit(CliContext& ctx, bool ok, const std::string& category, int newId) {
    bool saved = ok && !ctx.Options().dryRun && ctx.Presenter().Save();
    if (ctx.Options().json) {
        Json result = Json::MakeObject().Set("ok", ok).Set("saved", saved);
        if (newId)
            result.Set("id", newId);
        result.Set("file", ctx.Presenter().GetData()->GetFilePath());
        PrintLine(result.Dump());
    } else {
        if (newId)
            PrintLine(std::to_string(newId));
        if (!ok)
            std::fprintf(stderr, "koqdde: %s\n", Tr("the operation was refused; nothing changed"));
        if (ctx.Options().dryRun) {
            PrintLine(Tr("(dry run: nothing saved)"));
            PrintCategory(ctx, category);
        }
    }
    return ok ? kExitTrue : kExitFalse;
}

std::vector<CommandSpec> EditCommands() {
    return {
        {"config", "add|copy|delete|up|down CATEGORY [CONFIG-ID]",
         TrNoop("add, copy, delete or move a configuration"),
         TrNoop(
             "add makes an empty configuration in front of the default one (其它) and prints its\n"
             "id; copy does the same with a copy of CONFIG-ID. up and down move a configuration\n"
             "one place; nothing passes the default, and a refused move exits 1. The default\n"
             "configuration can't be copied or deleted.\n\n"
             "Examples:\n  koqdde config add '给排水\\管道\\给水管'\n"
             "  koqdde config up '管道\\给水管' 3\n  koqdde --dry-run config delete '管道\\给水管' "
             "2"),
         Config},
        {"condition", "add|reset|delete CATEGORY CONFIG-ID [CONDITION-ID] CONDITION",
         TrNoop("add, replace or delete a condition"),
         TrNoop(
             "CONDITION is --attr NAME with either --eq VALUE / --ne VALUE (value form) or range\n"
             "bounds --gt/--ge LOWER and/or --lt/--le UPPER, or --strings followed by the eight\n"
             "strings: type, equal flag (non-zero: value form), equal operator, range operators 1\n"
             "and 2, value, ranges 1 and 2. add prints the new condition's id; a condition on an\n"
             "attribute the configuration tests already replaces that one, as in the workbench.\n"
             "Refused: an attribute the category lacks (--allow-unknown lets it through), a value\n"
             "outside a list that takes no typed value, a range on an attribute set to 不可比较,\n"
             "a bound that is no number, bounds swapped or closer than 0.01.\n\n"
             "Examples:\n  koqdde condition add '管道\\给水管' 2 --attr 材质 --eq 镀锌钢管\n"
             "  koqdde condition add '管道\\给水管' 2 --attr '管径(mm)' --gt 50 --le 100\n"
             "  koqdde condition reset '管道\\给水管' 2 1 --attr 材质 --ne PPR\n"
             "  koqdde condition delete '管道\\给水管' 2 1"),
         Condition},
        {"qd", "add|reset|delete CATEGORY CONFIG-ID [QD-ID...] [fields]",
         TrNoop("add, change or delete bill items"),
         TrNoop(
             "add prints the new bill item's id; reset changes only the fields given;\n"
             "delete takes one or more ids.\n"
             "Fields: --number N (strQdId), --user-number (strQdIdUser), --name,\n"
             "--unit, --unit-code (1 for m, 100 for 100m), --type-id (strtypeid),\n"
             "--code (default: the project's bill library), --formula (as the calculator\n"
             "takes it), --annex (是/否). The number follows the library's encoding rule and is\n"
             "taken once per configuration. A reset that changes nothing exits 1."
             "\n\nExamples:\n  koqdde qd add '管道\\给水管' 2 --number 031001001001 --name "
             "镀锌钢管 --unit m --unit-code 1\n  koqdde qd reset '管道\\给水管' 2 1 --formula L\n"
             "  koqdde qd delete '管道\\给水管' 2 1 3"),
         Qd},
        {"de", "add|reset|delete CATEGORY CONFIG-ID [DE-ID...] [--qd QD-ID] [fields]",
         TrNoop("add, change or delete quota items"),
         TrNoop(
             "Quota items hang under a bill item (--qd QD-ID, the bill mode) or directly under\n"
             "the configuration (the quota mode). add prints the new id; reset changes only the\n"
             "fields given. Fields: --number (strDeId), --name, --unit, --unit-code, --code\n"
             "(default: the quota library of the project's mode), --formula, --annex (是/否).\n\n"
             "Examples:\n  koqdde de add '管道\\给水管' 2 --qd 1 --number 10-1-12 --name "
             "镀锌钢管安装\n"
             "  koqdde de delete '管道\\给水管' 2 1 --qd 1"),
         De},
    };
}
