#include "platform/ProfileIni.h"

#include "platform/FileSystem.h"
#include "platform/TextEncoding.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// A profile is kept as its lines in the file's own bytes. Lookups use the decoded text of a
// line; a write replaces, inserts or drops whole lines and leaves the bytes of every other
// line alone, so nothing the decoder can't round-trip is ever rewritten. Before anything is
// written the new bytes are parsed again: every line must read as intended, or the write is
// refused, so no change can alter how the rest of the file reads.

namespace {

enum class Encoding { Utf8, Utf8Bom, Utf16Le, Utf16Be, Gb18030 };

struct Line {
    std::string body;   // as in the file, up to the line ending
    std::string ending; // "\r\n", "\n", a lone "\r" at the end of the file, or nothing
    CString text;       // decoded body
};

struct Profile {
    Encoding encoding = Encoding::Utf8;
    std::string bom;
    std::vector<Line> lines;
    // New files get "\n": this is Linux, and a file that came from Windows with "\r\n" keeps
    // its own ending, taken from the file's first line break.
    bool crlf = false;
};

size_t UnitSize(Encoding e) {
    return e == Encoding::Utf16Le || e == Encoding::Utf16Be ? 2 : 1;
}

bool IsNewline(Encoding e, std::string_view unit) {
    switch (e) {
    case Encoding::Utf16Le:
        return unit == std::string_view("\n\0", 2);
    case Encoding::Utf16Be:
        return unit == std::string_view("\0\n", 2);
    default:
        return unit == "\n";
    }
}

std::string SwapPairs(std::string bytes) {
    for (size_t i = 0; i + 1 < bytes.size(); i += 2)
        std::swap(bytes[i], bytes[i + 1]);
    return bytes;
}

CString Decode(Encoding e, std::string_view raw) {
    switch (e) {
    case Encoding::Utf16Le:
        return FromUtf8(Utf16LeToUtf8(raw));
    case Encoding::Utf16Be:
        return FromUtf8(Utf16BeToUtf8(raw));
    case Encoding::Gb18030:
        if (std::optional<std::string> utf8 = LegacyToUtf8(raw, "GB18030"))
            return FromUtf8(*utf8);
        return FromUtf8(raw); // a damaged line still matches what it can
    default:
        return FromUtf8(raw);
    }
}

std::string Encode(Encoding e, const CString& text) {
    std::string utf8 = ToUtf8(text);
    switch (e) {
    case Encoding::Utf16Le:
        return Utf8ToUtf16Le(utf8);
    case Encoding::Utf16Be:
        return SwapPairs(Utf8ToUtf16Le(utf8));
    case Encoding::Gb18030: {
        // GB18030 covers all of Unicode, so the fallback is never used in practice.
        auto question = [](char32_t) { return std::string("?"); };
        return Utf8ToLegacy(utf8, "GB18030", question).value_or(utf8);
    }
    default:
        return utf8;
    }
}

bool IsValidUtf8(std::string_view bytes) {
    return ToUtf8(FromUtf8(bytes)) == bytes;
}

Profile Parse(std::string_view bytes) {
    Profile p;
    switch (DetectBom(bytes)) {
    case TextEncoding::Utf8Bom:
        p.encoding = Encoding::Utf8Bom;
        p.bom = bytes.substr(0, 3);
        break;
    case TextEncoding::Utf16LeBom:
        p.encoding = Encoding::Utf16Le;
        p.bom = bytes.substr(0, 2);
        break;
    case TextEncoding::Utf16BeBom:
        p.encoding = Encoding::Utf16Be;
        p.bom = bytes.substr(0, 2);
        break;
    default:
        p.encoding = IsValidUtf8(bytes) ? Encoding::Utf8 : Encoding::Gb18030;
        break;
    }
    bytes.remove_prefix(p.bom.size());

    const size_t unit = UnitSize(p.encoding);
    bool endingKnown = false;
    size_t start = 0;
    while (start < bytes.size()) {
        size_t i = start;
        while (i + unit <= bytes.size() && !IsNewline(p.encoding, bytes.substr(i, unit)))
            i += unit;
        const bool newline = i + unit <= bytes.size();
        Line line;
        line.body = bytes.substr(start, (newline ? i : bytes.size()) - start);
        line.text = Decode(p.encoding, line.body);
        // A "\r" before the "\n", or alone at the end of the file, ends the line. Only a
        // character that is a whole last unit decodes as '\r', so its bytes are that unit.
        const int length = line.text.GetLength();
        if (length > 0 && line.text[length - 1] == L'\r') {
            line.text = line.text.Left(length - 1);
            line.ending = line.body.substr(line.body.size() - unit);
            line.body.resize(line.body.size() - unit);
        }
        if (newline) {
            line.ending += bytes.substr(i, unit);
            if (!endingKnown)
                p.crlf = line.ending.size() > unit;
            endingKnown = true;
        }
        p.lines.push_back(std::move(line));
        start = newline ? i + unit : bytes.size();
    }
    return p;
}

std::string Serialize(const Profile& p) {
    std::string out = p.bom;
    for (const Line& line : p.lines)
        out += line.body + line.ending;
    return out;
}

std::string NewlineOf(const Profile& p) {
    return Encode(p.encoding, p.crlf ? L"\r\n" : L"\n");
}

Line MakeLine(const Profile& p, const CString& text) {
    return Line{Encode(p.encoding, text), NewlineOf(p), text};
}

// Gives the file's last line a line ending before another is put after it, without changing
// how it reads.
void Terminate(const Profile& p, Line& line) {
    const std::string lf = Encode(p.encoding, L"\n");
    if (line.ending.ends_with(lf))
        return;
    // An odd byte at the end of a UTF-16 file would pair with the ending's first byte and
    // shift every unit after it; written as the U+FFFD it reads as, the line reads the same.
    if (line.body.size() % UnitSize(p.encoding) != 0)
        line.body = Encode(p.encoding, line.text);
    // A lone "\r" already reads as the line's ending: a "\n" completes it, where a whole ending
    // after it would turn the "\r" into text.
    line.ending = line.ending.empty() ? NewlineOf(p) : line.ending + lf;
}

bool IsBlank(wchar_t c) {
    return c == L' ' || c == L'\t';
}

CString TrimBlanks(const CString& s) {
    int first = 0;
    int last = s.GetLength();
    while (first < last && IsBlank(s[first]))
        ++first;
    while (last > first && IsBlank(s[last - 1]))
        --last;
    return s.Mid(first, last - first);
}

// The name of a "[name]" line, or nothing for any other line.
std::optional<CString> SectionName(const CString& text) {
    CString t = TrimBlanks(text);
    if (t.IsEmpty() || t[0] != L'[')
        return std::nullopt;
    int close = t.Find(L']');
    return TrimBlanks(close < 0 ? t.Mid(1) : t.Mid(1, close - 1));
}

// The key of a "key=value" line and the index of its '='; nothing for other lines.
std::optional<CString> KeyName(const CString& text, int* equals = nullptr) {
    CString t = TrimBlanks(text);
    if (t.IsEmpty() || t[0] == L';' || t[0] == L'[')
        return std::nullopt;
    int eq = text.Find(L'=');
    if (eq < 0)
        return std::nullopt;
    CString key = TrimBlanks(text.Left(eq));
    if (key.IsEmpty())
        return std::nullopt;
    if (equals)
        *equals = eq;
    return key;
}

CString ValueOf(const CString& text, int equals) {
    CString v = TrimBlanks(text.Mid(equals + 1));
    int n = v.GetLength();
    if (n >= 2 && (v[0] == L'"' || v[0] == L'\'') && v[n - 1] == v[0])
        return v.Mid(1, n - 2);
    return v;
}

struct SectionRange {
    size_t header = 0; // index of the "[name]" line
    size_t end = 0;    // index of the next section's line, or the line count
};

std::optional<SectionRange> FindSection(const Profile& p, const CString& name) {
    CString wanted = TrimBlanks(name);
    for (size_t i = 0; i < p.lines.size(); ++i) {
        std::optional<CString> s = SectionName(p.lines[i].text);
        if (!s || s->CompareNoCase(wanted) != 0)
            continue;
        SectionRange r{i, i + 1};
        while (r.end < p.lines.size() && !SectionName(p.lines[r.end].text))
            ++r.end;
        return r;
    }
    return std::nullopt;
}

std::optional<size_t> FindKey(const Profile& p, const SectionRange& r, const CString& name) {
    CString wanted = TrimBlanks(name);
    for (size_t i = r.header + 1; i < r.end; ++i) {
        std::optional<CString> k = KeyName(p.lines[i].text);
        if (k && k->CompareNoCase(wanted) == 0)
            return i;
    }
    return std::nullopt;
}

// Copies `text` into the caller's buffer of `bufferSize` characters, terminator included.
int CopyOut(const CString& text, CString& out, int bufferSize) {
    if (bufferSize <= 0) {
        out.Empty();
        return 0;
    }
    out = text.Left(bufferSize - 1);
    return out.GetLength();
}

// With no section or no key the result lists the section or key names, each followed by a
// null character, plus a final null. A list cut short by the buffer still ends in two nulls.
int CopyOutList(const std::vector<CString>& names, CString& out, int bufferSize) {
    std::wstring list;
    for (const CString& n : names) {
        list += n.str();
        list += L'\0';
    }
    if (bufferSize <= 0) {
        out.Empty();
        return 0;
    }
    if (list.size() + 1 <= static_cast<size_t>(bufferSize)) {
        out = CString(std::move(list));
        return out.GetLength();
    }
    if (bufferSize < 2) {
        out.Empty();
        return 0;
    }
    list.resize(static_cast<size_t>(bufferSize - 2));
    list += L'\0';
    out = CString(std::move(list));
    return bufferSize - 2;
}

// Sets the key in the first section of the name, or appends the section.
void SetKey(Profile& p, const CString& section, const CString& key, const CString& value) {
    // A value with blanks around it, or wholly in quotes, would lose them on reading: in a
    // further pair of quotes it reads back as it was given.
    CString stored = value;
    const int n = value.GetLength();
    if (n > 0 && (IsBlank(value[0]) || IsBlank(value[n - 1]) ||
                  (n >= 2 && (value[0] == L'"' || value[0] == L'\'') && value[n - 1] == value[0])))
        stored = L"\"" + value + L"\"";

    std::optional<SectionRange> r = FindSection(p, section);
    if (!r) {
        if (!p.lines.empty())
            Terminate(p, p.lines.back());
        p.lines.push_back(MakeLine(p, L"[" + TrimBlanks(section) + L"]"));
        p.lines.push_back(MakeLine(p, TrimBlanks(key) + L"=" + stored));
    } else if (std::optional<size_t> k = FindKey(p, *r, key)) {
        // Keep the line's own spelling of the key, its spacing around '=' and its ending.
        Line& line = p.lines[*k];
        int equals = 0;
        KeyName(line.text, &equals);
        int valueStart = equals + 1;
        while (valueStart < line.text.GetLength() && IsBlank(line.text[valueStart]))
            ++valueStart;
        line.text = line.text.Left(valueStart) + stored;
        line.body = Encode(p.encoding, line.text);
    } else {
        // After the section's last non-blank line, so blank lines before the next section
        // stay where they are.
        size_t at = r->end;
        while (at > r->header + 1 && TrimBlanks(p.lines[at - 1].text).IsEmpty())
            --at;
        Terminate(p, p.lines[at - 1]);
        p.lines.insert(p.lines.begin() + static_cast<std::ptrdiff_t>(at),
                       MakeLine(p, TrimBlanks(key) + L"=" + stored));
    }
}

// Removes every line of the key from the first section of the name, the one reads look in,
// so that no later line of the same key comes to light. Returns whether there was one.
bool RemoveKey(Profile& p, const CString& section, const CString& key) {
    std::optional<SectionRange> r = FindSection(p, section);
    bool removed = false;
    while (std::optional<size_t> k = r ? FindKey(p, *r, key) : std::nullopt) {
        p.lines.erase(p.lines.begin() + static_cast<std::ptrdiff_t>(*k));
        --r->end;
        removed = true;
    }
    return removed;
}

// Removes every section of the name, for the same reason. Returns whether there was one.
bool RemoveSection(Profile& p, const CString& section) {
    bool removed = false;
    while (std::optional<SectionRange> r = FindSection(p, section)) {
        p.lines.erase(p.lines.begin() + static_cast<std::ptrdiff_t>(r->header),
                      p.lines.begin() + static_cast<std::ptrdiff_t>(r->end));
        removed = true;
    }
    return removed;
}

// Whether a read of the section and key finds what the write asked for: the value, or
// nothing after a removal.
bool ReadsAsWritten(const Profile& p, const wchar_t* section, const wchar_t* key,
                    const wchar_t* value) {
    std::optional<SectionRange> r = FindSection(p, section);
    if (!key)
        return !r;
    std::optional<size_t> k = r ? FindKey(p, *r, key) : std::nullopt;
    if (!value || !k)
        return !value && !k;
    int equals = 0;
    KeyName(p.lines[*k].text, &equals);
    return ValueOf(p.lines[*k].text, equals) == value;
}

bool SameLines(const Profile& a, const Profile& b) {
    if (a.lines.size() != b.lines.size())
        return false;
    for (size_t i = 0; i < a.lines.size(); ++i)
        if (!(a.lines[i].text == b.lines[i].text))
            return false;
    return true;
}

// The file's new bytes, provided that reading them gives every line its intended text;
// nothing when no bytes do.
std::optional<std::string> BytesReadingAsIntended(Profile& p) {
    std::string bytes = Serialize(p);
    if (SameLines(Parse(bytes), p))
        return bytes;
    if (p.encoding == Encoding::Gb18030) {
        // The bytes that made the file invalid UTF-8 are gone, and as UTF-8 some line would
        // read otherwise. GB18030's own signature, U+FEFF, on a first line of its own keeps
        // the file invalid UTF-8 and reads as no section and no key.
        p.lines.insert(p.lines.begin(), MakeLine(p, CString(L"\xFEFF")));
        bytes = Serialize(p);
        if (SameLines(Parse(bytes), p))
            return bytes;
    }
    return std::nullopt;
}

} // namespace

int GetPrivateProfileStringW(const wchar_t* section, const wchar_t* key,
                             const wchar_t* defaultValue, CString& out, int bufferSize,
                             const wchar_t* file) {
    // A default's trailing blanks are dropped, as the profile API always did.
    CString fallback(defaultValue);
    while (!fallback.IsEmpty() && IsBlank(fallback[fallback.GetLength() - 1]))
        fallback = fallback.Left(fallback.GetLength() - 1);

    std::optional<std::string> bytes = file ? ReadFileBytes(file) : std::nullopt;
    if (!bytes)
        return section && key ? CopyOut(fallback, out, bufferSize)
                              : CopyOutList({}, out, bufferSize);
    Profile p = Parse(*bytes);

    if (!section) {
        std::vector<CString> names;
        for (const Line& line : p.lines)
            if (std::optional<CString> s = SectionName(line.text))
                names.push_back(*s);
        return CopyOutList(names, out, bufferSize);
    }
    std::optional<SectionRange> r = FindSection(p, section);
    if (!key) {
        std::vector<CString> names;
        for (size_t i = r ? r->header + 1 : 0; r && i < r->end; ++i)
            if (std::optional<CString> k = KeyName(p.lines[i].text))
                names.push_back(*k);
        return CopyOutList(names, out, bufferSize);
    }
    std::optional<size_t> k = r ? FindKey(p, *r, key) : std::nullopt;
    if (!k)
        return CopyOut(fallback, out, bufferSize);
    int equals = 0;
    KeyName(p.lines[*k].text, &equals);
    return CopyOut(ValueOf(p.lines[*k].text, equals), out, bufferSize);
}

bool WritePrivateProfileStringW(const wchar_t* section, const wchar_t* key, const wchar_t* value,
                                const wchar_t* file) {
    if (!section || !file || !*file)
        return false;
    Profile p;
    std::optional<std::string> bytes = ReadFileBytes(file);
    if (bytes)
        p = Parse(*bytes);
    else if (PathExists(file))
        return false; // there but unreadable: never overwrite what we couldn't read

    if (!key) {
        if (!RemoveSection(p, section))
            return true; // nothing to remove
    } else if (!value) {
        if (!RemoveKey(p, section, key))
            return true;
    } else {
        // A line break would end the line early and start lines of the caller's making.
        for (const wchar_t* s : {section, key, value})
            if (std::wstring_view(s).find_first_of(L"\r\n") != std::wstring_view::npos)
                return false;
        SetKey(p, section, key, value);
    }
    // Names the file's lines can't hold (a key with '=', a section with ']', an empty key)
    // would read as something else: refused rather than written.
    if (!ReadsAsWritten(p, section, key, value))
        return false;
    std::optional<std::string> out = BytesReadingAsIntended(p);
    return out && WriteFileAtomically(file, *out);
}
