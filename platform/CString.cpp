#include "platform/CString.h"

#include <algorithm>
#include <cstdarg>
#include <cwchar>
#include <cwctype>

CString CString::Left(int count) const {
    count = std::clamp(count, 0, GetLength());
    return CString(m_s.substr(0, static_cast<size_t>(count)));
}

CString CString::Right(int count) const {
    count = std::clamp(count, 0, GetLength());
    return CString(m_s.substr(m_s.size() - static_cast<size_t>(count)));
}

CString CString::Mid(int first) const {
    return Mid(first, GetLength());
}

CString CString::Mid(int first, int count) const {
    first = std::clamp(first, 0, GetLength());
    count = std::clamp(count, 0, GetLength() - first);
    return CString(m_s.substr(static_cast<size_t>(first), static_cast<size_t>(count)));
}

int CString::Find(wchar_t ch, int start) const {
    if (start < 0 || start > GetLength())
        return -1;
    size_t pos = m_s.find(ch, static_cast<size_t>(start));
    return pos == std::wstring::npos ? -1 : static_cast<int>(pos);
}

int CString::Find(const wchar_t* sub, int start) const {
    if (!sub || start < 0 || start > GetLength())
        return -1;
    size_t pos = m_s.find(sub, static_cast<size_t>(start));
    return pos == std::wstring::npos ? -1 : static_cast<int>(pos);
}

int CString::ReverseFind(wchar_t ch) const {
    size_t pos = m_s.rfind(ch);
    return pos == std::wstring::npos ? -1 : static_cast<int>(pos);
}

CString& CString::MakeLower() {
    for (auto& c : m_s)
        c = static_cast<wchar_t>(std::towlower(static_cast<wint_t>(c)));
    return *this;
}

CString& CString::MakeUpper() {
    for (auto& c : m_s)
        c = static_cast<wchar_t>(std::towupper(static_cast<wint_t>(c)));
    return *this;
}

CString& CString::Trim() {
    return TrimRight().TrimLeft();
}

CString& CString::TrimLeft() {
    auto it = std::find_if(m_s.begin(), m_s.end(),
                           [](wchar_t c) { return !std::iswspace(static_cast<wint_t>(c)); });
    m_s.erase(m_s.begin(), it);
    return *this;
}

CString& CString::TrimRight() {
    while (!m_s.empty() && std::iswspace(static_cast<wint_t>(m_s.back())))
        m_s.pop_back();
    return *this;
}

int CString::Replace(const wchar_t* from, const wchar_t* to) {
    std::wstring_view f(from ? from : L"");
    std::wstring_view t(to ? to : L"");
    if (f.empty())
        return 0;
    int n = 0;
    for (size_t pos = m_s.find(f); pos != std::wstring::npos; pos = m_s.find(f, pos + t.size())) {
        m_s.replace(pos, f.size(), t);
        ++n;
    }
    return n;
}

int CString::Replace(wchar_t from, wchar_t to) {
    int n = 0;
    for (auto& c : m_s) {
        if (c == from) {
            c = to;
            ++n;
        }
    }
    return n;
}

void CString::Format(const wchar_t* format, ...) {
    std::vector<wchar_t> buf(128);
    for (;;) {
        va_list args;
        va_start(args, format);
        int n = std::vswprintf(buf.data(), buf.size(), format, args);
        va_end(args);
        if (n >= 0 && static_cast<size_t>(n) < buf.size()) {
            m_s.assign(buf.data(), static_cast<size_t>(n));
            return;
        }
        // vswprintf gives -1 both for a short buffer and for a bad format; stop growing at 1M.
        if (buf.size() > (1u << 20)) {
            m_s.clear();
            return;
        }
        buf.resize(buf.size() * 4);
    }
}

int CString::Compare(const wchar_t* other) const {
    int c = m_s.compare(other ? other : L"");
    return c < 0 ? -1 : (c > 0 ? 1 : 0);
}

int CString::CompareNoCase(const wchar_t* other) const {
    std::wstring_view b(other ? other : L"");
    size_t n = std::min(m_s.size(), b.size());
    for (size_t i = 0; i < n; ++i) {
        wint_t x = std::towlower(static_cast<wint_t>(m_s[i]));
        wint_t y = std::towlower(static_cast<wint_t>(b[i]));
        if (x != y)
            return x < y ? -1 : 1;
    }
    if (m_s.size() == b.size())
        return 0;
    return m_s.size() < b.size() ? -1 : 1;
}

void CStringArray::InsertAt(int index, const CString& item) {
    index = std::clamp(index, 0, GetSize());
    m_items.insert(m_items.begin() + index, item);
}

void CStringArray::RemoveAt(int index, int count) {
    if (index < 0 || count <= 0 || index >= GetSize())
        return;
    int last = std::min(GetSize(), index + count);
    m_items.erase(m_items.begin() + index, m_items.begin() + last);
}

namespace {

// Writes the UTF-8 of c (U+FFFD for what is no scalar value) at `out`; the number of bytes.
size_t EncodeUtf8(char32_t c, char* out) {
    if (c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF))
        c = 0xFFFD;
    if (c < 0x80) {
        out[0] = static_cast<char>(c);
        return 1;
    }
    if (c < 0x800) {
        out[0] = static_cast<char>(0xC0 | (c >> 6));
        out[1] = static_cast<char>(0x80 | (c & 0x3F));
        return 2;
    }
    if (c < 0x10000) {
        out[0] = static_cast<char>(0xE0 | (c >> 12));
        out[1] = static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out[2] = static_cast<char>(0x80 | (c & 0x3F));
        return 3;
    }
    out[0] = static_cast<char>(0xF0 | (c >> 18));
    out[1] = static_cast<char>(0x80 | ((c >> 12) & 0x3F));
    out[2] = static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    out[3] = static_cast<char>(0x80 | (c & 0x3F));
    return 4;
}

} // namespace

void AppendUtf8(std::string& out, char32_t c) {
    char bytes[4];
    out.append(bytes, EncodeUtf8(c, bytes));
}

// Length of the valid UTF-8 sequence at the start of `s` and its code point; 0 when the
// bytes there are not valid UTF-8.
size_t DecodeUtf8(std::string_view s, char32_t& cp) {
    if (s.empty())
        return 0;
    auto b = static_cast<unsigned char>(s[0]);
    size_t len = b < 0x80             ? 1
                 : (b & 0xE0) == 0xC0 ? 2
                 : (b & 0xF0) == 0xE0 ? 3
                 : (b & 0xF8) == 0xF0 ? 4
                                      : 0;
    if (len == 0 || len > s.size())
        return 0;
    char32_t c = len == 1 ? b : b & (0x7F >> len);
    for (size_t k = 1; k < len; ++k) {
        auto cb = static_cast<unsigned char>(s[k]);
        if ((cb & 0xC0) != 0x80)
            return 0;
        c = (c << 6) | (cb & 0x3F);
    }
    static constexpr char32_t kMin[] = {0, 0, 0x80, 0x800, 0x10000};
    if (c < kMin[len] || c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF))
        return 0;
    cp = c;
    return len;
}

std::string ToUtf8(std::wstring_view text) {
    // Sized for the longest encoding and cut to what was written: the model converts every
    // attribute it saves, so this runs hundreds of thousands of times per save.
    std::string out(text.size() * 4, '\0');
    size_t at = 0;
    for (wchar_t wc : text)
        at += EncodeUtf8(static_cast<char32_t>(wc), out.data() + at);
    out.resize(at);
    return out;
}

std::string ToUtf8(const CString& text) {
    return ToUtf8(std::wstring_view(text.str()));
}

CString FromUtf8(std::string_view text) {
    std::wstring out;
    out.reserve(text.size());
    size_t i = 0;
    while (i < text.size()) {
        if (static_cast<unsigned char>(text[i]) < 0x80) {
            out += static_cast<wchar_t>(text[i++]);
            continue;
        }
        char32_t c = 0;
        size_t len = DecodeUtf8(text.substr(i), c);
        out += static_cast<wchar_t>(len ? c : 0xFFFD);
        i += len ? len : 1;
    }
    return CString(std::move(out));
}
