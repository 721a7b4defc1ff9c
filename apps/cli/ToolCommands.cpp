// attr, head: the attribute settings and the binary head of a configuration file.
#include "Cli.h"
#include "Guards.h"
#include "Json.h"
#include "Translate.h"

#include "host/QvKoSettings/QvKoSettings.h"
#include "model/Spec.h"
#include "platform/ComError.h"
#include "platform/FileSystem.h"
#include "presenter/CAutoQdDeConfigFacade.h"
#include "store/CAttrConfigStore.h"
#include "store/ConfigFileCheck.h"
#include "store/FileHeadReader.h"

#include <cstdio>

namespace {

Json RecordJson(const std::string& key, const AttrConfig& r) {
    return Json::MakeObject()
        .Set("key", key)
        .Set("name", r.name)
        .Set("namecode", r.namecode)
        .Set("vartype", r.vartype)
        .Set("compar", r.compar)
        .Set("specrelation", r.specrelation);
}

void PrintRecord(CliContext& ctx, const std::string& key, const AttrConfig& r) {
    if (ctx.Options().json) {
        PrintLine(RecordJson(key, r).Dump());
        return;
    }
    PrintLine(key + ": name=" + ToUtf8(r.name) + " namecode=" + ToUtf8(r.namecode) +
              " vartype=" + std::to_string(r.vartype) + " compar=" + std::to_string(r.compar) +
              " specrelation=" + std::to_string(r.specrelation));
}

int ParseSetting(const std::string& text, const std::string& option, int max) {
    int value = ParseId(text, option);
    if (value > max)
        throw UsageError(Tr("{1} must be 0 to {2}", {option, std::to_string(max)}));
    return value;
}

int Attr(CliContext& ctx, const std::vector<std::string>& raw) {
    ParsedArgs args = ParseArgs(raw, {"--vartype", "--compar", "--specrelation"});
    std::string action = args.positional.empty() ? "" : args.positional[0];
    if (action == "generate") {
        if (args.positional.size() != 1 || !args.values.empty())
            throw UsageError(Tr("usage: {1}", {"attr generate"}));
        RefuseDryRun(ctx, "attr generate",
                     Tr("it writes AttrConfig.xml at once; try it on a copy of the configuration "
                        "folder (--config-dir DIR)"));
        // The facade's generation, with the store at hand to say why it failed.
        CAttrConfigStore generator;
        try {
            generator.Save();
        } catch (const ComError&) {
            if (generator.LastError().empty())
                throw;
            throw UsageError(
                Tr("cannot generate the attribute settings: {1}", {generator.LastError()}));
        }
        CString file = JoinPath(QvKoSettings::GetAppProfile().GetConfigPath(), L"AttrConfig.xml");
        if (ctx.Options().json)
            PrintLine(Json::MakeObject().Set("ok", true).Set("file", file).Dump());
        else
            PrintLine(ToUtf8(file));
        return kExitTrue;
    }
    if (action != "get" && action != "set")
        throw UsageError(Tr("attr takes generate, get or set"));
    if (args.positional.size() != 3)
        throw UsageError(Tr("usage: {1}", {"attr " + action + " CATEGORY ATTRIBUTE"}));
    if (action == "get" && !args.values.empty())
        throw UsageError(Tr("attr get takes no options"));
    if (const std::string& why = ctx.Presenter().AttConfigError(); !why.empty())
        throw UsageError(Tr("cannot use the attribute settings: {1}", {why}));
    CString first = ctx.SmallCategoryPath(ctx.ResolveCategory(Arg(args.positional[1])));
    CString second = Arg(args.positional[2]);
    std::string key = ToUtf8(first + second);
    CQdDeConfigPresenter& p = ctx.Presenter();
    AttrConfig record;
    if (!p.GetAttConfig(first, second, record)) {
        std::fprintf(
            stderr, "koqdde: %s\n",
            Tr("no attribute setting for \"{1}\" (attr generate makes them)", {key}).c_str());
        return kExitFalse;
    }
    if (action == "set") {
        if (args.values.empty())
            throw UsageError(Tr("attr set needs --vartype, --compar or --specrelation"));
        if (args.Has("--vartype"))
            record.vartype = ParseSetting(args.values.at("--vartype"), "--vartype", 2);
        if (args.Has("--compar"))
            record.compar = ParseSetting(args.values.at("--compar"), "--compar", 1);
        if (args.Has("--specrelation"))
            record.specrelation =
                ParseSetting(args.values.at("--specrelation"), "--specrelation", 1);
        if (!p.SetAttConfig(first, second, record))
            return kExitFalse;
        p.GetAttConfig(first, second, record);
    }
    PrintRecord(ctx, key, record);
    return kExitTrue;
}

std::string TagName(std::uint32_t tag) {
    switch (tag) {
    case 1001:
        return "kind";
    case 1011:
        return "version";
    case 1002:
        return "mode";
    case 1003:
        return "bill library";
    case 1004:
        return "quota library";
    case 1000:
        return "body";
    default:
        return "unknown";
    }
}

std::string ReadOrFail(const std::string& file) {
    ExpectExisting(Arg(file));
    std::optional<std::string> bytes = ReadFileBytes(Arg(file));
    if (!bytes)
        throw UsageError(Tr("cannot read \"{1}\"", {file}));
    return *bytes;
}

// head write FILE [OUT]: stamps FILE and puts the head ahead of it, in place or into OUT.
int HeadWrite(CliContext& ctx, const ParsedArgs& args) {
    if (args.positional.size() != 2 && args.positional.size() != 3)
        throw UsageError(Tr("usage: {1}", {"head write FILE [OUT]"}));
    const std::string& file = args.positional[1];
    const std::string& target = args.positional.back();
    const std::string before = ReadOrFail(file);
    ExpectFolderOf(Arg(target), "OUT");
    // Only a configuration has the root the stamp goes on; a headed file has none.
    if (!ConfigLoadError(Arg(file)).empty()) {
        std::fprintf(stderr, "koqdde: %s\n",
                     Tr("no configuration root in the file; nothing written"));
        if (ctx.Options().json)
            PrintLine(Json::MakeObject().Set("ok", false).Set("file", target).Dump());
        return kExitFalse;
    }
    const bool replaces = MayReplace(ctx, Arg(target), "head write");
    if (ctx.Options().dryRun)
        return ReportPlan(ctx, true, Arg(target),
                          {Tr("dry run: nothing done; head write would stamp {1} with the "
                              "project's mode and libraries and write it with the binary head "
                              "to {2}",
                              {file, target})},
                          replaces);
    if (replaces)
        KeepBackup(Arg(target));
    if (target != file && !WriteFileAtomically(Arg(target), before))
        throw UsageError(Tr("cannot write \"{1}\"", {target}));
    CAutoQdDeConfigFacade::WriteHead(Arg(target));
    const bool headed = ReadOrFail(target) != before;
    if (!headed)
        std::fprintf(stderr, "koqdde: %s\n",
                     Tr("no configuration root in the file; nothing written"));
    if (ctx.Options().json)
        PrintLine(Json::MakeObject().Set("ok", headed).Set("file", target).Dump());
    return headed ? kExitTrue : kExitFalse;
}

int Head(CliContext& ctx, const std::vector<std::string>& raw) {
    ParsedArgs args = ParseArgs(raw, {});
    std::string action = args.positional.empty() ? "" : args.positional[0];
    if (action == "write")
        return HeadWrite(ctx, args);
    if (action == "read") {
        if (args.positional.size() != 2)
            throw UsageError(Tr("usage: {1}", {"head read FILE"}));
        std::vector<FileHeadRecord> records;
        std::string error;
        if (!ReadFileHead(ReadOrFail(args.positional[1]), records, error)) {
            std::fprintf(stderr, "koqdde: %s\n", error.c_str());
            return kExitFalse;
        }
        Json list = Json::MakeArray();
        for (const auto& r : records) {
            bool body = r.tag == 1000;
            if (ctx.Options().json) {
                Json item = Json::MakeObject()
                                .Set("tag", static_cast<long long>(r.tag))
                                .Set("name", TagName(r.tag))
                                .Set("length", static_cast<long long>(r.payload.size()));
                if (!body)
                    item.Set("text", ToUtf8(FromUtf8(r.payload)));
                list.Push(std::move(item));
            } else {
                PrintLine(std::to_string(r.tag) + " " + TagName(r.tag) + " (" +
                          std::to_string(r.payload.size()) + " bytes)" +
                          (body ? "" : ": " + ToUtf8(FromUtf8(r.payload))));
            }
        }
        if (ctx.Options().json)
            PrintLine(Json::MakeObject().Set("records", std::move(list)).Dump());
        return kExitTrue;
    }
    if (action == "strip") {
        if (args.positional.size() != 3)
            throw UsageError(Tr("usage: {1}", {"head strip FILE OUT"}));
        std::string body;
        std::string error;
        if (!ExtractHeadBody(ReadOrFail(args.positional[1]), body, error)) {
            std::fprintf(stderr, "koqdde: %s\n", error.c_str());
            return kExitFalse;
        }
        const CString out = Arg(args.positional[2]);
        ExpectFolderOf(out, "OUT");
        const bool replaces = MayReplace(ctx, out, "head strip");
        if (ctx.Options().dryRun)
            return ReportPlan(
                ctx, true, out,
                {Tr("dry run: nothing done; head strip would write the {1} bytes "
                    "of the configuration inside {2} to {3}",
                    {std::to_string(body.size()), args.positional[1], args.positional[2]})},
                replaces);
        if (replaces)
            KeepBackup(out);
        if (!WriteFileAtomically(out, body))
            throw UsageError(Tr("cannot write \"{1}\"", {args.positional[2]}));
        if (ctx.Options().json)
            PrintLine(Json::MakeObject().Set("ok", true).Set("file", args.positional[2]).Dump());
        return kExitTrue;
    }
    throw UsageError(Tr("head takes write, read or strip"));
}

} // namespace

std::vector<CommandSpec> ToolCommands() {
    return {
        {"attr", "generate | get CATEGORY ATTRIBUTE | set CATEGORY ATTRIBUTE [settings]",
         TrNoop("attribute settings (AttrConfig.xml)"),
         TrNoop(
             "generate builds AttrConfig.xml in the configuration folder from the project's\n"
             "categories and AttributeInformation.xml. get prints one attribute's record of the\n"
             "current specialty. set changes --vartype (0 drop-down, 1 drop-down or typed, 2 "
             "typed),\n"
             "--compar (1 comparable) or --specrelation (0 depends on the material) for the rest\n"
             "of this process only: the store keeps such changes in memory and never writes them,\n"
             "so set just shows the record as it would be.\n\n"
             "Examples:\n  koqdde attr generate\n  koqdde attr get '管道\\给水管' 材质\n"
             "  koqdde attr set '管道\\给水管' 材质 --compar 1"),
         Attr},
        {"head", "write FILE [OUT] | read FILE | strip FILE OUT",
         TrNoop("the binary head of a configuration file"),
         TrNoop(
             "write stamps FILE's root with the project's mode and libraries and puts the binary\n"
             "head ahead of it, into OUT or in place (the result no longer opens as a\n"
             "configuration). read lists the six records with tag, length and text. strip writes\n"
             "the XML body of a headed FILE to OUT, so a headed file can be opened again. A file\n"
             "that exists is replaced only with --force, and kept as FILE.bak.\n\n"
             "Examples:\n  koqdde head write 配置.xml /tmp/发布.xml\n  koqdde head read "
             "/tmp/发布.xml\n"
             "  koqdde head strip /tmp/发布.xml /tmp/恢复.xml"),
         Head},
    };
}
