// open, new, save-as, refresh: choosing and copying configuration files.
#include "Cli.h"
#include "Json.h"

namespace {

int Report(CliContext& ctx, bool ok, const CString& file) {
    if (ctx.Options().json)
        PrintLine(Json::MakeObject().Set("ok", ok).Set("file", file).Dump());
    return ok ? kExitTrue : kExitFalse;
}

CString OneFile(const std::vector<std::string>& raw, const char* command) {
    std::vector<std::string> args = ParseArgs(raw, {}).positional;
    if (args.size() != 1 || args[0].empty())
        throw UsageError(std::string(command) + " takes one FILE");
    return Arg(args[0]);
}

// A file that becomes the current configuration is recorded by its bare name, which the
// record must hold whole.
CString CurrentCandidate(const std::vector<std::string>& raw, const char* command) {
    CString file = OneFile(raw, command);
    const CString name = CQdDeConfigPresenter::ConfigNameOf(file);
    // An empty name is recorded as none, which means the default: the store allows that.
    if (!name.IsEmpty() && !CQdDeConfigPresenter::IsConfigName(name))
        throw UsageError("\"" + ToUtf8(name) + "\" can't be recorded as the current " +
                         "configuration: a name has at most " +
                         std::to_string(CQdDeConfigPresenter::kMaxConfigNameLength) +
                         " characters and no control characters");
    return file;
}

int Open(CliContext& ctx, const std::vector<std::string>& args) {
    CString file = CurrentCandidate(args, "open");
    return Report(ctx, ctx.Presenter().ReLoad(file), file);
}

int New(CliContext& ctx, const std::vector<std::string>& args) {
    CString file = CurrentCandidate(args, "new");
    return Report(ctx, ctx.Presenter().NewFile(file), file);
}

int SaveAs(CliContext& ctx, const std::vector<std::string>& args) {
    CString file = OneFile(args, "save-as");
    return Report(ctx, ctx.Presenter().SaveAs(file), file);
}

int Refresh(CliContext& ctx, const std::vector<std::string>& args) {
    CString file = CurrentCandidate(args, "refresh");
    // The refresh saves the current configuration when it switches: the same lock and check
    // as any edit of it.
    ctx.GuardEdit(CQdDeConfigPresenter::GetCurConfigDetailPath());
    CString error;
    bool ok = RefreshAutoConfig(error, file);
    if (ctx.Options().json) {
        PrintLine(Json::MakeObject().Set("ok", ok).Set("file", file).Set("error", error).Dump());
    } else if (!ok) {
        PrintLine(ToUtf8(error));
    }
    return ok ? kExitTrue : kExitFalse;
}

} // namespace

std::vector<CommandSpec> FileCommands() {
    return {
        {"open", "FILE", "open FILE and make it the current configuration",
         "Saves the open configuration first when FILE is another file, then loads FILE and\n"
         "records its name as the project's current configuration.\n\n"
         "Example:\n  koqdde open ~/configs/公司模板.xml",
         Open},
        {"new", "FILE", "make FILE from the template and open it",
         "Copies the template \"QdDeConfig.def\" of the configuration folder to FILE (replacing\n"
         "it), opens it and records it as current.\n\n"
         "Example:\n  koqdde new /tmp/新配置.xml",
         New},
        {"save-as", "FILE", "save the open configuration also as FILE",
         "Copies the open file to FILE and writes the current specialty into it. The open file\n"
         "and the current configuration stay as they were.\n\n"
         "Example:\n  koqdde save-as /tmp/备份.xml",
         SaveAs},
        {"refresh", "FILE", "make FILE the current configuration, reporting a mismatch",
         "As open, for the current configuration; prints \"文件功能不匹配\" and exits 1 when FILE\n"
         "can't be loaded.\n\n"
         "Example:\n  koqdde refresh /tmp/a.xml",
         Refresh},
    };
}
