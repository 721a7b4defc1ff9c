#include "platform/FileLock.h"

#include "platform/FileSystem.h"

#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <sys/file.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace {

bool TryFlock(int fd, int operation) {
    while (::flock(fd, operation | LOCK_NB) != 0) {
        if (errno != EINTR)
            return false;
    }
    return true;
}

} // namespace

FileLock::~FileLock() {
    Unlock();
}

FileLock::FileLock(FileLock&& other) noexcept : m_fd(std::exchange(other.m_fd, -1)) {}

FileLock& FileLock::operator=(FileLock&& other) noexcept {
    if (this != &other) {
        Unlock();
        m_fd = std::exchange(other.m_fd, -1);
    }
    return *this;
}

CString FileLock::LockFileOf(const CString& file) {
    const CString target = ResolveLinks(file);
    return JoinPath(FolderOf(target), L"." + FileNameOf(target) + L".lock");
}

bool FileLock::Open(const CString& file) {
    Unlock();
    const std::string path = ToUtf8(LockFileOf(file));
    m_fd = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    // A folder the user may not write still lets others' lock file be shared.
    if (m_fd < 0)
        m_fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    return m_fd >= 0;
}

FileLock::Outcome FileLock::LockForEdit(const CString& file, int waitMs) {
    if (!Open(file))
        return Outcome::NoLock;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(waitMs);
    for (;;) {
        if (TryFlock(m_fd, LOCK_EX))
            return Outcome::Locked;
        // Shared holders only: a workbench has the file open. Waiting would last until it
        // closes, so the caller is told at once.
        if (TryFlock(m_fd, LOCK_SH))
            return Outcome::HeldOpen;
        if (std::chrono::steady_clock::now() >= deadline) {
            Unlock();
            return Outcome::TimedOut;
        }
        // Another edit holds it; edits take milliseconds.
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}

bool FileLock::LockShared(const CString& file) {
    if (!Open(file))
        return false;
    while (::flock(m_fd, LOCK_SH) != 0) {
        if (errno != EINTR) {
            Unlock();
            return false;
        }
    }
    return true;
}

void FileLock::Unlock() {
    if (m_fd >= 0) {
        ::close(m_fd); // closing the last descriptor releases the lock
        m_fd = -1;
    }
}
