// open, new, save-as, refresh, import: choosing and copying configuration files. The project
// records the current configuration by its name alone and always reads it from the
// configuration folder, so only a file of that folder can become current; import copies one
// there.
#include "Cli.h"
#include "Guards.h"
#include "Json.h"
#include "Translate.h"

#include "platform/ComError.h"
#include "platform/FileSystem.h"
#include "store/ConfigFileCheck.h"

#include <cstdio>
#include <filesystem>

namespace {

int Report(CliContext& ctx, bool ok, const CString& file) {
    if (ctx.Options().json)
        PrintLine(Json::MakeObject().Set("ok", ok).Set("file", file).Dump());
    return ok ? kExitTrue : kExitFalse;
}

CString OneFile(const std::vector<std::string>& raw, const char* command) {
    std::vector<std::string> args = ParseArgs(raw, {}).positional;
    if (args.size() != 1 || args[0].empty())
        throw UsageError(Tr("{1} takes one FILE", {command}));
    return Arg(args[0]);
}

// A name the record of the current configuration can hold whole.
void ExpectConfigName(const CString& name) {
    // An empty name is recorded as none, which means the default: the store allows that.
    if (!name.IsEmpty() && !CQdDeConfigPresenter::IsConfigName(name))
        throw UsageError(
            Tr("\"{1}\" can't be recorded as the current configuration: a name "
               "has at most {2} characters and no control characters",
               {ToUtf8(name), std::to_string(CQdDeConfigPresenter::kMaxConfigNameLength)}));
}

bool InConfigFolder(const CString& file) {
    namespace fs = std::filesystem;
    std::error_code ec;
    const fs::path folder =
        fs::weakly_canonical(fs::path(ToUtf8(CQdDeConfigPresenter::ConfigFolder())), ec);
    const fs::path parent = fs::weakly_canonical(fs::absolute(ToUtf8(file)).parent_path(), ec);
    return !ec && folder == parent;
}

// A file that is to become current: a name the record holds, in the configuration folder.
CString CurrentCandidate(const std::vector<std::string>& raw, const char* command) {
    CString file = OneFile(raw, command);
    ExpectConfigName(CQdDeConfigPresenter::ConfigNameOf(file));
    CQdDeConfigPresenter::ConfigFolder(); // made on demand, as the presenter makes it
    ExpectFolderOf(file, "FILE");
    if (InConfigFolder(file))
        return file;
    const std::string path = ToUtf8(file);
    const std::string folder = ToUtf8(CQdDeConfigPresenter::ConfigFolder());
    if (std::string(command) == "new")
        throw UsageError(Tr("{1} is not in the configuration folder {2}. The current "
                            "configuration is recorded by its name alone and always read from "
                            "that folder, so {1} itself would never be current; make the new "
                            "one there: koqdde new {2}/{3}",
                            {path, folder, std::filesystem::path(path).filename().string()}));
    throw UsageError(Tr("{1} is not in the configuration folder {2}. The current configuration "
                        "is recorded by its name alone and always read from that folder, so {1} "
                        "itself would never be current; copy it there first: koqdde import {1}",
                        {path, folder}));
}

// Under --dry-run, what open and refresh would do, and whether they would succeed.
int PlanSwitch(CliContext& ctx, const std::string& command, const CString& file) {
    ctx.Presenter(); // the open configuration is checked as the real run checks it
    const std::string why =
        PathExists(file) ? ConfigLoadError(file) : Tr("{1} does not exist", {ToUtf8(file)});
    if (!why.empty())
        return ReportPlan(ctx, false, file,
                          {Tr("dry run: nothing done; {1} would fail: {2}", {command, why})});
    return ReportPlan(
        ctx, true, file,
        {Tr("dry run: nothing done; {1} would save the open configuration, load {2} and record "
            "\"{3}\" as the current configuration",
            {command, ToUtf8(file), ToUtf8(CQdDeConfigPresenter::ConfigNameOf(file))})});
}

// The store says nothing when a file that exists does not load; the tool says why.
void SayWhyNotLoaded(const CString& file) {
    if (!PathExists(file))
        return;
    const std::string why = ConfigLoadError(file);
    if (!why.empty())
        std::fprintf(stderr, "koqdde: %s\n", why.c_str());
}

int Open(CliContext& ctx, const std::vector<std::string>& args) {
    CString file = CurrentCandidate(args, "open");
    if (ctx.Options().dryRun)
        return PlanSwitch(ctx, "open", file);
    const bool ok = ctx.Presenter().ReLoad(file);
    if (!ok)
        SayWhyNotLoaded(file);
    return Report(ctx, ok, file);
}

int New(CliContext& ctx, const std::vector<std::string>& args) {
    CString file = CurrentCandidate(args, "new");
    const bool replaces = MayReplace(ctx, file, "new");
    CQdDeConfigPresenter& presenter = ctx.Presenter();
    if (ctx.Options().dryRun) {
        return ReportPlan(ctx, true, file,
                          {Tr("dry run: nothing done; new would copy the template "
                              "QdDeConfig.def to {1} and make it the current configuration",
                              {ToUtf8(file)})},
                          replaces);
    }
    if (replaces)
        KeepBackup(file);
    return Report(ctx, presenter.NewFile(file), file);
}

int SaveAs(CliContext& ctx, const std::vector<std::string>& args) {
    CString file = OneFile(args, "save-as");
    ExpectFolderOf(file, "FILE");
    const bool replaces = MayReplace(ctx, file, "save-as");
    CQdDeConfigPresenter& presenter = ctx.Presenter();
    if (ctx.Options().dryRun)
        return ReportPlan(ctx, true, file,
                          {Tr("dry run: nothing done; save-as would write the open "
                              "configuration {1} to {2}",
                              {ToUtf8(presenter.GetData()->GetFilePath()), ToUtf8(file)})},
                          replaces);
    if (replaces)
        KeepBackup(file);
    return Report(ctx, presenter.SaveAs(file), file);
}

int Refresh(CliContext& ctx, const std::vector<std::string>& args) {
    CString file = CurrentCandidate(args, "refresh");
    // The refresh saves the current configuration when it switches: the same lock and check
    // as any edit of it.
    ctx.GuardEdit(CQdDeConfigPresenter::GetCurConfigDetailPath());
    if (ctx.Options().dryRun)
        return PlanSwitch(ctx, "refresh", file);
    CString error;
    bool ok = RefreshAutoConfig(error, file);
    if (ctx.Options().json) {
        PrintLine(Json::MakeObject().Set("ok", ok).Set("file", file).Set("error", error).Dump());
    } else if (!ok) {
        PrintLine(ToUtf8(error));
        SayWhyNotLoaded(file);
    }
    return ok ? kExitTrue : kExitFalse;
}

int Import(CliContext& ctx, const std::vector<std::string>& raw) {
    ParsedArgs args = ParseArgs(raw, {"--as"});
    if (args.positional.size() != 1 || args.positional[0].empty())
        throw UsageError(Tr("usage: {1}", {"import FILE [--as NAME]"}));
    const CString file = Arg(args.positional[0]);
    ExpectExisting(file);
    if (const std::string why = ConfigLoadError(file); !why.empty())
        throw UsageError(Tr("{1} does not load as a configuration, so it was not imported: {2}",
                            {ToUtf8(file), why}));
    CString name = args.values.count("--as") ? Arg(args.values.at("--as"))
                                             : CQdDeConfigPresenter::ConfigNameOf(file);
    if (name.GetLength() > 4 && name.Right(4) == L".xml")
        name = name.Left(name.GetLength() - 4);
    if (!CQdDeConfigPresenter::IsConfigName(name))
        throw UsageError(
            Tr("\"{1}\" is no configuration name: a bare file name of at most {2} "
               "characters; give one with --as NAME",
               {ToUtf8(name), std::to_string(CQdDeConfigPresenter::kMaxConfigNameLength)}));
    const CString target = JoinPath(CQdDeConfigPresenter::ConfigFolder(), name + L".xml");
    if (IsSameFile(file, target))
        throw UsageError(Tr("{1} is in the configuration folder already; koqdde open {1} makes "
                            "it the current configuration",
                            {ToUtf8(target)}));
    const bool replaces = MayReplace(ctx, target, "import");
    ctx.LockForEdit(target);
    if (ctx.Options().dryRun)
        return ReportPlan(ctx, true, target,
                          {Tr("dry run: nothing done; import would copy {1} to {2}",
                              {ToUtf8(file), ToUtf8(target)})},
                          replaces);
    if (replaces)
        KeepBackup(target);
    if (!CopyFileOverwrite(file, target))
        throw ComError(E_FAIL, Tr("cannot copy {1} to {2}", {ToUtf8(file), ToUtf8(target)}));
    if (ctx.Options().json) {
        PrintLine(Json::MakeObject().Set("ok", true).Set("file", target).Set("from", file).Dump());
    } else {
        PrintLine(Tr("copied {1} to {2}", {ToUtf8(file), ToUtf8(target)}));
        PrintLine(Tr("koqdde open {1} makes it the current configuration", {ToUtf8(target)}));
    }
    return kExitTrue;
}

} // namespace

std::vector<CommandSpec> FileCommands() {
    return {
        {"open", "FILE", TrNoop("open FILE and make it the current configuration"),
         TrNoop(
             "Saves the open configuration first when FILE is another file, then loads FILE and\n"
             "records its name as the project's current configuration. FILE must be in the\n"
             "configuration folder, where the current configuration is always read from\n"
             "(koqdde import copies a file there).\n\n"
             "Example:\n  koqdde open "
             "~/.local/share/koqdde/sample/profile/自动套配置/公司模板.xml"),
         Open},
        {"new", "FILE", TrNoop("make FILE from the template and open it"),
         TrNoop("Copies the template \"QdDeConfig.def\" of the configuration folder to FILE, opens "
                "it\n"
                "and records it as current. FILE must be in the configuration folder; an existing\n"
                "FILE is replaced only with --force, and its content kept as FILE.bak.\n\n"
                "Example:\n  koqdde new \"$(dirname \"$(koqdde current | tail -1)\")/新配置.xml\""),
         New},
        {"save-as", "FILE", TrNoop("save the open configuration also as FILE"),
         TrNoop(
             "Copies the open file to FILE and writes the current specialty into it. The open "
             "file\n"
             "and the current configuration stay as they were. An existing FILE is replaced only\n"
             "with --force, and its content kept as FILE.bak.\n\n"
             "Example:\n  koqdde save-as /tmp/备份.xml"),
         SaveAs},
        {"refresh", "FILE", TrNoop("make FILE the current configuration, reporting a mismatch"),
         TrNoop("As open, for the current configuration; prints \"文件功能不匹配\" and exits 1 "
                "when FILE\n"
                "can't be loaded. FILE must be in the configuration folder.\n\n"
                "Example:\n  koqdde refresh \"$(koqdde current | tail -1)\""),
         Refresh},
        {"import", "FILE [--as NAME]", TrNoop("copy FILE into the configuration folder"),
         TrNoop(
             "Copies a file that loads as a configuration into the configuration folder as\n"
             "NAME.xml (default: FILE's own name), so that open can make it current. An existing\n"
             "configuration of that name is replaced only with --force, and kept as "
             "NAME.xml.bak.\n\n"
             "Examples:\n  koqdde import ~/configs/公司模板.xml\n"
             "  koqdde import /tmp/a.xml --as 公司模板"),
         Import},
    };
}
