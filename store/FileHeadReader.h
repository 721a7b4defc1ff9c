#pragma once
// Reads the records of a headed configuration file, so that such a file can be inspected and
// its XML body recovered.

#include <cstdint>
#include <string>
#include <vector>

struct FileHeadRecord {
    std::uint32_t tag = 0;
    std::string payload;
};

// Walks the records from the start of the bytes. False, with the reason in `error`, when a
// record is cut short or the bytes don't start like a headed file (first tag 1001).
bool ReadFileHead(const std::string& bytes, std::vector<FileHeadRecord>& records,
                  std::string& error);

// The body (the payload of tag 1000) of a headed file; false when there is none.
bool ExtractHeadBody(const std::string& bytes, std::string& body, std::string& error);
