#include "platform/ProfileIni.h"
#include "platform/FileSystem.h"
#include "platform/TextEncoding.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

namespace {

CString Get(const CString& file, const wchar_t* section, const wchar_t* key,
            const wchar_t* def = L"<none>", int size = 256) {
    CString out(L"garbage");
    int n = GetPrivateProfileStringW(section, key, def, out, size, file);
    EXPECT_EQ(n, out.GetLength());
    return out;
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
}
