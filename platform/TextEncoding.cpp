#include "platform/TextEncoding.h"

#include "platform/CString.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <iconv.h>

namespace {

// Owns an iconv descriptor; invalid when iconv has no such conversion.
class IconvHandle {
public:
    IconvHandle(const char* to, const char* from) : m_cd(iconv_open(to, from)) {}
    ~IconvHandle() {
        if (Valid())
            iconv_close(m_cd);
    }
    IconvHandle(const IconvHandle&) = delete;
    IconvHandle& operator=(const IconvHandle&) = delete;

    bool Valid() const { return m_cd != reinterpret_cast<iconv_t>(-1); }
    iconv_t Get() const { return m_cd; }

private:
    iconv_t m_cd;
};

bool EqualsNoCase(std::string_view a, std::string_view b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
               return std::tolower(static_cast<unsigned char>(x)) ==
                      std::tolower(static_cast<unsigned char>(y));
           });
}

// Runs iconv over the whole input, growing the output as needed. On EILSEQ/EINVAL it stops
// and leaves `in`/`inLeft` at the offending bytes; returns the errno (0 when all converted).
int ConvertRun(iconv_t cd, char*& in, size_t& inLeft, std::string& out) {
    char buf[1024];
    while (inLeft > 0) {
        char* outPtr = buf;
        size_t outLeft = sizeof buf;
        size_t r = iconv(cd, &in, &inLeft, &outPtr, &outLeft);
        int err = r == static_cast<size_t>(-1) ? errno : 0;
        out.append(buf, static_cast<size_t>(outPtr - buf));
        if (err != 0 && err != E2BIG)
            return err;
    }
    // Flush any shift state (none for the GB encodings, but it costs nothing).
    char* outPtr = buf;
    size_t outLeft = sizeof buf;
    iconv(cd, nullptr, nullptr, &outPtr, &outLeft);
    out.append(buf, static_cast<size_t>(outPtr - buf));
    return 0;
}

std::string Utf16ToUtf8(std::string_view bytes, bool littleEndian) {
    auto unitAt = [&](size_t i) -> char32_t {
        auto lo = static_cast<unsigned char>(bytes[littleEndian ? i : i + 1]);
        auto hi = static_cast<unsigned char>(bytes[littleEndian ? i + 1 : i]);
        return static_cast<char32_t>(hi << 8 | lo);
    };
    std::string out;
    out.reserve(bytes.size());
    size_t i = 0;
    for (; i + 1 < bytes.size(); i += 2) {
        char32_t u = unitAt(i);
        if (u >= 0xD800 && u <= 0xDBFF && i + 3 < bytes.size()) {
            char32_t next = unitAt(i + 2);
            if (next >= 0xDC00 && next <= 0xDFFF) {
                AppendUtf8(out, 0x10000 + ((u - 0xD800) << 10) + (next - 0xDC00));
                i += 2;
                continue;
            }
        }
        AppendUtf8(out, u); // a lone surrogate comes out as U+FFFD
    }
    if (i < bytes.size()) // an odd byte at the end
        AppendUtf8(out, 0xFFFD);
    return out;
}

} // namespace

TextEncoding DetectBom(std::string_view bytes) {
    if (bytes.starts_with("\xEF\xBB\xBF"))
        return TextEncoding::Utf8Bom;
    if (bytes.starts_with("\xFF\xFE"))
        return TextEncoding::Utf16LeBom;
    if (bytes.starts_with("\xFE\xFF"))
        return TextEncoding::Utf16BeBom;
    return TextEncoding::Utf8;
}

std::optional<std::string> LegacyToUtf8(std::string_view bytes, const std::string& encoding) {
    std::string from = IsLegacyChineseEncoding(encoding) ? "GB18030" : encoding;
    IconvHandle cd("UTF-8", from.c_str());
    if (!cd.Valid())
        return std::nullopt;
    std::string input(bytes);
    char* in = input.data();
    size_t inLeft = input.size();
    std::string out;
    out.reserve(bytes.size() * 3 / 2);
    if (ConvertRun(cd.Get(), in, inLeft, out) != 0)
        return std::nullopt;
    return out;
}

std::optional<std::string> Utf8ToLegacy(std::string_view utf8, const std::string& encoding,
                                        std::string (*fallback)(char32_t)) {
    IconvHandle cd(encoding.c_str(), "UTF-8");
    if (!cd.Valid())
        return std::nullopt;
    std::string input(utf8);
    char* in = input.data();
    size_t inLeft = input.size();
    std::string out;
    out.reserve(utf8.size());
    while (ConvertRun(cd.Get(), in, inLeft, out) != 0) {
        if (!fallback)
            return std::nullopt;
        // iconv stopped at a character the target can't hold (or at bytes that are not
        // UTF-8): substitute it and carry on after it.
        char32_t cp = 0xFFFD;
        size_t len = DecodeUtf8(std::string_view(in, inLeft), cp);
        if (len == 0)
            len = 1;
        out += fallback(cp);
        in += len;
        inLeft -= len;
    }
    return out;
}

std::string Utf16LeToUtf8(std::string_view bytes) {
    return Utf16ToUtf8(bytes, true);
}

std::string Utf16BeToUtf8(std::string_view bytes) {
    return Utf16ToUtf8(bytes, false);
}

std::string Utf8ToUtf16Le(std::string_view utf8) {
    std::string out;
    out.reserve(utf8.size() * 2);
    auto put = [&out](char32_t unit) {
        out += static_cast<char>(unit & 0xFF);
        out += static_cast<char>(unit >> 8);
    };
    const CString text = FromUtf8(utf8); // named: a temporary's str() would dangle below
    for (wchar_t wc : text.str()) {
        auto c = static_cast<char32_t>(wc);
        if (c >= 0x10000) {
            put(0xD800 + ((c - 0x10000) >> 10));
            put(0xDC00 + ((c - 0x10000) & 0x3FF));
        } else {
            put(c);
        }
    }
    return out;
}

bool IsLegacyChineseEncoding(std::string_view name) {
    // CP936 is the Windows code-page name for GBK and turns up in files saved there.
    for (std::string_view known : {"GB2312", "GBK", "GB18030", "CP936"})
        if (EqualsNoCase(name, known))
            return true;
    return false;
}
