// What a category argument that names no small category most likely meant.
#include "Cli.h"
#include "Translate.h"

#include "model/Spec.h"

namespace {

bool IsSeparator(wchar_t c) {
    return c == L'\\' || c == L'/';
}

// The text without a leading "专业\" of this specialty and without trailing separators.
CString WithinSpecialty(const Spec& spec, CString text) {
    const CString name = spec.GetSpecName();
    if (text.GetLength() > name.GetLength() && text.Left(name.GetLength()) == name &&
        IsSeparator(text[name.GetLength()]))
        text = text.Mid(name.GetLength() + 1);
    while (!text.IsEmpty() && IsSeparator(text[text.GetLength() - 1]))
        text = text.Left(text.GetLength() - 1);
    return text;
}

} // namespace

std::string CategoryHint(const Spec& spec, const CString& text) {
    const CString within = WithinSpecialty(spec, text);
    const bool separated = text.Find(L'\\') >= 0 || text.Find(L'/') >= 0;
    for (const LMember* large : spec.GetAllLMember()) {
        if (large->GetName() == within) {
            std::string smalls;
            for (const SMember* small : large->GetAllSMember())
                smalls += (smalls.empty() ? "'" : ", '") + ToUtf8(large->GetName()) + "\\" +
                          ToUtf8(small->GetName()) + "'";
            return Tr("{1} is a large category; give one of its small categories: {2}",
                      {ToUtf8(large->GetName()), smalls});
        }
        if (separated)
            continue;
        for (const SMember* small : large->GetAllSMember()) {
            const CString glued = large->GetName() + small->GetName();
            if (text == glued || text == spec.GetSpecName() + glued)
                return Tr("\"{1}\" has no separator: the shell took out the backslashes. Quote "
                          "the category ('{2}\\{3}') or write it with / ({2}/{3})",
                          {ToUtf8(text), ToUtf8(large->GetName()), ToUtf8(small->GetName())});
        }
    }
    return "";
}
