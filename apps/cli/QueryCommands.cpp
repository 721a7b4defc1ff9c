// tree, show, current: reading the configuration without changing it.
#include "Cli.h"
#include "Json.h"
#include "Listing.h"
#include "Translate.h"

#include "host/HostData.h"
#include "model/Spec.h"
#include "presenter/CQdDeConfigPresenter.h"

namespace {

std::string Text(const CString& s) {
    return ToUtf8(s);
}

Json ConfigSummary(const ConfigNode& config) {
    return Json::MakeObject()
        .Set("id", config.GetId())
        .Set("default", config.IfDefault())
        .Set("text", config.GetConditionString())
        .Set("lastConditionId", config.GetLastConditionId())
        .Set("lastQdId", config.GetLastQdId())
        .Set("lastDeId", config.GetLastDeId());
}

Json ConditionJson(const ConditionNode& c) {
    return Json::MakeObject()
        .Set("id", c.GetId())
        .Set("strCFType", c.GetCFType())
        .Set("bEqual", c.IsEqual())
        .Set("strEqualoperator", c.GetEqualOperator())
        .Set("strRangeoperator1", c.GetRangeOperator1())
        .Set("strRangeoperator2", c.GetRangeOperator2())
        .Set("strValue", c.GetValue())
        .Set("strRange1", c.GetRange1())
        .Set("strRange2", c.GetRange2())
        .Set("text", c.GetConditionString());
}

Json DeJson(const DeNode& de) {
    const DeStruct& d = de.m_de;
    return Json::MakeObject()
        .Set("id", de.GetId())
        .Set("strName", d.strName)
        .Set("strUnit", d.strUnit)
        .Set("strUnitCode", d.strUnitCode)
        .Set("strDeId", d.strDeId)
        .Set("strDeCode", d.strDeCode)
        .Set("strFormula", d.strFormula)
        .Set("strAnnex", d.strAnnex);
}

Json QdJson(const QdNode& qd) {
    const QdStruct& q = qd.m_qd;
    Json quotas = Json::MakeArray();
    for (DeNode* de : qd.GetDe())
        quotas.Push(DeJson(*de));
    return Json::MakeObject()
        .Set("id", qd.GetId())
        .Set("strQdId", q.strQdId)
        .Set("strQdIdUser", q.strQdIdUser)
        .Set("strName", q.strName)
        .Set("strUnit", q.strUnit)
        .Set("strUnitCode", q.strUnitCode)
        .Set("strtypeid", q.strtypeid)
        .Set("strQdCode", q.strQdCode)
        .Set("strFormula", q.strFormula)
        .Set("strAnnex", q.strAnnex)
        .Set("lastDeId", qd.GetLastDeId())
        .Set("de", std::move(quotas));
}

Json ConfigDetail(const ConfigNode& config) {
    Json conditions = Json::MakeArray();
    for (ConditionNode* c : config.GetCondition())
        conditions.Push(ConditionJson(*c));
    Json bills = Json::MakeArray();
    for (QdNode* qd : config.GetQd())
        bills.Push(QdJson(*qd));
    Json quotas = Json::MakeArray();
    for (DeNode* de : config.GetDe())
        quotas.Push(DeJson(*de));
    return ConfigSummary(config)
        .Set("conditions", std::move(conditions))
        .Set("qd", std::move(bills))
        .Set("de", std::move(quotas));
}

std::string DeLine(const DeNode& de) {
    const DeStruct& d = de.m_de;
    return "de " + std::to_string(de.GetId()) + ": " + Text(d.strDeId) + " " + Text(d.strName) +
           " [" + Text(d.strUnit) + ", x" + Text(d.strUnitCode) + "] code=" + Text(d.strDeCode) +
           " formula=" + Text(d.strFormula) + " annex=" + Text(d.strAnnex);
}

int Tree(CliContext& ctx, const std::vector<std::string>& args) {
    if (!args.empty())
        throw UsageError(Tr("tree takes no arguments"));
    const Spec& spec = ctx.Tree();
    CString file = ctx.Presenter().GetData()->GetFilePath();
    if (ctx.Options().json) {
        Json larges = Json::MakeArray();
        for (LMember* large : spec.GetAllLMember()) {
            Json smalls = Json::MakeArray();
            for (SMember* small : large->GetAllSMember()) {
                Json configs = Json::MakeArray();
                for (ConfigNode* config : small->GetAllConfig())
                    configs.Push(ConfigSummary(*config));
                smalls.Push(Json::MakeObject()
                                .Set("id", small->GetId())
                                .Set("name", small->GetName())
                                .Set("lastConfigId", small->GetLastConfigId())
                                .Set("configs", std::move(configs)));
            }
            larges.Push(Json::MakeObject()
                            .Set("id", large->GetId())
                            .Set("name", large->GetName())
                            .Set("small", std::move(smalls)));
        }
        Json doc = Json::MakeObject()
                       .Set("file", file)
                       .Set("spec", Json::MakeObject()
                                        .Set("id", spec.GetId())
                                        .Set("name", spec.GetSpecName())
                                        .Set("large", std::move(larges)));
        PrintLine(doc.Dump());
        return kExitTrue;
    }
    PrintLine("file: " + Text(file));
    PrintLine(Text(spec.GetSpecName()) + " (" + std::to_string(spec.GetId()) + ")");
    for (LMember* large : spec.GetAllLMember()) {
        PrintLine("  " + Text(large->GetName()) + " (" + std::to_string(large->GetId()) + ")");
        for (SMember* small : large->GetAllSMember()) {
            PrintLine("    " + Text(small->GetName()) + " (" + std::to_string(small->GetId()) +
                      "), last config id " + std::to_string(small->GetLastConfigId()));
            for (ConfigNode* config : small->GetAllConfig())
                PrintLine("      config " + std::to_string(config->GetId()) +
                          (config->IfDefault() ? " (default)" : "") + ": " +
                          Text(config->GetConditionString()));
        }
    }
    return kExitTrue;
}

} // namespace

Json ConfigJson(const ConfigNode& config) {
    return ConfigDetail(config);
}

void PrintCategory(CliContext& ctx, const std::string& category) {
    const SMember* small = nullptr;
    CPath path = ctx.ResolveCategory(Arg(category), &small);
    std::vector<ConfigNode*> configs;
    ctx.Presenter().GetConfig(path, configs);
    if (ctx.Options().json) {
        Json list = Json::MakeArray();
        for (ConfigNode* config : configs)
            list.Push(ConfigDetail(*config));
        PrintLine(Json::MakeObject()
                      .Set("category", Arg(category))
                      .Set("spec", path.SpecId)
                      .Set("large", path.LMemberId)
                      .Set("small", path.SMemberId)
                      .Set("name", small->GetName())
                      .Set("lastConfigId", small->GetLastConfigId())
                      .Set("configs", std::move(list))
                      .Dump());
        return;
    }
    PrintLine(category + " (" + std::to_string(path.SpecId) + "/" + std::to_string(path.LMemberId) +
              "/" + std::to_string(path.SMemberId) + "), " + std::to_string(configs.size()) +
              " configuration(s)");
    for (ConfigNode* config : configs)
        PrintConfig(*config);
}

void PrintConfig(const ConfigNode& config) {
    PrintLine("config " + std::to_string(config.GetId()) +
              (config.IfDefault() ? " (default)" : "") + ": " + Text(config.GetConditionString()));
    for (ConditionNode* c : config.GetCondition())
        PrintLine("  condition " + std::to_string(c->GetId()) + ": " +
                  Text(c->GetConditionString()) + "  [type=" + Text(c->GetCFType()) +
                  " equal=" + (c->IsEqual() ? "1" : "0") + " op=" + Text(c->GetEqualOperator()) +
                  " value=" + Text(c->GetValue()) + " op1=" + Text(c->GetRangeOperator1()) +
                  " range1=" + Text(c->GetRange1()) + " op2=" + Text(c->GetRangeOperator2()) +
                  " range2=" + Text(c->GetRange2()) + "]");
    for (QdNode* qd : config.GetQd()) {
        const QdStruct& q = qd->m_qd;
        PrintLine("  qd " + std::to_string(qd->GetId()) + ": " + Text(q.strQdId) + " " +
                  Text(q.strName) + " [" + Text(q.strUnit) + ", x" + Text(q.strUnitCode) +
                  "] code=" + Text(q.strQdCode) + " formula=" + Text(q.strFormula) + " annex=" +
                  Text(q.strAnnex) + " user=" + Text(q.strQdIdUser) + " type=" + Text(q.strtypeid));
        for (DeNode* de : qd->GetDe())
            PrintLine("    " + DeLine(*de));
    }
    for (DeNode* de : config.GetDe())
        PrintLine("  " + DeLine(*de));
}

namespace {

int Show(CliContext& ctx, const std::vector<std::string>& raw) {
    std::vector<std::string> args = ParseArgs(raw, {}).positional;
    if (args.size() != 1)
        throw UsageError(Tr("show takes one CATEGORY"));
    PrintCategory(ctx, args[0]);
    return kExitTrue;
}

int Current(CliContext& ctx, const std::vector<std::string>& args) {
    if (!args.empty())
        throw UsageError(Tr("current takes no arguments"));
    CQdDeConfigPresenter& presenter = ctx.Presenter();
    CString name = presenter.GetCurConfig();
    CString path = presenter.GetCurConfigDetailPath();
    if (ctx.Options().json)
        PrintLine(Json::MakeObject().Set("name", name).Set("path", path).Dump());
    else
        PrintLine(Text(name) + "\n" + Text(path));
    return kExitTrue;
}

const HostSmallCategory& HostSmall(CliContext& ctx, const std::string& category) {
    const CPath path = ctx.ResolveCategory(Arg(category));
    const HostData* host = CurrentHostData();
    const HostSmallCategory* small =
        host ? host->FindSmall(path.SpecId, path.LMemberId, path.SMemberId) : nullptr;
    if (!small)
        throw UsageError(Tr("the project's catalog has no small category \"{1}\"", {category}));
    return *small;
}

int Attrs(CliContext& ctx, const std::vector<std::string>& raw) {
    ParsedArgs args = ParseArgs(raw, {}, {"--values"});
    if (args.positional.size() != 1)
        throw UsageError(Tr("attrs takes one CATEGORY"));
    const HostSmallCategory& small = HostSmall(ctx, args.positional[0]);
    const bool values = args.flags.count("--values") > 0;
    const HostData& host = *CurrentHostData();
    auto listOf = [&](const HostAttribute& attribute) -> const CStringArray* {
        auto it = host.dropLists.find(attribute.dropKey);
        return attribute.dropKey.IsEmpty() || it == host.dropLists.end() ? nullptr : &it->second;
    };
    if (ctx.Options().json) {
        Json list = Json::MakeArray();
        for (const HostAttribute& attribute : small.attributes) {
            Json item = Json::MakeObject()
                            .Set("name", attribute.name)
                            .Set("field", attribute.field)
                            .Set("code", attribute.code)
                            .Set("list", attribute.dropKey);
            if (values) {
                Json items = Json::MakeArray();
                if (const CStringArray* drop = listOf(attribute))
                    for (const CString& value : *drop)
                        items.Push(value);
                item.Set("values", std::move(items));
            }
            list.Push(std::move(item));
        }
        PrintLine(Json::MakeObject()
                      .Set("category", Arg(args.positional[0]))
                      .Set("attributes", std::move(list))
                      .Dump());
        return kExitTrue;
    }
    for (const HostAttribute& attribute : small.attributes) {
        const CStringArray* drop = listOf(attribute);
        PrintLine(Text(attribute.name) + (drop ? "  (list " + Text(attribute.dropKey) + ")" : ""));
        if (values && drop)
            for (const CString& value : *drop)
                PrintLine("    " + Text(value));
    }
    return kExitTrue;
}

// One line per small category of the project's specialty, from its catalog, so that nothing
// is read or created; the shell completion reads these.
int Categories(CliContext&, const std::vector<std::string>& args) {
    if (!args.empty())
        throw UsageError(Tr("categories takes no arguments"));
    for (const std::string& line : CatalogCategories(*CurrentHostData()))
        PrintLine(line);
    return kExitTrue;
}

} // namespace

std::vector<std::string> CatalogCategories(const HostData& host) {
    std::vector<std::string> lines;
    if (const HostSpecialty* spec = host.FindSpec(host.project.currentSpec))
        for (const HostLargeCategory& large : spec->larges)
            for (const HostSmallCategory& small : large.smalls)
                lines.push_back(Text(large.name) + "\\" + Text(small.name));
    return lines;
}

std::vector<CommandSpec> QueryCommands() {
    return {
        {"tree", "", TrNoop("the current specialty's categories and configurations"),
         TrNoop(
             "Lists the categories of the project's current specialty with the configurations of\n"
             "each small category, as the configuration file holds them.\n\n"
             "Example:\n  koqdde tree\n  koqdde --json --file /tmp/a.xml tree"),
         Tree},
        {"show", "CATEGORY", TrNoop("one small category's configurations in full"),
         TrNoop("CATEGORY is \"专业\\大类\\小类\" or \"大类\\小类\" in the current specialty ('/' "
                "may\n"
                "stand for '\\' when the names hold none).\n\n"
                "Example:\n  koqdde show '给排水\\管道\\给水管'"),
         Show},
        {"current", "", TrNoop("the current configuration's name and path"),
         TrNoop(
             "Prints the name recorded for the project (DefaultConfig when none) and the file it\n"
             "means in the configuration folder."),
         Current},
        {"categories", "", TrNoop("the small categories, one per line"),
         TrNoop("Prints LARGE\\SMALL for each small category of the specialty, as CATEGORY\n"
                "arguments take it.\n\nExample:\n  koqdde categories | grep 管"),
         Categories},
        {"attrs", "CATEGORY [--values]", TrNoop("a small category's attributes and their lists"),
         TrNoop("Lists the attributes a condition of CATEGORY may test, as the project's catalog\n"
                "gives them, with the drop-down list each takes its values from; --values prints\n"
                "the list's values under each attribute.\n\n"
                "Example:\n  koqdde attrs '管道\\给水管' --values"),
         Attrs},
    };
}
