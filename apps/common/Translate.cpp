#include "Translate.h"

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <libintl.h>
#include <system_error>

namespace {

const char* g_domain = "koqdde";

// Where the catalogues are: <prefix>/share/locale for an installed program, <build>/locale
// for one run from the build tree (bin/ and apps/ are one level down from either).
std::string LocaleDir() {
    std::error_code error;
    const std::filesystem::path exe = std::filesystem::read_symlink("/proc/self/exe", error);
    if (error)
        return {};
    for (const char* relative : {"../share/locale", "../locale"}) {
        const std::filesystem::path dir = exe.parent_path() / relative;
        if (std::filesystem::is_directory(dir, error))
            return std::filesystem::weakly_canonical(dir, error).string();
    }
    return {};
}

// The language the user asked for, from the variables gettext reads, in its order.
std::string RequestedLanguage() {
    for (const char* name : {"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG"}) {
        const char* value = std::getenv(name);
        if (value && *value)
            return value;
    }
    return {};
}

} // namespace

void SetUpTranslation(const char* program) {
    g_domain = program;
    if (!std::setlocale(LC_ALL, "")) {
        // A locale the system has not generated (zh_CN.UTF-8 on a minimal Debian) still gets
        // its messages: gettext follows LANGUAGE under any locale but plain "C".
        std::setlocale(LC_ALL, "C.UTF-8");
        const std::string language = RequestedLanguage();
        if (!language.empty() && !std::getenv("LANGUAGE"))
            setenv("LANGUAGE", language.substr(0, language.find('.')).c_str(), 1);
    }
    // Text is UTF-8 whatever the locale says, and numbers are written with a point.
    std::setlocale(LC_CTYPE, "C.UTF-8");
    std::setlocale(LC_NUMERIC, "C");
    const std::string dir = LocaleDir();
    if (!dir.empty())
        bindtextdomain(g_domain, dir.c_str());
    bind_textdomain_codeset(g_domain, "UTF-8");
}

void SetUpTranslationIn(const char* program, const char* language) {
    g_domain = program;
    // gettext reads LANGUAGE under any message locale but plain "C" (or "POSIX").
    const char* messages = std::setlocale(LC_MESSAGES, nullptr);
    if (!messages || std::string(messages) == "C" || std::string(messages) == "POSIX")
        std::setlocale(LC_MESSAGES, "C.UTF-8");
    setenv("LANGUAGE", language, 1);
    const std::string dir = LocaleDir();
    if (!dir.empty())
        bindtextdomain(g_domain, dir.c_str());
    bind_textdomain_codeset(g_domain, "UTF-8");
}

const char* Tr(const char* text) {
    return dgettext(g_domain, text);
}

std::string Tr(const char* text, std::initializer_list<std::string> args) {
    return Substitute(Tr(text), std::vector<std::string>(args));
}

std::string Substitute(std::string text, const std::vector<std::string>& args) {
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string mark = "{" + std::to_string(i + 1) + "}";
        for (size_t at = text.find(mark); at != std::string::npos;
             at = text.find(mark, at + args[i].size()))
            text.replace(at, mark.size(), args[i]);
    }
    return text;
}
