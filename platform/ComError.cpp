#include "platform/ComError.h"

#include <cstdio>

namespace {
std::string Describe(HRESULT hr, const std::string& what) {
    char code[16];
    std::snprintf(code, sizeof code, "0x%08X", static_cast<unsigned>(hr));
    std::string text = std::string("HRESULT ") + code;
    if (!what.empty())
        text += ": " + what;
    return text;
}
} // namespace

ComError::ComError(HRESULT hr, const std::string& what)
    : std::runtime_error(Describe(hr, what)), m_hr(hr) {}
