#pragma once
// What every harness needs: one scratch folder per process (on a memory file system when
// there is one, since the stores sync each write), a silent message-box handler, and a check
// that names the broken property before it stops the run.

#include "host/HostData.h"
#include "platform/CString.h"
#include "platform/MessageBox.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace fuzz {

// The folder, made on first use and reused by every input of the process.
const std::string& ScratchDir();
// A path inside the scratch folder.
std::string ScratchPath(const std::string& name);
CString ScratchFile(const std::string& name);

// Replaces the file's bytes (plain write: the harness's own input, not the code under test).
void WriteBytes(const std::string& path, const std::string& bytes);
// The file's bytes; "" when it can't be read.
std::string ReadBytes(const std::string& path);

// Prints which property broke and why, then traps so that libFuzzer keeps the input.
[[noreturn]] void Fail(const char* property, const std::string& detail);

inline void Check(bool ok, const char* property, const std::string& detail = {}) {
    if (!ok)
        Fail(property, detail);
}

// Answers every message box with IDOK and keeps nothing: stores warn through boxes, and a
// harness only looks at files.
class SilentMessages : public IMessageBoxHandler {
public:
    SilentMessages() : m_scope(this) {}
    int Show(void*, const CString&, const CString&, unsigned) override { return IDOK; }

private:
    MessageBoxHandlerScope m_scope;
};

// Adds a small category (and its specialty and large category when missing) to a catalog.
HostSmallCategory& AddCategory(HostData& data, int specId, const CString& spec, int largeId,
                               const CString& large, int smallId, const CString& small);

// A stable 64-bit hash of the input, for harnesses that derive a choice from it so that
// their corpus stays plain files of the format.
std::uint64_t Hash(const std::uint8_t* data, std::size_t size);

} // namespace fuzz
