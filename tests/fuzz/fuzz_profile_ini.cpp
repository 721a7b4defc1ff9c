// Profile (ini) files: after any one write of a key, every other key reads as before and the
// written key reads back. Three writes are tried on a fresh copy of each input: an existing key, a
// new key in an existing section, and a new section; which key and which value is derived
// from the input's hash, so the corpus stays plain ini files.

#include "FuzzSupport.h"

#include "platform/ProfileIni.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr int kBuffer = 1 << 16;

std::vector<CString> SplitList(const CString& list) {
    std::vector<CString> names;
    std::wstring current;
    for (wchar_t ch : list.str()) {
        if (ch == L'\0') {
            names.emplace_back(current);
            current.clear();
        } else {
            current += ch;
        }
    }
    if (!current.empty())
        names.emplace_back(current);
    return names;
}

struct Snapshot {
    std::vector<CString> sections;
    std::map<CString, std::vector<CString>> keys; // by section as listed
    std::map<std::pair<CString, CString>, CString> values;
};

// A default no file holds, so a missing key shows as different from an empty one.
const wchar_t* const kMissing = L"\x01missing";

CString Read(const CString& file, const CString& section, const CString& key) {
    CString value;
    GetPrivateProfileStringW(section, key, kMissing, value, kBuffer, file);
    return value;
}

Snapshot Take(const CString& file) {
    Snapshot s;
    CString list;
    GetPrivateProfileStringW(nullptr, nullptr, L"", list, kBuffer, file);
    s.sections = SplitList(list);
    for (const CString& section : s.sections) {
        if (s.keys.count(section))
            continue;
        GetPrivateProfileStringW(section, nullptr, L"", list, kBuffer, file);
        std::vector<CString>& keys = s.keys[section];
        keys = SplitList(list);
        for (const CString& key : keys)
            s.values[{section, key}] = Read(file, section, key);
    }
    return s;
}

bool SameNoCase(const CString& a, const CString& b) {
    return a.CompareNoCase(b) == 0;
}

// Whether a write of `key` in `section` may touch the listed pair: the same section and key
// by the profile's matching rules (case-insensitive, surrounding blanks ignored).
bool Touches(const CString& section, const CString& key, const CString& s, const CString& k) {
    CString a = section, b = s, c = key, d = k;
    return SameNoCase(a.Trim(), b.Trim()) && SameNoCase(c.Trim(), d.Trim());
}

std::string Narrow(const CString& text) {
    return ToUtf8(text);
}

std::string Show(const CString& section, const CString& key) {
    return "[" + Narrow(section) + "] " + Narrow(key);
}

// Values a write uses; each reads back exactly (no surrounding blanks, no enclosing quotes).
const wchar_t* const kValues[] = {
    L"1", L"", L"管道 给水管", L"C:\\配置\\自动套", L"a=b;c", L"\"x", L"值'", L"𠀀",
};

void CheckWrite(const std::string& path, const std::string& bytes, const Snapshot& before,
                const CString& section, const CString& key, const CString& value) {
    const CString file = FromUtf8(path);
    fuzz::WriteBytes(path, bytes);
    fuzz::Check(WritePrivateProfileStringW(section, key, value, file), "a profile write succeeds",
                Show(section, key));

    fuzz::Check(Read(file, section, key) == value, "the written key reads back",
                Show(section, key) + " = [" + Narrow(value) + "], read [" +
                    Narrow(Read(file, section, key)) + "]");

    for (const auto& [where, old] : before.values) {
        if (Touches(section, key, where.first, where.second))
            continue;
        CString now = Read(file, where.first, where.second);
        fuzz::Check(now == old, "a write leaves every other key alone",
                    Show(where.first, where.second) + " was [" + Narrow(old) + "], is [" +
                        Narrow(now) + "], written " + Show(section, key));
    }
}

// A name not yet used, by the profile's matching rules, among `taken`.
CString FreshName(const wchar_t* stem, const std::vector<CString>& taken) {
    for (int n = 0;; ++n) {
        CString name = CString(stem) + FromUtf8(std::to_string(n));
        bool used = false;
        for (const CString& t : taken) {
            CString trimmed = t;
            used = used || SameNoCase(trimmed.Trim(), name);
        }
        if (!used)
            return name;
    }
}

// A key this harness can write and read back by name: not blank, no line break, no '=', no
// null, not starting like a comment or a section, no surrounding blanks.
bool Writable(const CString& name) {
    CString trimmed = name;
    trimmed.Trim();
    if (trimmed.IsEmpty() || trimmed != name || name[0] == L';' || name[0] == L'[')
        return false;
    for (wchar_t ch : name.str())
        if (ch == L'\r' || ch == L'\n' || ch == L'=' || ch == L'\0')
            return false;
    return true;
}

bool WritableSection(const CString& name) {
    CString trimmed = name;
    trimmed.Trim();
    if (trimmed != name)
        return false;
    for (wchar_t ch : name.str())
        if (ch == L'\r' || ch == L'\n' || ch == L']' || ch == L'\0')
            return false;
    return true;
}

// Whether the text holds a null character: the section and key lists separate names by
// nulls, so a name holding one can't be listed whole, and the lists can't be compared.
bool HoldsNull(std::string_view bytes) {
    const bool wide = bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF");
    if (!wide)
        return bytes.find('\0') != std::string_view::npos;
    for (size_t i = 2; i + 1 < bytes.size(); i += 2)
        if (bytes[i] == '\0' && bytes[i + 1] == '\0')
            return true;
    return false;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    const std::string path = fuzz::ScratchPath("profile.ini");
    fuzz::WriteBytes(path, bytes);
    const Snapshot before = Take(FromUtf8(path));
    if (HoldsNull(bytes)) {
        // Still read and written, for the sanitizers; nothing to compare.
        WritePrivateProfileStringW(L"节", L"键", L"值", FromUtf8(path));
        return 0;
    }

    std::uint64_t h = fuzz::Hash(data, size);
    const CString value = kValues[h % (sizeof kValues / sizeof kValues[0])];
    h /= 8;

    // Sections listed twice, or that the profile can't name back, are only checked as
    // bystanders: a lookup always finds the first of a name.
    std::vector<CString> sections;
    for (const CString& s : before.sections)
        if (WritableSection(s) && before.keys.count(s))
            sections.push_back(s);

    if (!sections.empty()) {
        const CString& section = sections[h % sections.size()];
        h /= 997;
        std::vector<CString> keys;
        for (const CString& k : before.keys.at(section))
            if (Writable(k))
                keys.push_back(k);
        if (!keys.empty())
            CheckWrite(path, bytes, before, section, keys[h % keys.size()], value);
        CheckWrite(path, bytes, before, section, FreshName(L"新键", before.keys.at(section)),
                   value);
    }
    CheckWrite(path, bytes, before, FreshName(L"新节", before.sections), L"键", value);
    return 0;
}
