#include "platform/FileSystem.h"
#include "support/TempDir.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace {

// Names in the folder other than the given one: a leftover temporary file shows up here.
int OtherEntries(const TempDir& dir, const std::string& keep) {
    int n = 0;
    for (const auto& e : std::filesystem::directory_iterator(ToUtf8(dir.Path())))
        n += e.path().filename() != keep;
    return n;
}

} // namespace

TEST(FileSystemTest, AtomicWriteReplacesContentAndLeavesNoTemporaryFile) {
    TempDir dir;
    CString file = dir.Write(L"配置.ini", "old content that is longer");
    ::chmod(ToUtf8(file).c_str(), 0640);
    ASSERT_TRUE(WriteFileAtomically(file, "new"));
    EXPECT_EQ(dir.Read(L"配置.ini"), "new");
    EXPECT_EQ(OtherEntries(dir, "配置.ini"), 0);
    struct stat st {};
    ASSERT_EQ(::stat(ToUtf8(file).c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 0777, 0640u);

    EXPECT_FALSE(WriteFileAtomically(dir.File(L"missing/x.ini"), "x"));
    // A folder in the way: the rename fails and the temporary file must go.
    ASSERT_TRUE(MakeDirectory(dir.File(L"sub")));
    EXPECT_FALSE(WriteFileAtomically(dir.File(L"sub"), "x"));
    EXPECT_EQ(OtherEntries(dir, "配置.ini"), 1);
    EXPECT_EQ(ReadFileBytes(dir.File(L"sub")), std::nullopt);
    EXPECT_EQ(ReadFileBytes(dir.File(L"none")), std::nullopt);
    EXPECT_EQ(ReadFileBytes(file), "new");
}

TEST(FileSystemTest, CopiesOverwriteTargets) {
    TempDir dir;
    CString from = dir.Write(L"src/a.xml", std::string("A\0B", 3));
    dir.Write(L"src/deep/b.xml", "B");
    CString to = dir.Write(L"dst/a.xml", "a much longer old target");
    ASSERT_TRUE(CopyFileOverwrite(from, to));
    EXPECT_EQ(dir.Read(L"dst/a.xml"), std::string("A\0B", 3));
    EXPECT_FALSE(CopyFileOverwrite(dir.File(L"src/none"), to));
    EXPECT_EQ(dir.Read(L"dst/a.xml"), std::string("A\0B", 3));

    dir.Write(L"src/a.xml", "A2");
    ASSERT_TRUE(CopyTree(dir.File(L"src"), dir.File(L"dst")));
    EXPECT_EQ(dir.Read(L"dst/a.xml"), "A2");
    EXPECT_EQ(dir.Read(L"dst/deep/b.xml"), "B");
    EXPECT_FALSE(CopyTree(dir.File(L"none"), dir.File(L"dst2")));
}

TEST(FileSystemTest, MakeDirectoryMakesOneLevelOnly) {
    TempDir dir;
    EXPECT_FALSE(MakeDirectory(dir.File(L"a/b")));
    EXPECT_FALSE(PathExists(dir.File(L"a")));
    EXPECT_TRUE(MakeDirectory(dir.File(L"a")));
    EXPECT_FALSE(MakeDirectory(dir.File(L"a"))); // already there
    EXPECT_TRUE(PathExists(dir.File(L"a")));
    EXPECT_TRUE(MakeDirectories(dir.File(L"x/y/z")));
    EXPECT_TRUE(MakeDirectories(dir.File(L"x/y/z")));
    EXPECT_TRUE(PathExists(dir.File(L"x/y/z")));
    CString file = dir.Write(L"f", "");
    EXPECT_FALSE(MakeDirectories(file + L"/g"));
    EXPECT_FALSE(PathExists(L""));
}

TEST(FileSystemTest, SplitsAndJoinsPaths) {
    EXPECT_EQ(FileNameOf(L"/p/q\\r.ini"), L"r.ini");
    EXPECT_EQ(FolderOf(L"/p/q\\r.ini"), L"/p/q");
    EXPECT_EQ(FileNameOf(L"r.ini"), L"r.ini");
    EXPECT_EQ(FolderOf(L"r.ini"), L"");
    EXPECT_EQ(FileNameOf(L"/p/"), L"");
    EXPECT_EQ(JoinPath(L"/p", L"r.ini"), L"/p/r.ini");
    EXPECT_EQ(JoinPath(L"/p/", L"r.ini"), L"/p/r.ini");
    EXPECT_EQ(JoinPath(L"c:\\p\\", L"r.ini"), L"c:\\p\\r.ini");
    EXPECT_EQ(JoinPath(L"", L"r.ini"), L"r.ini");
}

// The store writes a file as a stream of pieces from a few bytes (a serialiser's) to a
// megabyte (a copy from disk): whatever their sizes, the file must hold them in order, and a
// writer dropped before its commit must leave the old file as it was.
TEST(FileSystemTest, PieceWriterKeepsOrderAcrossSizesAndReaderReadsAtOffsets) {
    TempDir dir;
    CString file = dir.Write(L"big.xml", "old");
    std::string expected;
    {
        AtomicFileWriter writer(file);
        int seed = 0;
        for (size_t size : {size_t{1}, size_t{2000}, size_t{300000}, size_t{5}, size_t{262143},
                            size_t{262144}, size_t{7}, size_t{1} << 20, size_t{3}}) {
            std::string piece(size, '\0');
            for (char& c : piece)
                c = static_cast<char>('a' + (seed++ % 26));
            expected += piece;
            ASSERT_TRUE(writer.Write(piece));
        }
        EXPECT_EQ(dir.Read(L"big.xml"), "old"); // nothing shows before the commit
        ASSERT_TRUE(writer.Commit());
    }
    EXPECT_EQ(dir.Read(L"big.xml"), expected);
    {
        AtomicFileWriter dropped(file);
        ASSERT_TRUE(dropped.Write("short"));
    }
    EXPECT_EQ(dir.Read(L"big.xml"), expected);
    EXPECT_EQ(OtherEntries(dir, "big.xml"), 0);

    FileReader reader(file);
    ASSERT_TRUE(reader);
    char bytes[8] = {};
    ASSERT_EQ(reader.ReadAt(bytes, 4, 300001), 4u);
    EXPECT_EQ(std::string(bytes, 4), expected.substr(300001, 4));
    EXPECT_EQ(reader.ReadAt(bytes, 8, expected.size() - 3), 3u); // short at the end
    EXPECT_EQ(reader.ReadAt(bytes, 8, expected.size() + 10), 0u);
    // ReadAt leaves where Read goes on alone.
    ASSERT_EQ(reader.Read(bytes, 5), 5u);
    EXPECT_EQ(std::string(bytes, 5), expected.substr(0, 5));
}
