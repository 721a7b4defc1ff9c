#include "store/FileHeadReader.h"

#include "store/CFileHeadWriter.h"

namespace {
std::uint32_t ReadU32(const std::string& bytes, size_t at) {
    std::uint32_t value = 0;
    for (int i = 3; i >= 0; --i)
        value = (value << 8) | static_cast<unsigned char>(bytes[at + static_cast<size_t>(i)]);
    return value;
}
} // namespace

bool ReadFileHead(const std::string& bytes, std::vector<FileHeadRecord>& records,
                  std::string& error) {
    records.clear();
    size_t at = 0;
    while (at < bytes.size()) {
        if (bytes.size() - at < 8) {
            error = "record at offset " + std::to_string(at) + " is cut short";
            return false;
        }
        FileHeadRecord record;
        record.tag = ReadU32(bytes, at);
        std::uint32_t length = ReadU32(bytes, at + 4);
        if (records.empty() && record.tag != CFileHeadWriter::kTagKind) {
            error = "not a headed file: it does not start with tag 1001";
            return false;
        }
        if (bytes.size() - at - 8 < length) {
            error = "record " + std::to_string(record.tag) + " at offset " + std::to_string(at) +
                    " claims " + std::to_string(length) + " bytes, but the file ends before";
            return false;
        }
        record.payload = bytes.substr(at + 8, length);
        records.push_back(std::move(record));
        at += 8 + length;
    }
    if (records.empty()) {
        error = "the file is empty";
        return false;
    }
    return true;
}

bool ExtractHeadBody(const std::string& bytes, std::string& body, std::string& error) {
    std::vector<FileHeadRecord> records;
    if (!ReadFileHead(bytes, records, error))
        return false;
    for (const auto& record : records) {
        if (record.tag == CFileHeadWriter::kTagBody) {
            body = record.payload;
            return true;
        }
    }
    error = "the head has no body record (tag 1000)";
    return false;
}
