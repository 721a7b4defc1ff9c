#include "platform/FileSystem.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
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

std::optional<std::string> ReadFileBytes(const CString& path) {
    FILE* f = std::fopen(ToUtf8(path).c_str(), "rb");
    if (!f)
        return std::nullopt;
    std::string bytes;
    char buf[65536];
    size_t n;
    while ((n = std::fread(buf, 1, sizeof buf, f)) > 0)
        bytes.append(buf, n);
    // A folder opens fine but fails to read.
    bool failed = std::ferror(f) != 0;
    std::fclose(f);
    if (failed)
        return std::nullopt;
    return bytes;
}

bool WriteFileAtomically(const CString& path, std::string_view bytes) {
    fs::path target = NativePath(path);
    if (target.filename().empty())
        return false;
    fs::path folder = target.parent_path();
    // Created with O_EXCL under a name of our own rather than by mkstemp, so the new file
    // gets the usual mode (0666 less the umask) without touching the process umask.
    static std::atomic<unsigned> counter{0};
    std::string temp;
    int fd = -1;
    for (int attempt = 0; fd < 0 && attempt < 100; ++attempt) {
        temp = (folder / ("." + target.filename().string() + ".tmp-" + std::to_string(::getpid()) +
                          "-" + std::to_string(counter++)))
                   .string();
        fd = ::open(temp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (fd < 0 && errno != EEXIST)
            return false;
    }
    if (fd < 0)
        return false;
    // Replacing a file keeps its permissions.
    struct stat old {};
    bool keepMode = ::stat(target.c_str(), &old) == 0;
    bool ok = (!keepMode || ::fchmod(fd, old.st_mode & 07777) == 0) && WriteAll(fd, bytes) &&
              ::fsync(fd) == 0;
    ok = ::close(fd) == 0 && ok;
    ok = ok && ::rename(temp.c_str(), target.c_str()) == 0;
    if (!ok) {
        ::unlink(temp.c_str());
        return false;
    }
    SyncFolder(folder);
    return true;
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
