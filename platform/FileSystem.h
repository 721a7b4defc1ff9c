#pragma once
// File-system calls the module needs, with the native separator "/".

#include "platform/CString.h"

#include <optional>
#include <string>
#include <string_view>

// As _waccess(path, 0) == 0: the path exists (file or folder).
bool PathExists(const CString& path);
// As _wmkdir: makes one level only; false when it fails or already exists.
bool MakeDirectory(const CString& path);
// Makes every missing level; true when the folder exists afterwards.
bool MakeDirectories(const CString& path);
// Copies a file, replacing the target. False when the source can't be read or the target
// can't be written; the target is replaced atomically.
bool CopyFileOverwrite(const CString& from, const CString& to);
// Copies a folder tree, replacing files that exist. False on the first failure.
bool CopyTree(const CString& from, const CString& to);

// Whether two paths name one file as this platform decides it: the same file by identity
// (device and inode) when both exist, else the same normalised absolute path, with case.
bool IsSameFile(const CString& a, const CString& b);

// Whole-file reading; nothing when the file can't be opened.
std::optional<std::string> ReadFileBytes(const CString& path);
// Replaces the file atomically: temporary file in the same folder, flush, fsync, rename.
// On failure the old file is untouched and the temporary file removed.
bool WriteFileAtomically(const CString& path, std::string_view bytes);

// The part after the last separator ("/", and "\\" for paths written on Windows).
CString FileNameOf(const CString& path);
// The part before the last separator, without it; empty when there is none.
CString FolderOf(const CString& path);
// Joins with "/" unless folder is empty or already ends with a separator.
CString JoinPath(const CString& folder, const CString& name);
