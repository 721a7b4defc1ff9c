#include "platform/ProfileIni.h"
#include "platform/FileSystem.h"
#include "platform/TextEncoding.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <cwctype>
#include <map>
#include <utility>
#include <vector>

namespace {

CString Get(const CString& file, const wchar_t* section, const wchar_t* key,
            const wchar_t* def = L"<none>", int size = 256) {
    CString out(L"garbage");
    int n = GetPrivateProfileStringW(section, key, def, out, size, file);
    EXPECT_EQ(n, out.GetLength());
    return out;
}

// Names as the API compares them: without surrounding blanks and case.
std::wstring Fold(std::wstring s) {
    while (!s.empty() && (s.back() == L' ' || s.back() == L'\t'))
        s.pop_back();
    while (!s.empty() && (s.front() == L' ' || s.front() == L'\t'))
        s.erase(0, 1);
    for (wchar_t& c : s)
        c = static_cast<wchar_t>(std::towlower(static_cast<wint_t>(c)));
    return s;
}

// Every section and key the file shows through the API, with the value each reads as; a
// section is there under the empty key, which no line can name.
using Readings = std::map<std::pair<std::wstring, std::wstring>, std::wstring>;

Readings ReadAll(const CString& file) {
    auto names = [&](const wchar_t* section) {
        std::wstring list = Get(file, section, nullptr, L"", 1 << 16).str();
        std::vector<std::wstring> out;
        for (size_t at = 0, end; (end = list.find(L'\0', at)) != std::wstring::npos; at = end + 1)
            out.push_back(list.substr(at, end - at));
        return out;
    };
    Readings r;
    for (const std::wstring& s : names(nullptr)) {
        r[{Fold(s), L""}] = L"[section]";
        for (const std::wstring& k : names(s.c_str()))
            r[{Fold(s), Fold(k)}] = Get(file, s.c_str(), k.c_str(), L"<none>", 1 << 16).str();
    }
    return r;
}

} // namespace

TEST(ProfileIniTest, ReadsWithoutRegardToCaseAndTrimsValues) {
    TempDir dir;
    CString file = dir.Write(L"a.ini", "; comment=no\r\n"
                                       "[Other]\r\n"
                                       "ConfigName=wrong\r\n"
                                       "[ QdDeConfigInfo ]\r\n"
                                       "  ConfigName =  \"给排水 默认\"  \r\n"
                                       "configname=second\r\n"
                                       "single=' x '\r\n"
                                       "mixed=\"x'\r\n"
                                       "empty=\r\n"
                                       "[qddeconfiginfo]\r\n"
                                       "late=1\r\n");
    EXPECT_EQ(Get(file, L"qddeconfiginfo", L"CONFIGNAME"), L"给排水 默认");
    EXPECT_EQ(Get(file, L"QDDECONFIGINFO", L"Single"), L" x ");
    EXPECT_EQ(Get(file, L"QdDeConfigInfo", L"mixed"), L"\"x'");
    EXPECT_EQ(Get(file, L"QdDeConfigInfo", L"empty"), L"");
    // Only the first section of a name is searched.
    EXPECT_EQ(Get(file, L"QdDeConfigInfo", L"late"), L"<none>");
    EXPECT_EQ(Get(file, L"Missing", L"ConfigName", L"dflt  "), L"dflt");
    EXPECT_EQ(Get(dir.File(L"none.ini"), L"Other", L"ConfigName"), L"<none>");
    EXPECT_EQ(Get(file, nullptr, nullptr),
              CString(std::wstring(L"Other\0QdDeConfigInfo\0qddeconfiginfo\0", 36)));
    EXPECT_EQ(Get(file, L"other", nullptr), CString(std::wstring(L"ConfigName\0", 11)));
}

TEST(ProfileIniTest, ResultIsCutToTheBuffer) {
    TempDir dir;
    CString file = dir.Write(L"a.ini", "[s]\nname=" + std::string(150, 'n') + "\n");
    EXPECT_EQ(Get(file, L"s", L"name", L"", 100), CString(L'n', 99));
    EXPECT_EQ(Get(file, L"s", L"none", L"0123456789", 5), L"0123");
    EXPECT_EQ(Get(file, L"s", L"name", L"", 1), L"");
    EXPECT_EQ(Get(file, L"s", L"name", L"", 0), L"");
}

TEST(ProfileIniTest, WritesChangeOnlyTheLinesConcerned) {
    TempDir dir;
    const std::string head = "\xEF\xBB\xBF; keep  this \xFF byte\r\n[A]\r\nx = 1\r\n";
    const std::string tail = "\r\n[b]\r\n  y=\t2\r\n";
    CString file = dir.Write(L"a.ini", head + "Key = old\r\n" + tail);

    ASSERT_TRUE(WritePrivateProfileStringW(L"a", L"KEY", L"新", file));
    EXPECT_EQ(dir.Read(L"a.ini"), head + "Key = 新\r\n" + tail);
    ASSERT_TRUE(WritePrivateProfileStringW(L"A", L"z", L"3", file));
    EXPECT_EQ(dir.Read(L"a.ini"), head + "Key = 新\r\nz=3\r\n" + tail);
    ASSERT_TRUE(WritePrivateProfileStringW(L"C", L"w", L"4", file));
    EXPECT_EQ(dir.Read(L"a.ini"), head + "Key = 新\r\nz=3\r\n" + tail + "[C]\r\nw=4\r\n");

    ASSERT_TRUE(WritePrivateProfileStringW(L"a", L"key", nullptr, file));
    ASSERT_TRUE(WritePrivateProfileStringW(L"c", nullptr, nullptr, file));
    EXPECT_EQ(dir.Read(L"a.ini"), head + "z=3\r\n" + tail);
    ASSERT_TRUE(WritePrivateProfileStringW(L"nothing", L"k", nullptr, file));
    EXPECT_EQ(dir.Read(L"a.ini"), head + "z=3\r\n" + tail);
}

TEST(ProfileIniTest, NewFilesAndLastLinesWithoutEnding) {
    TempDir dir;
    CString file = dir.File(L"new.ini");
    ASSERT_TRUE(WritePrivateProfileStringW(L"S", L"k", L"v", file));
    EXPECT_EQ(dir.Read(L"new.ini"), "[S]\nk=v\n");
    EXPECT_FALSE(WritePrivateProfileStringW(L"S", L"k", L"v", dir.File(L"no/new.ini")));
    // Removing from a file that isn't there succeeds without making it.
    EXPECT_TRUE(WritePrivateProfileStringW(L"S", nullptr, nullptr, dir.File(L"gone.ini")));
    EXPECT_FALSE(PathExists(dir.File(L"gone.ini")));

    CString open = dir.Write(L"open.ini", "[S]\nk=v");
    ASSERT_TRUE(WritePrivateProfileStringW(L"s", L"k", L"w", open));
    EXPECT_EQ(dir.Read(L"open.ini"), "[S]\nk=w");
    ASSERT_TRUE(WritePrivateProfileStringW(L"s", L"n", L"1", open));
    EXPECT_EQ(dir.Read(L"open.ini"), "[S]\nk=w\nn=1\n");
}

TEST(ProfileIniTest, KeepsUtf16AndGb18030Files) {
    TempDir dir;
    const std::string utf16 = "\xFF\xFE" + Utf8ToUtf16Le("[配置]\r\n名称=暖通\r\n");
    CString wide = dir.Write(L"w.ini", utf16);
    EXPECT_EQ(Get(wide, L"配置", L"名称"), L"暖通");
    ASSERT_TRUE(WritePrivateProfileStringW(L"配置", L"名称", L"给排水", wide));
    EXPECT_EQ(dir.Read(L"w.ini"), "\xFF\xFE" + Utf8ToUtf16Le("[配置]\r\n名称=给排水\r\n"));

    // [配置] / 名称=暖通 in GB18030: not valid UTF-8, so read as GB18030.
    const std::string gb = "[\xC5\xE4\xD6\xC3]\n\xC3\xFB\xB3\xC6=\xC5\xAF\xCD\xA8\n";
    CString legacy = dir.Write(L"g.ini", gb);
    EXPECT_EQ(Get(legacy, L"配置", L"名称"), L"暖通");
    ASSERT_TRUE(WritePrivateProfileStringW(L"配置", L"x", L"给排水", legacy));
    EXPECT_EQ(dir.Read(L"g.ini"), gb + "x=\xB8\xF8\xC5\xC5\xCB\xAE\n");

    // Without its one GB18030 line the rest would be valid UTF-8 and read otherwise: a line
    // above it all keeps the file GB18030 and the rest as it was.
    const std::string rest = "[s]\r\na=\xC3\xA9\r\n";
    CString flip = dir.Write(L"f.ini", rest + "k=\xC5\xE4\r\n");
    ASSERT_TRUE(WritePrivateProfileStringW(L"s", L"k", nullptr, flip));
    EXPECT_TRUE(dir.Read(L"f.ini").ends_with("\r\n" + rest));
    EXPECT_EQ(Get(flip, L"s", L"a"), L"茅");
}

TEST(ProfileIniTest, AWriteChangesHowNoOtherKeyReads) {
    using namespace std::string_literals;
    const std::string gbOnly = "\xC5\xE4"; // GB18030, not UTF-8
    const std::string both = "\xC3\xA9";   // GB18030 that is also UTF-8, reading otherwise
    const std::string files[] = {
        // Empty, a BOM alone, UTF-16 ending in an odd byte.
        "",
        "\xEF\xBB\xBF",
        "\xFF\xFE",
        "\xFF\xFE" + Utf8ToUtf16Le("[s]\r\na=1\r\n[t]\r\nb=2") + "X",
        "\xFE\xFF\0[\0t\0]\0\n\0b\0=\0"
        "2\0\rY"s,
        // Read as GB18030 only for k's line, or only for section t.
        "[s]\r\na=" + both + "\r\nk=" + gbOnly + "\r\n",
        "[s]\na=" + both + "\n[t]\nz=" + gbOnly + "\n",
        "[s]\na=" + gbOnly + "\n[t]\nb=\x81",
        "\xEF\xBB\xBF[s]\nb=\xFF\n[t]",
        // A lone "\r" at the end, after "\r\n" or "\n" line breaks; "\r" inside lines.
        "[s]\r\na=1\r\n[t]\r\nb=2\r",
        "[s]\na=1\r\n[t]\nb=2\r",
        "[s]\r\na=1\rb=2\r\r\nc= 3 \r\n[t]\r",
        "[s]\r[t]\rb=1\r",
        "[s]\nb=2",
        // A section twice, a key twice; blanks around names; lines before any section; NULs.
        "[s]\na=1\nk=first\nK=second\n[t]\nx=1\n[S]\nk=third\nb=2\n",
        " [ s ] \n  a  =  1  \n\tk\t=\t' q '\n\n[t]\n\n",
        "k=0\n\n[s]\n;k=c\n\n[t]\nb=1",
        "[s]\na=1\0x\nk=\0\n[t]\0\n"s,
    };
    struct Write {
        const wchar_t* section;
        const wchar_t* key;
        const wchar_t* value;
    };
    const Write writes[] = {
        {L"s", L"k", L"新值"},    {L"S", L"A", L" 'q' "},   {L" s ", L"b", L"\"x\""},
        {L"new", L"k", L""},      {L"t", L" k ", L"1"},     {L"s", L"k", nullptr},
        {L"s", nullptr, nullptr}, {L"T", nullptr, nullptr},
    };
    TempDir dir;
    for (size_t f = 0; f < std::size(files); ++f) {
        for (const Write& w : writes) {
            SCOPED_TRACE(testing::Message()
                         << "file " << f << ", section " << ToUtf8(CString(w.section)) << ", key "
                         << (w.key ? ToUtf8(CString(w.key)) : "-"));
            CString file = dir.Write(L"p.ini", files[f]);
            Readings expected = ReadAll(file);
            const std::wstring section = Fold(w.section);
            if (!w.key)
                std::erase_if(expected, [&](const auto& r) { return r.first.first == section; });
            else if (!w.value)
                expected.erase({section, Fold(w.key)});
            else {
                expected[{section, L""}] = L"[section]";
                expected[{section, Fold(w.key)}] = w.value;
            }

            EXPECT_TRUE(WritePrivateProfileStringW(w.section, w.key, w.value, file));
            EXPECT_EQ(ReadAll(file), expected);
        }
    }
}

TEST(ProfileIniTest, RefusesWritesThatWouldReadOtherwise) {
    // Each would read back as another section, key or value; the last no encoding holds.
    const wchar_t* const refused[][3] = {{L"s", L"k=j", L"v"},         {L"s]t", L"k", L"v"},
                                         {L"s", L";k", L"v"},          {L"s", L" ", L"v"},
                                         {L"s", L"k", L"1\n[t]\nk=2"}, {L"s", L"k", L"1\r2"},
                                         {L"s\n", L"k", L"v"},         {L"s", L"k", L"\xD800"}};
    TempDir dir;
    for (const std::string& bytes : {std::string("[s]\nk=1\n"), std::string("[s]\nk=\xC5\xE4\n")}) {
        CString file = dir.Write(L"p.ini", bytes);
        for (const auto& [section, key, value] : refused)
            EXPECT_FALSE(WritePrivateProfileStringW(section, key, value, file))
                << ToUtf8(CString(section)) << " " << ToUtf8(CString(key));
        EXPECT_EQ(dir.Read(L"p.ini"), bytes);
    }
}
