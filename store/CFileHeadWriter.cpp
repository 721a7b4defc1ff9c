#include "store/CFileHeadWriter.h"

#include "host/QvKoProject/QvKoProject.h"
#include "host/QvKoSettings/QvKoSettings.h"
#include "platform/ComError.h"
#include "platform/FileSystem.h"

namespace {
// A text as it goes into the head: UTF-8, up to its first zero character.
std::string HeadText(const CString& text) {
    std::wstring_view view(text.GetString());
    return ToUtf8(view);
}
} // namespace

void CFileHeadWriter::WriteTag(std::uint32_t value, std::string& out) {
    for (int i = 0; i < 4; ++i)
        out += static_cast<char>((value >> (8 * i)) & 0xFF);
}

void CFileHeadWriter::WriteString(const std::string& text, std::string& out) {
    WriteTag(static_cast<std::uint32_t>(text.size()), out);
    out += text;
}

std::string CFileHeadWriter::BuildHead(const std::string& body) {
    CAtt att;
    bool billMode = att.GetQdDeMode() == SQdDeInfo::eQdMode;
    std::string mode =
        billMode ? "\u6E05\u5355\u6A21\u5F0F" : "\u5B9A\u989D\u6A21\u5F0F"; // 清单模式 / 定额模式
    std::string billFile = billMode ? HeadText(att.GetQdFileName() + L".mdb") : std::string();
    std::string quotaFile =
        HeadText((billMode ? att.GetQdDeFileName() : att.GetDeFileName()) + L".mdb");
    std::string version = HeadText(QvKoSettings::GetAppProfile().GetVersion().ToString());
    if (version.empty())
        version = "1.0.0";

    std::string out;
    out.reserve(body.size() + 256);
    WriteTag(kTagKind, out);
    WriteString("5", out);
    WriteTag(kTagVersion, out);
    WriteString(version, out);
    WriteTag(kTagMode, out);
    WriteString(mode, out);
    WriteTag(kTagBillFile, out);
    WriteString(billFile, out);
    WriteTag(kTagQuotaFile, out);
    WriteString(quotaFile, out);
    WriteTag(kTagBody, out);
    // Lengths are 32-bit: a body of 4 GiB or more is not supported.
    WriteString(body, out);
    return out;
}

void CFileHeadWriter::WriteFileHead(const CString& path) {
    std::optional<std::string> body = ReadFileBytes(path);
    // The file is opened with creation allowed: a missing one is an empty body.
    if (!body && !PathExists(path))
        body = std::string();
    if (!body)
        throw ComError(E_FAIL, "cannot read " + ToUtf8(path));
    if (!WriteFileAtomically(path, BuildHead(*body)))
        throw ComError(E_FAIL, "cannot write " + ToUtf8(path));
}
