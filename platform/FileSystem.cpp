#include "platform/FileSystem.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace fs = std::filesystem;

namespace {

fs::path NativePath(const CString& path) {
    return fs::path(ToUtf8(path));
}

bool WriteAll(int fd, std::string_view bytes) {
    while (!bytes.empty()) {
        ssize_t n = ::write(fd, bytes.data(), bytes.size());
        if (n < 0) {
            if (errno == EINTR)
                continue;
            return false;
        }
        bytes.remove_prefix(static_cast<size_t>(n));
    }
    return true;
}

// Makes the rename itself durable; a failure here does not undo the write, so it is ignored.
void SyncFolder(const fs::path& folder) {
    int fd = ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY);
    if (fd >= 0) {
        ::fsync(fd);
        ::close(fd);
    }
}

bool IsSeparator(wchar_t c) {
    return c == L'/' || c == L'\\';
}

int LastSeparator(const CString& path) {
    return std::max(path.ReverseFind(L'/'), path.ReverseFind(L'\\'));
}

// Follows a chain of symbolic links to the file at its end (which may not exist). Relative
// links are taken from the folder of the link. A loop gives up after as many hops as the
// kernel allows and leaves the last link, so the write fails there rather than spinning.
fs::path FollowLinks(fs::path path) {
    std::error_code ec;
    for (int hop = 0; hop < 40; ++hop) {
        if (!fs::is_symlink(fs::symlink_status(path, ec)))
            return path;
        fs::path next = fs::read_symlink(path, ec);
        if (ec)
            return path;
        path = next.is_absolute() ? next : path.parent_path() / next;
    }
    return path;
}

// Temporary files of a save are named after the target, so that a later save can find those
// a killed one left: "." + name + ".tmp-" + writer's process id + "-" + counter.
std::string TempPrefix(const fs::path& target) {
    return "." + target.filename().string() + ".tmp-";
}

// Removes the temporary files of the target whose writer no longer runs. Those of a writer
// still running are left alone: it may be about to rename one.
void RemoveStaleTemporaries(const fs::path& folder, const std::string& prefix) {
    std::error_code ec;
    const fs::path where = folder.empty() ? fs::path(".") : folder;
    std::vector<fs::path> stale;
    for (fs::directory_iterator it(where, ec), end; !ec && it != end; it.increment(ec)) {
        const std::string name = it->path().filename().string();
        if (!name.starts_with(prefix))
            continue;
        const std::string rest = name.substr(prefix.size());
        char* after = nullptr;
        const long pid = std::strtol(rest.c_str(), &after, 10);
        if (pid <= 0 || after == rest.c_str() || *after != '-')
            continue;
        if (pid != ::getpid() && ::kill(static_cast<pid_t>(pid), 0) != 0 && errno == ESRCH)
            stale.push_back(it->path());
    }
    for (const fs::path& file : stale)
        fs::remove(file, ec);
}

} // namespace

bool PathExists(const CString& path) {
    return !path.IsEmpty() && ::access(ToUtf8(path).c_str(), F_OK) == 0;
}

bool IsSameFile(const CString& a, const CString& b) {
    std::error_code ec;
    const fs::path pa(ToUtf8(a));
    const fs::path pb(ToUtf8(b));
    if (fs::exists(pa, ec) && fs::exists(pb, ec)) {
        bool same = fs::equivalent(pa, pb, ec);
        if (!ec)
            return same;
    }
    const fs::path na = fs::absolute(pa, ec).lexically_normal();
    const fs::path nb = fs::absolute(pb, ec).lexically_normal();
    return na == nb;
}

bool MakeDirectory(const CString& path) {
    return !path.IsEmpty() && ::mkdir(ToUtf8(path).c_str(), 0777) == 0;
}

bool MakeDirectories(const CString& path) {
    if (path.IsEmpty())
        return false;
    std::error_code ec;
    fs::create_directories(NativePath(path), ec);
    return fs::is_directory(NativePath(path), ec);
}

bool CopyFileOverwrite(const CString& from, const CString& to) {
    std::optional<std::string> bytes = ReadFileBytes(from);
    return bytes && WriteFileAtomically(to, *bytes);
}

bool CopyTree(const CString& from, const CString& to) {
    std::error_code ec;
    fs::path source = NativePath(from);
    if (!fs::is_directory(source, ec) || !MakeDirectories(to))
        return false;
    // List everything first, so a target inside the source is not copied into itself.
    std::vector<fs::directory_entry> entries;
    for (fs::recursive_directory_iterator it(source, ec), end; !ec && it != end; it.increment(ec))
        entries.push_back(*it);
    if (ec)
        return false;
    fs::path target = NativePath(to);
    for (const fs::directory_entry& entry : entries) {
        fs::path relative = entry.path().lexically_relative(source);
        CString dest = FromUtf8((target / relative).string());
        bool ok = entry.is_directory(ec) ? MakeDirectories(dest)
                                         : CopyFileOverwrite(FromUtf8(entry.path().string()), dest);
        if (!ok)
            return false;
    }
    return true;
}

std::string FileBytes::Reason() const {
    switch (failure) {
    case ReadFailure::None:
        return {};
    case ReadFailure::Missing:
        return "no such file";
    case ReadFailure::NotAFile:
        return "not a regular file (a folder, a pipe or a device)";
    case ReadFailure::TooLarge:
        return "the file is too large";
    case ReadFailure::NoPermission:
        return "no read permission";
    case ReadFailure::IoError:
        break;
    }
    return "the file can't be read";
}

FileReader::FileReader(const CString& path, std::uint64_t maxBytes) {
    // Non-blocking, so that opening a FIFO does not wait for a writer; a regular file reads
    // the same either way.
    m_fd = ::open(ToUtf8(path).c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (m_fd < 0) {
        m_failure = errno == ENOENT || errno == ENOTDIR ? ReadFailure::Missing
                    : errno == EACCES                   ? ReadFailure::NoPermission
                                                        : ReadFailure::IoError;
        return;
    }
    struct stat st {};
    if (::fstat(m_fd, &st) != 0)
        m_failure = ReadFailure::IoError;
    else if (!S_ISREG(st.st_mode))
        m_failure = ReadFailure::NotAFile;
    else if (static_cast<std::uint64_t>(st.st_size) > maxBytes)
        m_failure = ReadFailure::TooLarge;
    m_size = static_cast<std::uint64_t>(st.st_size);
}

FileReader::~FileReader() {
    if (m_fd >= 0)
        ::close(m_fd);
}

std::size_t FileReader::Read(char* into, std::size_t size) {
    return Fill(into, size,
                [this](char* at, size_t count, size_t) { return ::read(m_fd, at, count); });
}

std::size_t FileReader::ReadAt(char* into, std::size_t size, std::uint64_t offset) {
    return Fill(into, size, [this, offset](char* at, size_t count, size_t have) {
        return ::pread(m_fd, at, count, static_cast<off_t>(offset + have));
    });
}

template <class ReadSome>
std::size_t FileReader::Fill(char* into, std::size_t size, ReadSome readSome) {
    if (m_failure != ReadFailure::None)
        return 0;
    size_t have = 0;
    while (have < size) {
        const ssize_t n = readSome(into + have, size - have, have);
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0) {
            m_failure = ReadFailure::IoError;
            return 0;
        }
        if (n == 0)
            break;
        have += static_cast<size_t>(n);
    }
    return have;
}

FileBytes ReadRegularFile(const CString& path, std::uint64_t maxBytes) {
    FileBytes out;
    FileReader reader(path, maxBytes);
    if (!reader) {
        out.failure = reader.Failure();
        return out;
    }
    // Sized from the file's length with one byte to spare, so that the read that finds the
    // end needs no larger buffer; a file that grows meanwhile reads on past it.
    out.bytes.resize(static_cast<size_t>(reader.Size()) + 1);
    size_t have = 0;
    for (;;) {
        if (have == out.bytes.size())
            out.bytes.resize(have + 65536);
        const size_t n = reader.Read(out.bytes.data() + have, out.bytes.size() - have);
        have += n;
        if (have > maxBytes) {
            out.failure = ReadFailure::TooLarge;
            break;
        }
        if (have < out.bytes.size()) // the end, or a failure
            break;
    }
    if (out.failure == ReadFailure::None)
        out.failure = reader.Failure();
    out.bytes.resize(out.failure == ReadFailure::None ? have : 0);
    return out;
}

std::optional<std::string> ReadFileStart(const CString& path, std::size_t count) {
    int fd = ::open(ToUtf8(path).c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0)
        return std::nullopt;
    struct stat st {};
    std::optional<std::string> out;
    if (::fstat(fd, &st) == 0 && S_ISREG(st.st_mode)) {
        std::string bytes(count, '\0');
        size_t have = 0;
        ssize_t n = 0;
        while (have < count && (n = ::read(fd, bytes.data() + have, count - have)) != 0) {
            if (n < 0 && errno == EINTR)
                continue;
            if (n < 0)
                break;
            have += static_cast<size_t>(n);
        }
        if (n >= 0) {
            bytes.resize(have);
            out = std::move(bytes);
        }
    }
    ::close(fd);
    return out;
}

std::optional<std::string> ReadFileBytes(const CString& path) {
    FileBytes read = ReadRegularFile(path);
    if (!read)
        return std::nullopt;
    return std::move(read.bytes);
}

CString ResolveLinks(const CString& path) {
    return FromUtf8(FollowLinks(NativePath(path)).string());
}

AtomicFileWriter::AtomicFileWriter(const CString& path) {
    if (NativePath(path).filename().empty()) {
        Fail("not a file name");
        return;
    }
    // The link stays; the file it leads to is the one replaced.
    const fs::path target = FollowLinks(NativePath(path));
    m_target = target.string();
    const fs::path folder = target.parent_path();
    struct stat old {};
    const bool replacing = ::stat(m_target.c_str(), &old) == 0;
    if (replacing && !S_ISREG(old.st_mode)) {
        Fail("not a regular file");
        return;
    }
    // The rename needs only the folder's permission; the file's own is the user's word.
    if (replacing && ::access(m_target.c_str(), W_OK) != 0) {
        Fail(std::strerror(errno));
        return;
    }
    // Created with O_EXCL under a name of our own rather than by mkstemp, so the new file
    // gets the usual mode (0666 less the umask) without touching the process umask.
    static std::atomic<unsigned> counter{0};
    m_prefix = TempPrefix(target);
    for (int attempt = 0; m_fd < 0 && attempt < 100; ++attempt) {
        m_temp =
            (folder / (m_prefix + std::to_string(::getpid()) + "-" + std::to_string(counter++)))
                .string();
        m_fd = ::open(m_temp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (m_fd < 0 && errno != EEXIST) {
            m_temp.clear();
            Fail(std::strerror(errno));
            return;
        }
    }
    if (m_fd < 0) {
        m_temp.clear();
        Fail("no free temporary name");
        return;
    }
    // Replacing a file keeps its permissions.
    if (replacing && ::fchmod(m_fd, old.st_mode & 07777) != 0)
        Fail(std::strerror(errno));
}

AtomicFileWriter::~AtomicFileWriter() {
    if (m_fd >= 0)
        ::close(m_fd);
    if (!m_temp.empty())
        ::unlink(m_temp.c_str());
}

bool AtomicFileWriter::Fail(std::string reason) {
    if (m_error.empty())
        m_error = std::move(reason);
    return false;
}

bool AtomicFileWriter::Write(std::string_view bytes) {
    constexpr size_t kGather = size_t{256} << 10;
    if (!m_error.empty())
        return false;
    if (m_pending.size() + bytes.size() > kGather && !Flush())
        return false;
    if (bytes.size() >= kGather)
        return WriteAll(m_fd, bytes) || Fail(std::strerror(errno));
    m_pending.reserve(kGather);
    m_pending += bytes;
    return true;
}

bool AtomicFileWriter::Flush() {
    const bool written = WriteAll(m_fd, m_pending);
    m_pending.clear();
    return written || Fail(std::strerror(errno));
}

bool AtomicFileWriter::Commit() {
    if (!m_error.empty() || !Flush())
        return false;
    if (::fsync(m_fd) != 0)
        return Fail(std::strerror(errno));
    const int fd = std::exchange(m_fd, -1);
    if (::close(fd) != 0)
        return Fail(std::strerror(errno));
    if (::rename(m_temp.c_str(), m_target.c_str()) != 0)
        return Fail(std::strerror(errno));
    m_temp.clear();
    const fs::path folder = fs::path(m_target).parent_path();
    SyncFolder(folder);
    RemoveStaleTemporaries(folder, m_prefix);
    return true;
}

bool WriteFileAtomically(const CString& path, std::string_view bytes, std::string* why) {
    AtomicFileWriter writer(path);
    if (writer.Write(bytes) && writer.Commit())
        return true;
    if (why)
        *why = writer.Error();
    return false;
}

CString FileNameOf(const CString& path) {
    return path.Mid(LastSeparator(path) + 1);
}

CString FolderOf(const CString& path) {
    int cut = LastSeparator(path);
    return cut < 0 ? CString() : path.Left(cut);
}

CString JoinPath(const CString& folder, const CString& name) {
    if (folder.IsEmpty() || IsSeparator(folder[folder.GetLength() - 1]))
        return folder + name;
    return folder + L"/" + name;
}
