#include "FuzzSupport.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <unistd.h>

namespace fuzz {

namespace {
std::string MakeScratchDir() {
    std::error_code ec;
    std::filesystem::path base = "/dev/shm";
    if (!std::filesystem::is_directory(base, ec) || ::access(base.c_str(), W_OK) != 0)
        base = std::filesystem::temp_directory_path();
    std::string pattern = (base / "koqdde-fuzz-XXXXXX").string();
    if (!::mkdtemp(pattern.data())) {
        std::perror("mkdtemp");
        std::abort();
    }
    return pattern;
}

struct ScratchFolder {
    std::string path = MakeScratchDir();
    ~ScratchFolder() {
        std::error_code ec;
        std::filesystem::remove_all(path, ec);
    }
};
} // namespace

const std::string& ScratchDir() {
    static ScratchFolder folder;
    return folder.path;
}

std::string ScratchPath(const std::string& name) {
    return ScratchDir() + "/" + name;
}

CString ScratchFile(const std::string& name) {
    return FromUtf8(ScratchPath(name));
}

void WriteBytes(const std::string& path, const std::string& bytes) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    out.close();
    if (!out) {
        std::fprintf(stderr, "fuzz harness: cannot write %s\n", path.c_str());
        std::abort();
    }
}

std::string ReadBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

void Fail(const char* property, const std::string& detail) {
    std::fprintf(stderr, "\n*** property broken: %s\n", property);
    if (!detail.empty())
        std::fprintf(stderr, "%s\n", detail.c_str());
    std::fflush(stderr);
    // The trap skips static destructors: the scratch folder goes now, or it stays behind.
    std::error_code ec;
    std::filesystem::remove_all(ScratchDir(), ec);
    __builtin_trap();
}

HostSmallCategory& AddCategory(HostData& data, int specId, const CString& spec, int largeId,
                               const CString& large, int smallId, const CString& small) {
    HostSpecialty* s = nullptr;
    for (auto& candidate : data.catalog)
        if (candidate.name == spec)
            s = &candidate;
    if (!s)
        s = &data.catalog.emplace_back(HostSpecialty{specId, spec, {}});
    HostLargeCategory* l = nullptr;
    for (auto& candidate : s->larges)
        if (candidate.name == large)
            l = &candidate;
    if (!l)
        l = &s->larges.emplace_back(HostLargeCategory{largeId, large, {}});
    HostSmallCategory category;
    category.id = smallId;
    category.name = small;
    return l->smalls.emplace_back(std::move(category));
}

std::uint64_t Hash(const std::uint8_t* data, std::size_t size) {
    std::uint64_t h = 1469598103934665603ull; // FNV-1a
    for (std::size_t i = 0; i < size; ++i) {
        h ^= data[i];
        h *= 1099511628211ull;
    }
    return h;
}

} // namespace fuzz
