// Headed configuration files: the reader takes any bytes without harm and, when it accepts
// them, its records are exactly the bytes it was given; a head built for any body gives that
// body back, and so does the file the writer heads in place.

#include "FuzzSupport.h"

#include "platform/ComError.h"
#include "store/CFileHeadWriter.h"
#include "store/FileHeadReader.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace {

struct World {
    World() {
        data.project.path = fuzz::ScratchFile("project/test.kprj");
        data.project.currentSpec = L"给排水";
        data.project.bill = {L"清单库2013", L"{B1}", L"", L"2013"};
        data.project.billQuota = {L"定额库2012", L"{Q1}", L"", L"2012"};
        data.project.quota = {L"定额库2012", L"{Q1}", L"", L"2012"};
        data.profile.configPath = FromUtf8(fuzz::ScratchDir());
        data.profile.version = L"2.5.0";
    }
    HostData data;
    HostDataScope scope{&data};
};

World& TheWorld() {
    static World world;
    return world;
}

std::string Encode(const std::vector<FileHeadRecord>& records) {
    std::string out;
    auto put = [&out](std::uint32_t value) {
        for (int i = 0; i < 4; ++i)
            out += static_cast<char>((value >> (8 * i)) & 0xFF);
    };
    for (const FileHeadRecord& r : records) {
        put(r.tag);
        put(static_cast<std::uint32_t>(r.payload.size()));
        out += r.payload;
    }
    return out;
}

void CheckReader(const std::string& bytes) {
    std::vector<FileHeadRecord> records;
    std::string error;
    const bool read = ReadFileHead(bytes, records, error);
    fuzz::Check(read || !error.empty(), "a refused head says why");
    if (read) {
        fuzz::Check(!records.empty() && records.front().tag == CFileHeadWriter::kTagKind,
                    "an accepted head starts with the kind record");
        fuzz::Check(Encode(records) == bytes, "an accepted head is exactly its records");
    }

    std::string body;
    std::string bodyError;
    const bool extracted = ExtractHeadBody(bytes, body, bodyError);
    const FileHeadRecord* first = nullptr;
    for (const FileHeadRecord& r : records)
        if (!first && r.tag == CFileHeadWriter::kTagBody)
            first = &r;
    fuzz::Check(extracted == (read && first != nullptr),
                "a body is found exactly when the head holds a body record");
    fuzz::Check(!extracted || body == first->payload, "the body is the first body record");
    fuzz::Check(extracted || !bodyError.empty(), "a missing body says why");
}

void CheckWriter(const std::string& body, int mode) {
    TheWorld().data.project.mode = mode;
    const std::string headed = CFileHeadWriter::BuildHead(body);
    std::vector<FileHeadRecord> records;
    std::string error;
    fuzz::Check(ReadFileHead(headed, records, error), "a built head reads", error);
    std::vector<std::uint32_t> tags;
    for (const FileHeadRecord& r : records)
        tags.push_back(r.tag);
    const std::vector<std::uint32_t> order = {
        CFileHeadWriter::kTagKind,     CFileHeadWriter::kTagVersion,   CFileHeadWriter::kTagMode,
        CFileHeadWriter::kTagBillFile, CFileHeadWriter::kTagQuotaFile, CFileHeadWriter::kTagBody};
    fuzz::Check(tags == order, "a built head holds its six records in order");
    std::string back;
    fuzz::Check(ExtractHeadBody(headed, back, error) && back == body,
                "a built head gives its body back");

    // The writer in place: the file's bytes become the head of its former bytes.
    const std::string path = fuzz::ScratchPath("headed.xml");
    fuzz::WriteBytes(path, body);
    try {
        CFileHeadWriter().WriteFileHead(FromUtf8(path));
    } catch (const ComError& e) {
        fuzz::Fail("the writer heads a readable file without raising", e.what());
    }
    fuzz::Check(fuzz::ReadBytes(path) == headed, "the writer writes the built head");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    TheWorld();
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    CheckReader(bytes);
    CheckWriter(bytes, static_cast<int>(size % 2));
    return 0;
}
