#pragma once
// Advisory locks that keep edits of one configuration file from overlapping. An edit takes
// the lock exclusively for its read-modify-write, so two edits run one after the other; a
// program that keeps the file open for editing (the workbench) holds it shared for as long
// as it is open, so that an edit learns it would be overwritten on close.
//
// The lock sits on a hidden file beside the configuration (".NAME.lock", kept), never on the
// configuration itself: a save replaces that by a rename, and a lock on the old file would
// guard nothing. A symbolic link is followed first, so every name of one file shares a lock.
// The locks are advisory: only programs that ask for them are held back.

#include "platform/CString.h"
#include "platform/Export.h"

class FileLock {
public:
    enum class Outcome {
        Locked,   // held exclusively
        HeldOpen, // others hold it shared only: the file is open in a workbench
        TimedOut, // another edit held it exclusively for the whole wait
        NoLock,   // no lock file could be opened (a read-only folder): nothing is held
    };

    FileLock() = default;
    KOQDDE_DIALOGS_API ~FileLock();
    FileLock(FileLock&& other) noexcept;
    FileLock& operator=(FileLock&& other) noexcept;
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

    // For an edit: waits up to `waitMs` for other edits to end. With HeldOpen the lock is
    // held shared, so that other edits still wait for this one; the caller decides whether to
    // go on.
    Outcome LockForEdit(const CString& file, int waitMs = 30000);
    // For as long as the file is open for editing; waits while an edit runs.
    KOQDDE_DIALOGS_API bool LockShared(const CString& file);
    void Unlock();

    // The lock file that guards `file`.
    static CString LockFileOf(const CString& file);

private:
    bool Open(const CString& file);

    int m_fd = -1;
};
