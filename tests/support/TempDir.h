#pragma once
// A fresh folder under the system's temporary folder, removed with its contents at the end.

#include "platform/CString.h"

#include <string>

class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const CString& Path() const { return m_path; }
    // Path of a name inside the folder.
    CString File(const CString& name) const { return m_path + L"/" + name; }
    // Writes bytes to a file inside the folder and returns its path.
    CString Write(const CString& name, const std::string& bytes) const;
    // The file's bytes, or "" when it can't be read.
    std::string Read(const CString& name) const;

private:
    CString m_path;
};
