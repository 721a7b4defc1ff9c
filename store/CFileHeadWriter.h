#pragma once
// Puts the binary head ahead of a configuration file: six tagged records (kind, version, mode,
// bill library file, quota library file) and then the whole former file as the last record.
// Each record is a 32-bit little-endian tag, a 32-bit little-endian payload length, and the
// payload. A headed file no longer parses as XML.

#include "platform/CString.h"

#include <cstdint>
#include <string>

class CFileHeadWriter {
public:
    enum Tag : std::uint32_t {
        kTagBody = 1000,
        kTagKind = 1001,
        kTagMode = 1002,
        kTagBillFile = 1003,
        kTagQuotaFile = 1004,
        kTagVersion = 1011,
    };

    // Replaces the file by the headed file, atomically. A missing file is taken as an empty
    // body. Raises ComError when the file can't be read or written.
    void WriteFileHead(const CString& path);

    // The headed bytes for a body, with the texts of the installed project and profile.
    static std::string BuildHead(const std::string& body);

private:
    static void WriteTag(std::uint32_t value, std::string& out);
    static void WriteString(const std::string& text, std::string& out);
};
