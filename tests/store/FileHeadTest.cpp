#include "platform/ComError.h"
#include "presenter/CAutoQdDeConfigFacade.h"
#include "store/CFileHeadWriter.h"
#include "store/FileHeadReader.h"
#include "support/TestHost.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <string>
#include <vector>

namespace {

// A record as found by walking the bytes, with the offset of its tag.
struct Walked {
    std::uint32_t tag = 0;
    std::string payload;
    size_t offset = 0;
};

std::uint32_t LittleEndianAt(const std::string& bytes, size_t at) {
    const auto byte = [&](size_t i) {
        return static_cast<std::uint32_t>(static_cast<unsigned char>(bytes.at(at + i)));
    };
    return byte(0) | byte(1) << 8 | byte(2) << 16 | byte(3) << 24;
}

// Walks tag/length/payload records to the end of the bytes; a record cut short ends the walk
// and fails the test.
std::vector<Walked> Walk(const std::string& bytes) {
    std::vector<Walked> records;
    for (size_t at = 0; at < bytes.size();) {
        const size_t length = at + 8 <= bytes.size() ? LittleEndianAt(bytes, at + 4) : bytes.size();
        if (at + 8 + length > bytes.size()) {
            ADD_FAILURE() << "record cut short at " << at;
            break;
        }
        records.push_back({LittleEndianAt(bytes, at), bytes.substr(at + 8, length), at});
        at += 8 + length;
    }
    return records;
}

std::vector<std::uint32_t> Tags(const std::vector<Walked>& records) {
    std::vector<std::uint32_t> tags;
    for (const auto& r : records)
        tags.push_back(r.tag);
    return tags;
}

std::vector<std::string> Payloads(const std::vector<Walked>& records) {
    std::vector<std::string> payloads;
    for (const auto& r : records)
        payloads.push_back(r.payload);
    return payloads;
}

const std::vector<std::uint32_t> kTagOrder = {1001, 1011, 1002, 1003, 1004, 1000};

// A configuration file as the XML layer writes it, so that a stamped save changes nothing but
// the root's attributes.
const char* const kSourceTail = ">\n"
                                "  <给排水 id=\"2\" name=\"给排水\" />\n"
                                "</自动套清单定额配置信息>\n";
const std::string kSourceHead = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                "<自动套清单定额配置信息 Version=\"2.5.0\"";

void Libraries(TestHost& host) {
    host.data.project.bill = {L"国标清单2013", L"B-GUID", L"GB", L"2013"};
    host.data.project.billQuota = {L"安装定额2015", L"Q-GUID", L"JS", L"2015"};
    host.data.project.quota = {L"单列定额2020", L"D-GUID", L"SH", L"2020"};
}

} // namespace

TEST(WriteHead, StampsTheRootAndHeadsTheFileInEitherMode) {
    TestHost host;
    Libraries(host);
    host.data.project.mode = 0;
    host.data.profile.version = L"2.5.10";
    const CString file = host.dir.Write(L"cfg.xml", kSourceHead + kSourceTail);

    CAutoQdDeConfigFacade::WriteHead(file);
    const std::string bytes = host.dir.Read(file);
    const std::vector<Walked> records = Walk(bytes);
    ASSERT_EQ(Tags(records), kTagOrder);
    EXPECT_EQ(Payloads(records),
              (std::vector<std::string>{
                  "5", "2.5.10", "清单模式", "国标清单2013.mdb", "安装定额2015.mdb",
                  kSourceHead +
                      " CalMode=\"清单版\" BillName=\"国标清单2013\" BillGuid=\"B-GUID\" "
                      "BillCorpCode=\"GB\" QuotaName=\"安装定额2015\" QuotaGuid=\"Q-GUID\" "
                      "QuotaArea=\"2015\" QuotaYear=\"JS\"" +
                      kSourceTail}));
    EXPECT_EQ(records[5].offset + 8 + records[5].payload.size(), bytes.size())
        << "nothing follows the body";
    EXPECT_TRUE(host.messages.Messages().empty());

    // Quota mode takes the quota library and leaves the bill file empty; no version is 1.0.0.
    host.data.project.mode = 1;
    host.data.profile.version = L"";
    // Attributes the root already has keep their place and take the new values.
    const std::string head = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                             "<自动套清单定额配置信息 QuotaYear=\"旧\" Version=\"2.5.0\" "
                             "CalMode=\"清单版\"";
    host.dir.Write(L"cfg.xml", head + kSourceTail);
    CAutoQdDeConfigFacade::WriteHead(file);
    const std::vector<Walked> quota = Walk(host.dir.Read(file));
    ASSERT_EQ(Tags(quota), kTagOrder);
    EXPECT_EQ(Payloads(quota),
              (std::vector<std::string>{
                  "5", "1.0.0", "定额模式", "", "单列定额2020.mdb",
                  "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                  "<自动套清单定额配置信息 QuotaYear=\"SH\" Version=\"2.5.0\" CalMode=\"定额版\" "
                  "BillName=\"国标清单2013\" BillGuid=\"B-GUID\" BillCorpCode=\"GB\" "
                  "QuotaName=\"单列定额2020\" QuotaGuid=\"D-GUID\" QuotaArea=\"2020\"" +
                      std::string(kSourceTail)}));
}

TEST(WriteHead, FilesWithoutTheRootStayAsTheyWere) {
    TestHost host;
    Libraries(host);
    const std::vector<std::pair<CString, std::string>> files = {
        {L"other.xml", "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<其它配置 a=\"1\"/>\n"},
        {L"nested.xml", "<外层><自动套清单定额配置信息/></外层>"},
        {L"text.xml", "not xml at all"},
        {L"empty.xml", ""},
    };
    for (const auto& [name, text] : files) {
        SCOPED_TRACE(ToUtf8(name));
        const CString path = host.dir.Write(name, text);
        CAutoQdDeConfigFacade::WriteHead(path);
        EXPECT_EQ(host.dir.Read(path), text);
    }

    const CString missing = host.dir.File(L"missing.xml");
    CAutoQdDeConfigFacade::WriteHead(missing);
    EXPECT_EQ(host.dir.Read(missing), "");
    EXPECT_FALSE(std::ifstream(ToUtf8(missing)).good()) << "no file is made";

    // A headed file no longer parses: a second stamp does nothing.
    const CString headed = host.dir.Write(L"headed.xml", kSourceHead + kSourceTail);
    CAutoQdDeConfigFacade::WriteHead(headed);
    const std::string once = host.dir.Read(headed);
    ASSERT_NE(once, kSourceHead + kSourceTail);
    CAutoQdDeConfigFacade::WriteHead(headed);
    EXPECT_EQ(host.dir.Read(headed), once);
    EXPECT_TRUE(host.messages.Messages().empty());
}

TEST(FileHeadWriter, BodyIsCopiedByteForByteEvenWhenEmpty) {
    TestHost host;
    Libraries(host);
    host.data.project.mode = 0;
    host.data.profile.version = L"3.0.1";

    const CString empty = host.dir.Write(L"empty.bin", "");
    CFileHeadWriter().WriteFileHead(empty);
    const std::string bytes = host.dir.Read(empty);
    const std::vector<Walked> records = Walk(bytes);
    ASSERT_EQ(Tags(records), kTagOrder);
    EXPECT_EQ(records[5].payload, "");
    EXPECT_EQ(bytes.substr(records[5].offset), std::string("\xE8\x03\x00\x00\x00\x00\x00\x00", 8));

    // A missing file is made, with an empty body; one that can't be made or read raises.
    const CString missing = host.dir.File(L"missing.xml");
    CFileHeadWriter().WriteFileHead(missing);
    EXPECT_EQ(host.dir.Read(missing), bytes);
    EXPECT_THROW(CFileHeadWriter().WriteFileHead(host.dir.File(L"no-folder/cfg.xml")), ComError);
    EXPECT_THROW(CFileHeadWriter().WriteFileHead(host.dir.Path()), ComError);

    // Any bytes, zeros included; texts end at their first zero character.
    host.data.project.bill.fileName = CString(std::wstring(L"国标\0旧", 4));
    const std::string binary("\x00\xFF\r\n<a/>\x00", 8);
    const CString path = host.dir.Write(L"data.bin", binary);
    CFileHeadWriter().WriteFileHead(path);
    const std::vector<Walked> more = Walk(host.dir.Read(path));
    ASSERT_EQ(Tags(more), kTagOrder);
    EXPECT_EQ(more[3].payload, "国标");
    EXPECT_EQ(more[5].payload, binary);
    EXPECT_EQ(LittleEndianAt(host.dir.Read(path), more[5].offset + 4), 8u);
}

TEST(FileHeadReader, ReadsWhatTheWriterWroteAndRefusesOtherBytes) {
    TestHost host;
    Libraries(host);
    host.data.project.mode = 1;
    const std::string source = kSourceHead + kSourceTail;
    const CString path = host.dir.Write(L"cfg.xml", source);
    CFileHeadWriter().WriteFileHead(path);
    const std::string bytes = host.dir.Read(path);

    std::vector<FileHeadRecord> records;
    std::string error;
    ASSERT_TRUE(ReadFileHead(bytes, records, error)) << error;
    const std::vector<Walked> walked = Walk(bytes);
    ASSERT_EQ(records.size(), walked.size());
    for (size_t i = 0; i < records.size(); ++i) {
        EXPECT_EQ(records[i].tag, walked[i].tag);
        EXPECT_EQ(records[i].payload, walked[i].payload);
    }
    std::string body;
    ASSERT_TRUE(ExtractHeadBody(bytes, body, error)) << error;
    EXPECT_EQ(body, source);

    // Cut inside the body, inside a record head, and right after a tag.
    for (size_t cut : {bytes.size() - 1, walked[5].offset + 5, walked[2].offset + 4}) {
        SCOPED_TRACE(cut);
        error.clear();
        EXPECT_FALSE(ReadFileHead(bytes.substr(0, cut), records, error));
        EXPECT_FALSE(error.empty());
        EXPECT_FALSE(ExtractHeadBody(bytes.substr(0, cut), body, error));
    }
    // Records that don't start with the kind, plain XML, nothing at all.
    const std::string bodyFirst = std::string("\xE8\x03\x00\x00\x01\x00\x00\x00x", 9) + bytes;
    for (const std::string& other : {bodyFirst, source, std::string()}) {
        error.clear();
        EXPECT_FALSE(ReadFileHead(other, records, error));
        EXPECT_FALSE(error.empty());
    }
    // Well-formed records without a body.
    const std::string noBody = bytes.substr(0, walked[5].offset);
    EXPECT_TRUE(ReadFileHead(noBody, records, error));
    EXPECT_EQ(records.size(), 5u);
    body = "unchanged";
    EXPECT_FALSE(ExtractHeadBody(noBody, body, error));
}
