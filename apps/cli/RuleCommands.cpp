// match: which configuration a component receives, and why, by the one matching rule.
#include "Cli.h"
#include "FindingText.h"
#include "Guards.h"
#include "Json.h"
#include "Listing.h"
#include "Translate.h"
#include "VerdictText.h"

#include "host/HostData.h"
#include "model/ConditionNode.h"
#include "model/ConfigNode.h"
#include "model/LMember.h"
#include "model/SMember.h"
#include "model/Spec.h"
#include "rules/Linter.h"
#include "rules/Matcher.h"

namespace {

// "材质=镀锌钢管" pairs; an attribute is one the category's catalog or its conditions name,
// so that a typo does not silently read as an absent attribute.
Component ParseComponent(const std::vector<std::string>& pairs, const std::vector<CString>& known) {
    Component component;
    std::vector<std::string> names;
    for (const CString& name : known)
        names.push_back(ToUtf8(name));
    for (const std::string& pair : pairs) {
        const size_t eq = pair.find('=');
        if (eq == std::string::npos || eq == 0)
            throw UsageError(Tr("\"{1}\" is no ATTRIBUTE=VALUE", {pair}));
        const std::string name = pair.substr(0, eq);
        if (std::find(names.begin(), names.end(), name) == names.end())
            throw UsageError(Tr("the category has no attribute \"{1}\"", {name}) +
                             DidYouMean(name, names) + Tr(" (koqdde attrs CATEGORY lists them)"));
        component[FromUtf8(name)] = FromUtf8(pair.substr(eq + 1));
    }
    return component;
}

const char* VerdictName(Verdict verdict) {
    switch (verdict) {
    case Verdict::kHeld:
        return "held";
    case Verdict::kValueDiffers:
        return "valueDiffers";
    case Verdict::kValueEquals:
        return "valueEquals";
    case Verdict::kNotANumber:
        return "notANumber";
    case Verdict::kBadBound:
        return "badBound";
    case Verdict::kBelowLower:
        return "belowLower";
    case Verdict::kAboveUpper:
        return "aboveUpper";
    }
    return "";
}

std::string Position(size_t index) {
    return "#" + std::to_string(index + 1);
}

int MatchCommand(CliContext& ctx, const std::vector<std::string>& raw) {
    ParsedArgs args = ParseArgs(raw, {});
    if (args.positional.empty())
        throw UsageError(Tr("usage: match CATEGORY ATTRIBUTE=VALUE..."));
    const std::string category = args.positional[0];
    CPath path = ctx.ResolveCategory(Arg(category));
    std::vector<ConfigNode*> configs;
    ctx.Presenter().GetConfig(path, configs);

    std::vector<CString> known;
    if (const HostData* host = CurrentHostData())
        if (const HostSmallCategory* small =
                host->FindSmall(path.SpecId, path.LMemberId, path.SMemberId))
            for (const HostAttribute& attribute : small->attributes)
                known.push_back(attribute.name);
    for (const CString& name : TestedAttributes(configs))
        known.push_back(name);
    const Component component =
        ParseComponent({args.positional.begin() + 1, args.positional.end()}, known);
    const MatchResult result = Match(configs, component);
    const ConfigNode* winner = result.Winner();

    if (ctx.Options().json) {
        Json attributes = Json::MakeObject();
        for (const auto& [name, value] : component)
            attributes.Set(ToUtf8(name), value);
        Json trials = Json::MakeArray();
        for (size_t i = 0; i < result.trials.size(); ++i) {
            const ConfigTrial& trial = result.trials[i];
            Json conditions = Json::MakeArray();
            for (const ConditionTrial& c : trial.conditions)
                conditions.Push(Json::MakeObject()
                                    .Set("id", c.condition->GetId())
                                    .Set("text", c.condition->GetConditionString())
                                    .Set("attribute", c.condition->GetCFType())
                                    .Set("componentValue", c.attributeText)
                                    .Set("held", c.Held())
                                    .Set("verdict", VerdictName(c.verdict))
                                    .Set("reason", VerdictText(c)));
            trials.Push(Json::MakeObject()
                            .Set("id", trial.config->GetId())
                            .Set("position", static_cast<int>(i + 1))
                            .Set("default", trial.config->IfDefault())
                            .Set("matched", trial.Matched())
                            .Set("conditions", std::move(conditions)));
        }
        PrintLine(Json::MakeObject()
                      .Set("category", Arg(category))
                      .Set("component", std::move(attributes))
                      .Set("tried", std::move(trials))
                      .Set("receives", winner ? ConfigJson(*winner) : Json())
                      .Dump());
        return winner ? kExitTrue : kExitFalse;
    }
    for (size_t i = 0; i < result.trials.size(); ++i) {
        const ConfigTrial& trial = result.trials[i];
        PrintLine(Position(i) + " config " + std::to_string(trial.config->GetId()) +
                  (trial.config->IfDefault() ? " (default)" : "") + ": " +
                  (trial.Matched() ? Tr("matches") : Tr("does not match")));
        for (const ConditionTrial& c : trial.conditions)
            PrintLine("  " + ToUtf8(c.condition->GetConditionString()) + ": " + VerdictText(c));
    }
    if (!winner) {
        PrintLine(Tr("no configuration matches: the category has no default configuration"));
        return kExitFalse;
    }
    PrintLine(Tr("receives {1}:", {Position(result.trials.size() - 1)}));
    PrintConfig(*winner);
    return kExitTrue;
}

// Renumbers the shared condition ids of every configuration of the specialty.
int RenumberAll(const Spec& spec) {
    int renumbered = 0;
    for (const LMember* large : spec.GetAllLMember())
        for (const SMember* small : large->GetAllSMember())
            for (ConfigNode* config : small->GetAllConfig())
                renumbered += RenumberSharedConditionIds(*config);
    return renumbered;
}

std::string Place(const Finding& f) {
    return ToUtf8(f.category) + (f.configId ? " #" + std::to_string(f.position) + " (config " +
                                                  std::to_string(f.configId) + ")"
                                            : "");
}

int Lint(CliContext& ctx, const std::vector<std::string>& raw) {
    ParsedArgs args = ParseArgs(raw, {}, {"--fix"});
    if (args.positional.size() > 1)
        throw UsageError(Tr("lint takes at most one FILE"));
    if (!args.positional.empty() && !ctx.Options().file.IsEmpty())
        throw UsageError(Tr("give the file either as FILE or with --file, not both"));
    if (!args.positional.empty())
        ctx.UseFile(Arg(args.positional[0]));
    // A check reads; it never makes the file it was asked about.
    ExpectExisting(ctx.File());
    const bool fix = args.flags.count("--fix") > 0;
    if (fix)
        ctx.LockForEdit(ctx.File());
    CQdDeConfigPresenter& presenter = ctx.Presenter();
    const CString file = presenter.GetData()->GetFilePath();

    int renumbered = 0;
    if (fix) {
        renumbered = RenumberAll(ctx.Tree());
        if (renumbered && !ctx.Options().dryRun && !presenter.Save())
            throw std::runtime_error(Tr("the renumbered conditions could not be saved"));
    }
    const std::vector<Finding> findings = LintOpenFile(presenter);
    int errors = 0;
    for (const Finding& f : findings)
        errors += f.severity == Severity::kError ? 1 : 0;

    if (ctx.Options().json) {
        Json list = Json::MakeArray();
        for (const Finding& f : findings) {
            Json values = Json::MakeArray();
            for (const std::string& arg : f.args)
                values.Push(arg);
            list.Push(Json::MakeObject()
                          .Set("severity", f.severity == Severity::kError ? "error" : "warning")
                          .Set("kind", FindingKindName(f.kind))
                          .Set("category", f.category)
                          .Set("configId", f.configId)
                          .Set("position", f.position)
                          .Set("message", FindingText(f))
                          .Set("args", std::move(values)));
        }
        PrintLine(Json::MakeObject()
                      .Set("file", file)
                      .Set("errors", errors)
                      .Set("warnings", static_cast<int>(findings.size()) - errors)
                      .Set("renumbered", renumbered)
                      .Set("saved", renumbered > 0 && !ctx.Options().dryRun)
                      .Set("findings", std::move(list))
                      .Dump());
    } else {
        for (const Finding& f : findings)
            PrintLine(SeverityText(f.severity) + ": " + Place(f) + ": " + FindingText(f));
        if (renumbered)
            PrintLine(ctx.Options().dryRun ? Tr("{1} condition(s) would be renumbered (dry run)",
                                                {std::to_string(renumbered)})
                                           : Tr("{1} condition(s) renumbered and saved",
                                                {std::to_string(renumbered)}));
        PrintLine(Tr("{1}: {2} error(s), {3} warning(s)",
                     {ToUtf8(file), std::to_string(errors),
                      std::to_string(findings.size() - static_cast<size_t>(errors))}));
    }
    return errors ? kExitFalse : kExitTrue;
}

} // namespace

std::vector<CommandSpec> RuleCommands() {
    return {
        {"match", "CATEGORY ATTRIBUTE=VALUE...",
         TrNoop("which configuration a component receives, and why"),
         TrNoop("Tries the configurations of CATEGORY in order on a component with these\n"
                "attribute values, as the host does (docs/matching.md): each condition held\n"
                "or failed and why, up to the first configuration that matches, then the bill\n"
                "and quota items that configuration gives. An attribute not given reads as\n"
                "empty. Exits 1 when nothing matches (a category without its default).\n\n"
                "Example:\n  koqdde match '管道\\给水管' 材质=镀锌钢管 '管径(mm)=32'"),
         MatchCommand},
        {"lint", "[FILE] [--fix]",
         TrNoop("check a configuration for rules that do not do what "
                "they seem to"),
         TrNoop("Reports, with the category, the configuration's place and id and a reason:\n"
                "configurations that never match because one above catches first, ranges\n"
                "that are empty, too narrow, conflicting or overlapping, bounds and values\n"
                "that can't match, conditions on attributes the category lacks, items the\n"
                "workbench hides or the host can't compute, bill numbers given twice,\n"
                "conditions sharing an id, a specialty written twice, categories the project\n"
                "lacks. Exits 1 when there are errors, 0 when only warnings or nothing.\n"
                "--fix renumbers conditions that share an id, the one repair it makes, and\n"
                "saves (not under --dry-run). FILE: the file to check (default: --file or the\n"
                "current configuration).\n\n"
                "Examples:\n  koqdde lint\n  koqdde --json lint /tmp/模板.xml\n"
                "  koqdde lint --fix"),
         Lint},
    };
}
