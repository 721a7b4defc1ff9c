#pragma once
// File-system calls the module needs, with the native separator "/".

#include "platform/CString.h"
#include "platform/Export.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// As _waccess(path, 0) == 0: the path exists (file or folder).
KOQDDE_DIALOGS_API bool PathExists(const CString& path);
// As _wmkdir: makes one level only; false when it fails or already exists.
bool MakeDirectory(const CString& path);
// Makes every missing level; true when the folder exists afterwards.
bool MakeDirectories(const CString& path);
// Copies a file, replacing the target. False when the source can't be read or the target
// can't be written; the target is replaced atomically.
KOQDDE_DIALOGS_API bool CopyFileOverwrite(const CString& from, const CString& to);
// Copies a folder tree, replacing files that exist. False on the first failure.
bool CopyTree(const CString& from, const CString& to);

// Whether two paths name one file as this platform decides it: the same file by identity
// (device and inode) when both exist, else the same normalised absolute path, with case.
bool IsSameFile(const CString& a, const CString& b);

// Why a whole-file read gave nothing.
enum class ReadFailure { None, Missing, NotAFile, TooLarge, NoPermission, IoError };

struct FileBytes {
    std::string bytes;
    ReadFailure failure = ReadFailure::None;

    explicit operator bool() const { return failure == ReadFailure::None; }
    // A short English reason for a failure ("no read permission"), "" when there is none.
    std::string Reason() const;
};

// A regular file opened for reading piece by piece, refused as ReadRegularFile refuses one.
class FileReader {
public:
    explicit FileReader(const CString& path, std::uint64_t maxBytes = UINT64_MAX);
    ~FileReader();
    FileReader(const FileReader&) = delete;
    FileReader& operator=(const FileReader&) = delete;

    explicit operator bool() const { return m_failure == ReadFailure::None; }
    ReadFailure Failure() const { return m_failure; }
    // The size when opened.
    std::uint64_t Size() const { return m_size; }
    // Fills `into` with up to `size` bytes, fewer only at the end of the file; 0 at its end.
    // On a read error, 0, and Failure() says so.
    std::size_t Read(char* into, std::size_t size);
    // As Read, from `offset` and without moving where Read goes on.
    std::size_t ReadAt(char* into, std::size_t size, std::uint64_t offset);

private:
    // Calls readSome(at, count, have) until `size` bytes are in or the file ends.
    template <class ReadSome> std::size_t Fill(char* into, std::size_t size, ReadSome readSome);

    int m_fd = -1;
    std::uint64_t m_size = 0;
    ReadFailure m_failure = ReadFailure::None;
};

// Reads a regular file whole. What is not one (a folder, a FIFO, a device) is refused at once,
// without waiting for a writer on a FIFO, and a file larger than maxBytes before it is read.
FileBytes ReadRegularFile(const CString& path, std::uint64_t maxBytes = UINT64_MAX);
// The first `count` bytes of a regular file (fewer when it is shorter); nothing when it can't
// be read or is no regular file.
std::optional<std::string> ReadFileStart(const CString& path, std::size_t count);
// Whole-file reading as ReadRegularFile; nothing when the file can't be read.
std::optional<std::string> ReadFileBytes(const CString& path);

// Replaces the file atomically: temporary file in the same folder, flush, fsync, rename.
// A symbolic link stays a link: the file at the end of its chain is replaced (and created
// when the link dangles). A file the user may not write, or that is not a regular file, is
// not replaced. Temporary files that killed writers left beside the file are removed.
// On failure the old file is untouched, the temporary file removed, and `why` (when given)
// says what went wrong.
bool WriteFileAtomically(const CString& path, std::string_view bytes, std::string* why = nullptr);
// The file a path names once symbolic links are followed; the path itself when it is no link.
// A dangling link gives the path it points to.
CString ResolveLinks(const CString& path);

// A file replaced atomically, written piece by piece: the pieces go to a temporary file
// beside it, which Commit() renames over it, with the guarantees of WriteFileAtomically. A
// writer destroyed without a successful Commit() removes its temporary file and leaves the
// old file as it was.
class AtomicFileWriter {
public:
    explicit AtomicFileWriter(const CString& path);
    ~AtomicFileWriter();
    AtomicFileWriter(const AtomicFileWriter&) = delete;
    AtomicFileWriter& operator=(const AtomicFileWriter&) = delete;

    // False once anything has failed; Error() then says what.
    bool Write(std::string_view bytes);
    bool Commit();
    const std::string& Error() const { return m_error; }

private:
    bool Fail(std::string reason);
    bool Flush();

    std::string m_target; // the file at the end of any links
    std::string m_temp;
    std::string m_prefix;
    int m_fd = -1;
    std::string m_error;
    // Small pieces gather here: a serialiser hands over a few kilobytes at a time, and a
    // system call for each would cost more than the copy.
    std::string m_pending;
};

// The part after the last separator ("/", and "\\" for paths written on Windows).
KOQDDE_DIALOGS_API CString FileNameOf(const CString& path);
// The part before the last separator, without it; empty when there is none.
KOQDDE_DIALOGS_API CString FolderOf(const CString& path);
// Joins with "/" unless folder is empty or already ends with a separator.
KOQDDE_DIALOGS_API CString JoinPath(const CString& folder, const CString& name);
