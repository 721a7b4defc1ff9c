#include "support/TempDir.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

TempDir::TempDir() {
    std::string pattern = (std::filesystem::temp_directory_path() / "koqdde-XXXXXX").string();
    if (!mkdtemp(pattern.data()))
        throw std::runtime_error("mkdtemp failed");
    m_path = FromUtf8(pattern);
}

TempDir::~TempDir() {
    std::error_code ec;
    std::filesystem::remove_all(ToUtf8(m_path), ec);
}

CString TempDir::Write(const CString& name, const std::string& bytes) const {
    CString path = File(name);
    std::filesystem::create_directories(std::filesystem::path(ToUtf8(path)).parent_path());
    std::ofstream out(ToUtf8(path), std::ios::binary);
    out << bytes;
    return path;
}

std::string TempDir::Read(const CString& name) const {
    std::ifstream in(ToUtf8(name.Find(L'/') == 0 ? name : File(name)), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}
