#include "Cli.h"
#include "Guards.h"
#include "Translate.h"

#include "model/Spec.h"
#include "platform/FileSystem.h"
#include "store/CFileHeadWriter.h"
#include "store/CXmlQdDeConfig.h"
#include "store/ConfigFileCheck.h"

#include <cstdio>

namespace {
bool IsHeadedFile(const CString& file);
} // namespace

CQdDeConfigPresenter& CliContext::Presenter() {
    if (!m_presenter) {
        const CString recorded = CQdDeConfigPresenter::RecordedCurConfig();
        if (m_options.file.IsEmpty() && !recorded.IsEmpty() &&
            !CQdDeConfigPresenter::IsConfigName(recorded))
            std::fprintf(stderr, "koqdde: %s\n",
                         Tr("the project's SysRegedit.ini names \"{1}\" as the current "
                            "configuration, which is no file name; DefaultConfig is used",
                            {ToUtf8(recorded)})
                             .c_str());
        // The store makes a missing file; not in a folder that is missing too, nor where the
        // user meant a file the shell mangled.
        if (!m_options.file.IsEmpty())
            ExpectFolderOf(m_options.file, "--file");
        const CString file = m_options.file.IsEmpty()
                                 ? CQdDeConfigPresenter::GetCurConfigDetailPath()
                                 : m_options.file;
        if (m_options.dryRun && !PathExists(file))
            m_createdByDryRun = file;
        if (m_editing)
            LockForEdit(file);
        auto presenter = std::make_unique<CQdDeConfigPresenter>(m_options.file);
        if (auto* store = dynamic_cast<CXmlQdDeConfig*>(presenter->GetData()))
            CheckLoaded(file, store->LoadError());
        m_presenter = std::move(presenter);
    }
    return *m_presenter;
}

CliContext::~CliContext() {
    m_presenter.reset();
    if (!m_createdByDryRun.IsEmpty())
        std::remove(ToUtf8(m_createdByDryRun).c_str());
}

CString CliContext::SmallCategoryPath(const CPath& path) {
    const Spec& spec = Tree();
    const LMember* large = spec.GetLMember(path.LMemberId);
    const SMember* small = large ? large->GetSMember(path.SMemberId) : nullptr;
    if (!small)
        return CString();
    return spec.GetSpecName() + L"\\" + large->GetName() + L"\\" + small->GetName();
}

void CliContext::GuardEdit(const CString& file) {
    if (m_editing)
        LockForEdit(file);
    CheckLoaded(file, ConfigLoadError(file));
}

void CliContext::LockForEdit(const CString& file) {
    switch (m_lock.LockForEdit(file)) {
    case FileLock::Outcome::Locked:
    case FileLock::Outcome::NoLock: // a folder nobody may write: the save will say so
        return;
    case FileLock::Outcome::HeldOpen:
        if (m_options.force) {
            std::fprintf(
                stderr, "koqdde: %s\n",
                Tr("{1} is open in the workbench; editing it anyway", {ToUtf8(file)}).c_str());
            return;
        }
        throw Refusal(Tr("{1} is open in the workbench, which writes it back when it closes "
                         "and would overwrite this edit; close the workbench first, or use --force",
                         {ToUtf8(file)}));
    case FileLock::Outcome::TimedOut:
        throw Refusal(Tr("another edit of {1} has held it for 30 seconds; try again when it "
                         "has finished",
                         {ToUtf8(file)}));
    }
}

void CliContext::CheckLoaded(const CString& file, const std::string& loadError) {
    if (loadError.empty())
        return;
    std::string reason = loadError;
    if (IsHeadedFile(file))
        reason = Tr("{1} starts with a binary head; `koqdde head strip {1} OUT` gives the "
                    "configuration inside it",
                    {ToUtf8(file)});
    if (m_editing && m_options.force) {
        std::fprintf(stderr, "koqdde: %s\nkoqdde: %s\n", reason.c_str(),
                     Tr("--force: the save replaces the file with the current specialty alone"));
        return;
    }
    throw Refusal(reason + (m_editing ? std::string("\n") +
                                            Tr("the file was left as it is; --force edits it "
                                               "anyway, replacing it with the current specialty "
                                               "alone")
                                      : std::string()));
}

const Spec& CliContext::Tree() {
    auto* store = dynamic_cast<CXmlQdDeConfig*>(Presenter().GetData());
    if (!store)
        throw std::runtime_error("the configuration store is not an XML store");
    return store->GetSpec();
}

namespace {
// A file made by `head write`: it starts with the head's first tag.
bool IsHeadedFile(const CString& file) {
    const std::optional<std::string> bytes = ReadFileStart(file, 4);
    if (!bytes || bytes->size() < 4)
        return false;
    std::uint32_t tag = 0;
    for (int i = 3; i >= 0; --i)
        tag = (tag << 8) | static_cast<unsigned char>((*bytes)[static_cast<size_t>(i)]);
    return tag == CFileHeadWriter::kTagKind;
}

std::vector<CString> SplitCategory(const CString& text) {
    wchar_t separator = text.Find(L'\\') >= 0 ? L'\\' : L'/';
    std::vector<CString> parts;
    int start = 0;
    for (int pos = text.Find(separator); pos >= 0; pos = text.Find(separator, start)) {
        parts.push_back(text.Mid(start, pos - start));
        start = pos + 1;
    }
    parts.push_back(text.Mid(start));
    return parts;
}
} // namespace

namespace {
// A part of a category path names a node by its name, or by its id as `tree` prints it.
template <class Node> bool Names(const Node& node, const CString& part) {
    if (node.GetName() == part)
        return true;
    const std::string text = ToUtf8(part);
    return !text.empty() && text.size() <= 9 &&
           text.find_first_not_of("0123456789") == std::string::npos &&
           std::stoi(text) == node.GetId();
}

struct SpecName {
    const Spec& spec;
    CString GetName() const { return spec.GetSpecName(); }
    int GetId() const { return spec.GetId(); }
};
} // namespace

CPath CliContext::ResolveCategory(const CString& text, const SMember** found) {
    const Spec& spec = Tree();
    // A large category or a path the shell stripped of its backslashes is the likely mistake;
    // saying which beats repeating the expected form.
    auto refuse = [&](const std::string& message) {
        const std::string hint = CategoryHint(spec, text);
        throw UsageError(hint.empty() ? message : message + "\n" + hint);
    };
    std::vector<CString> parts = SplitCategory(text);
    if (parts.size() == 3) {
        if (!Names(SpecName{spec}, parts[0]))
            throw UsageError(Tr("category \"{1}\" is not in the current specialty \"{2}\"; "
                                "--spec NAME works on another one",
                                {ToUtf8(text), ToUtf8(spec.GetSpecName())}));
        parts.erase(parts.begin());
    }
    if (parts.size() != 2)
        refuse(Tr("category \"{1}\" must be written SPECIALTY\\LARGE\\SMALL or LARGE\\SMALL "
                  "(names or ids as `koqdde tree` prints them)",
                  {ToUtf8(text)}));
    for (LMember* large : spec.GetAllLMember()) {
        if (!Names(*large, parts[0]))
            continue;
        for (SMember* small : large->GetAllSMember()) {
            if (!Names(*small, parts[1]))
                continue;
            CPath path;
            path.SpecId = spec.GetId();
            path.LMemberId = large->GetId();
            path.SMemberId = small->GetId();
            if (found)
                *found = small;
            return path;
        }
    }
    refuse(Tr("unknown category \"{1}\" in specialty \"{2}\"",
              {ToUtf8(text), ToUtf8(spec.GetSpecName())}));
    return {}; // not reached: refuse throws
}

void CliContext::UseFile(const CString& file) {
    if (m_presenter)
        throw std::logic_error("UseFile after the presenter was made");
    m_options.file = file;
}

CString CliContext::File() const {
    return m_options.file.IsEmpty() ? CQdDeConfigPresenter::GetCurConfigDetailPath()
                                    : m_options.file;
}

int CliContext::ResolveConfig(const CPath& path, const std::string& text) {
    std::vector<ConfigNode*> configs;
    Presenter().GetConfig(path, configs);
    if (!text.empty() && text[0] == '#') {
        int position = ParseId(text.substr(1), Tr("a position after #"));
        if (position < 1 || static_cast<size_t>(position) > configs.size())
            throw UsageError(Tr("no configuration {1}: the category has {2}, #1 to #{2}",
                                {text, std::to_string(configs.size())}));
        return configs[static_cast<size_t>(position) - 1]->GetId();
    }
    int id = ParseId(text, "CONFIG-ID");
    for (const ConfigNode* config : configs)
        if (config->GetId() == id)
            return id;
    throw UsageError(Tr("no configuration {1} in this category (`koqdde show` lists them; #N "
                        "addresses the N-th)",
                        {text}));
}

void PrintLine(const std::string& text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fputc('\n', stdout);
}

CString Arg(const std::string& utf8) {
    return FromUtf8(utf8);
}

ParsedArgs ParseArgs(const std::vector<std::string>& args, const std::set<std::string>& valued,
                     const std::set<std::string>& flags) {
    ParsedArgs parsed;
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        if (a == "--") {
            parsed.positional.insert(parsed.positional.end(),
                                     args.begin() + static_cast<long>(i) + 1, args.end());
            break;
        }
        if (a.size() < 2 || a.rfind("--", 0) != 0) {
            parsed.positional.push_back(a);
            continue;
        }
        auto eq = a.find('=');
        std::string key = a.substr(0, eq);
        if (valued.count(key)) {
            if (eq != std::string::npos)
                parsed.values[key] = a.substr(eq + 1);
            else if (i + 1 < args.size())
                parsed.values[key] = args[++i];
            else
                throw UsageError(Tr("{1} needs a value", {key}));
        } else if (flags.count(key) && eq == std::string::npos) {
            parsed.flags.insert(key);
        } else if (flags.count(key)) {
            throw UsageError(Tr("{1} takes no value", {key}));
        } else {
            std::vector<std::string> known(valued.begin(), valued.end());
            known.insert(known.end(), flags.begin(), flags.end());
            const auto& globals = GlobalOptionNames();
            known.insert(known.end(), globals.begin(), globals.end());
            throw UsageError(Tr("unknown option {1}", {key}) + DidYouMean(key, known));
        }
    }
    return parsed;
}

int ParseId(const std::string& text, const std::string& what) {
    bool digits = !text.empty() && text.size() <= 9;
    for (char c : text)
        digits = digits && c >= '0' && c <= '9';
    if (!digits)
        throw UsageError(Tr("{1} must be a number, not \"{2}\"", {what, text}));
    return std::stoi(text);
}
