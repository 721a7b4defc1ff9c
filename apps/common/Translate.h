#pragma once
// The programs' own texts in the user's language: English as written in the code, Chinese
// from the zh_CN catalogue (po/zh_CN.po), chosen by the locale as gettext chooses. The module's
// texts (its messages and the workbench's captions) are Chinese already and are not passed
// through here.

#include <initializer_list>
#include <string>
#include <vector>

// Binds the text domain of `program` ("koqdde") to the catalogues beside the executable (an
// installed tree or the build tree) and takes the language from the environment.
void SetUpTranslation(const char* program);

// As SetUpTranslation, but in `language` ("zh_CN") whatever the locale asks for: the desktop
// program speaks Chinese, as the workbench it shows does.
void SetUpTranslationIn(const char* program, const char* language);

// Marks a text for the catalogue where it can't be translated yet (a constant).
constexpr const char* TrNoop(const char* text) {
    return text;
}

// The translation of `text`, or `text` itself.
const char* Tr(const char* text);
// The translation of `text` with {1}, {2}... replaced by `args`, so that a translation may put
// them in another order.
std::string Tr(const char* text, std::initializer_list<std::string> args);
// `text` with {1}, {2}... replaced by `args`.
std::string Substitute(std::string text, const std::vector<std::string>& args);
