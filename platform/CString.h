#pragma once
// Wide string value class with the members the module's code uses. Text is held as
// std::wstring; UTF-8 is the encoding at every file, XML and process boundary.

#include "platform/Export.h"
#include <compare>
#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

class KOQDDE_API CString {
public:
    CString() = default;
    CString(const wchar_t* text) : m_s(text ? text : L"") {}
    CString(std::wstring text) : m_s(std::move(text)) {}
    CString(std::wstring_view text) : m_s(text) {}
    CString(wchar_t ch, int count = 1) : m_s(count > 0 ? static_cast<size_t>(count) : 0, ch) {}

    int GetLength() const { return static_cast<int>(m_s.size()); }
    bool IsEmpty() const { return m_s.empty(); }
    void Empty() { m_s.clear(); }
    wchar_t GetAt(int index) const { return m_s.at(static_cast<size_t>(index)); }
    wchar_t operator[](int index) const { return GetAt(index); }
    void SetAt(int index, wchar_t ch) { m_s.at(static_cast<size_t>(index)) = ch; }

    const wchar_t* GetString() const { return m_s.c_str(); }
    operator const wchar_t*() const { return m_s.c_str(); }
    const std::wstring& str() const { return m_s; }

    // Out-of-range counts are clamped, never refused: callers pass lengths unchecked.
    CString Left(int count) const;
    CString Right(int count) const;
    CString Mid(int first) const;
    CString Mid(int first, int count) const;

    // Index of the first match at or after start, or -1.
    int Find(wchar_t ch, int start = 0) const;
    int Find(const wchar_t* sub, int start = 0) const;
    int ReverseFind(wchar_t ch) const;

    CString& MakeLower();
    CString& MakeUpper();
    CString& Trim();
    CString& TrimLeft();
    CString& TrimRight();
    // Replaces every occurrence; returns how many were replaced.
    int Replace(const wchar_t* from, const wchar_t* to);
    int Replace(wchar_t from, wchar_t to);

    // printf-style formatting. Wide strings are passed with %ls (this is not Windows).
    void Format(const wchar_t* format, ...);

    int Compare(const wchar_t* other) const;
    int CompareNoCase(const wchar_t* other) const;

    CString& operator+=(const CString& other) {
        m_s += other.m_s;
        return *this;
    }
    CString& operator+=(const wchar_t* other) {
        m_s += other ? other : L"";
        return *this;
    }
    CString& operator+=(wchar_t ch) {
        m_s += ch;
        return *this;
    }

    friend CString operator+(const CString& a, const CString& b) { return CString(a.m_s + b.m_s); }
    friend CString operator+(const CString& a, const wchar_t* b) {
        return CString(a.m_s + (b ? b : L""));
    }
    friend CString operator+(const wchar_t* a, const CString& b) {
        return CString((a ? a : L"") + b.m_s);
    }
    friend CString operator+(const CString& a, wchar_t b) { return CString(a.m_s + b); }

    friend bool operator==(const CString& a, const CString& b) { return a.m_s == b.m_s; }
    friend bool operator==(const CString& a, const wchar_t* b) { return a.m_s == (b ? b : L""); }
    friend std::strong_ordering operator<=>(const CString& a, const CString& b) {
        return a.m_s <=> b.m_s;
    }

private:
    std::wstring m_s;
};

// Growable array of strings with the members the module's code uses.
class KOQDDE_API CStringArray {
public:
    CStringArray() = default;
    CStringArray(std::initializer_list<CString> items) : m_items(items) {}

    int GetSize() const { return static_cast<int>(m_items.size()); }
    int GetCount() const { return GetSize(); }
    bool IsEmpty() const { return m_items.empty(); }
    int Add(const CString& item) {
        m_items.push_back(item);
        return GetSize() - 1;
    }
    void Append(const CStringArray& other) {
        m_items.insert(m_items.end(), other.m_items.begin(), other.m_items.end());
    }
    const CString& GetAt(int index) const { return m_items.at(static_cast<size_t>(index)); }
    void SetAt(int index, const CString& item) { m_items.at(static_cast<size_t>(index)) = item; }
    CString& operator[](int index) { return m_items.at(static_cast<size_t>(index)); }
    const CString& operator[](int index) const { return GetAt(index); }
    void InsertAt(int index, const CString& item);
    void RemoveAt(int index, int count = 1);
    void RemoveAll() { m_items.clear(); }

    auto begin() const { return m_items.begin(); }
    auto end() const { return m_items.end(); }

private:
    std::vector<CString> m_items;
};

// UTF-8 <-> wide conversions used at every boundary. Invalid UTF-8 bytes become U+FFFD.
KOQDDE_API std::string ToUtf8(const CString& text);
KOQDDE_API std::string ToUtf8(std::wstring_view text);
KOQDDE_API CString FromUtf8(std::string_view text);
// Appends one code point as UTF-8 (U+FFFD for a surrogate or a value past U+10FFFF).
KOQDDE_API void AppendUtf8(std::string& out, char32_t c);
// Length of the valid UTF-8 sequence at the start of `s`, with its code point in `cp`; 0 when
// the bytes there are not valid UTF-8 (overlong forms and surrogates included).
KOQDDE_API size_t DecodeUtf8(std::string_view s, char32_t& cp);
