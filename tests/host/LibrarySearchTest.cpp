// Browsing a library as the pickers do: the chapter tree and positions in it, the items of a
// chapter, the search by number and name, the quotas linked to a bill.

#include "host/sqlite/ItemLibrary.h"
#include "host/sqlite/LibraryFiles.h"
#include "platform/FileSystem.h"
#include "support/TestHost.h"

#include <gtest/gtest.h>

namespace {

// Root 0310 comes before 0304 in the tree, though its code sorts after it.
const char* const kBills = R"(
INSERT INTO library (key, value) VALUES ('kind', 'bill'), ('code', '{B}'), ('name', '清单');
INSERT INTO chapter (id, parent, position, code, name) VALUES
  (1, NULL, 1, '0304', '电气设备安装工程'), (2, 1, 0, '030404', '控制设备及低压电器'),
  (3, NULL, 0, '0310', '给排水、采暖、燃气工程'), (4, 3, 1, '031003', '管道附件'),
  (5, 3, 0, '031001', '管道');
INSERT INTO bill (number, chapter, position, name, unit, unit_coefficient, annex, formula,
  feature, work) VALUES
  ('030404031', 2, 0, '阀门控制箱', '台', 1, 0, 'N', '', ''),
  ('030404034', 2, 1, '"安全出口"标志灯', '套', 1, 0, 'N', '', ''),
  ('031003003', 4, 1, '焊接法兰阀门', '个', 1, 0, 'N', '1.类型', '1.安装'),
  ('031003001', 4, 0, '螺纹阀门', '个', 1, 0, 'N', '', ''),
  ('031001006', 5, 1, 'UPVC排水管', 'm', 1, 1, 'L', '1.材质', '1.管道安装'),
  ('031001001', 5, 0, '镀锌钢管', 'm', 1, 1, 'L', '', '');
)";

// Chapter codes with dots, as quota books write them; 8.2 comes before 8.1 in the tree.
const char* const kQuotas = R"(
INSERT INTO library (key, value) VALUES ('kind', 'quota'), ('code', '{Q}');
INSERT INTO chapter (id, parent, position, code, name) VALUES
  (1, NULL, 0, '8', '第八册'), (2, 1, 1, '8.1', '管道'), (3, 1, 0, '8.2', '消毒冲洗'),
  (4, NULL, 1, '8.1', '另一册'), (5, 4, 0, '9', '另一章');
INSERT INTO quota (number, chapter, position, name, unit, unit_coefficient, annex, formula)
VALUES
  ('8-1', 2, 0, '镀锌钢管 DN15', '10m', 10, 1, 'L'),
  ('8-12', 2, 1, '螺纹阀门安装 DN20', '个', 1, 0, 'N'),
  ('8-13', 2, 2, '螺纹阀门安装 DN25', '个', 1, 0, 'N'),
  ('8-30', 3, 0, '管道消毒冲洗 按8-1', '100m', 100, 0, '');
INSERT INTO bill_quota (bill, quota, position) VALUES
  ('031003001', '8-13', 1), ('031003001', '8-12', 0), ('031001001', '8-1', 0);
)";

// Each test gets both libraries built from the statements above, open.
class LibrarySearch : public ::testing::Test {
protected:
    LibrarySearch() {
        EXPECT_TRUE(bills.Open(files, L"{B}"));
        EXPECT_TRUE(quotas.Open(files, L"{Q}"));
    }
    TempDir dir;
    std::vector<CString> files = {BuildLibrary(dir, L"bills", kBills),
                                  BuildLibrary(dir, L"quotas", kQuotas)};
    ItemLibrary bills, quotas;
};

std::vector<CString> Numbers(const std::vector<LibraryItem>& items) {
    std::vector<CString> numbers;
    for (const LibraryItem& item : items)
        numbers.push_back(item.number);
    return numbers;
}

using Strings = std::vector<CString>;

} // namespace

TEST_F(LibrarySearch, ChaptersComeInTreeOrderAndPositionsFindThem) {
    EXPECT_TRUE(bills.HoldsBills());
    EXPECT_EQ(bills.Name(), L"清单");
    Strings positions;
    for (const LibraryChapter& chapter : bills.Chapters())
        positions.push_back(chapter.position);
    EXPECT_EQ(positions,
              (Strings{L"0310", L"0310.031001", L"0310.031003", L"0304", L"0304.030404"}));
    EXPECT_EQ(bills.ChapterAt(L"0310.031003"), 4);
    EXPECT_EQ(bills.ChapterAt(L"0310\\031003"), 4) << "the library's own index path form";
    EXPECT_EQ(bills.ChapterAt(L"0310"), 3);
    EXPECT_EQ(bills.ChapterAt(L"031003"), 0) << "positions start at a root";
    EXPECT_EQ(bills.ChapterAt(L"0304.031003"), 0);
    EXPECT_EQ(bills.ChapterAt(L""), 0);
    ASSERT_NE(bills.FindChapter(4), nullptr);
    EXPECT_EQ(bills.FindChapter(4)->depth, 1);
    EXPECT_EQ(bills.FindChapter(4)->parent, 3);

    // Codes with dots: "8.1.9" is the root 8.1 and its chapter 9, though 8 has a chapter 8.1.
    EXPECT_FALSE(quotas.HoldsBills());
    EXPECT_EQ(quotas.ChapterAt(L"8.8.1"), 2);
    EXPECT_EQ(quotas.ChapterAt(L"8.1.9"), 5);
    EXPECT_EQ(quotas.ChapterAt(L"8.1"), 4);
    EXPECT_EQ(quotas.FindChapter(2)->position, L"8.8.1");

    EXPECT_FALSE(ItemLibrary().Open(files, L"{NONE}"));
}

TEST_F(LibrarySearch, ItemsOfAChapterAndByNumberCarryTheirFields) {
    EXPECT_EQ(Numbers(bills.ItemsOf(4)), (Strings{L"031003001", L"031003003"}));
    EXPECT_TRUE(bills.ItemsOf(3).empty()) << "a chapter lists its own items only";
    const std::vector<LibraryItem> pipes = bills.ItemsOf(5);
    ASSERT_EQ(pipes.size(), 2u);
    EXPECT_EQ(pipes[1].name, L"UPVC排水管");
    EXPECT_EQ(pipes[1].annex, 1);
    EXPECT_EQ(pipes[1].feature, L"1.材质");
    EXPECT_EQ(pipes[1].work, L"1.管道安装");
    EXPECT_EQ(pipes[1].chapter, 5);

    LibraryItem quota;
    ASSERT_TRUE(quotas.Find(L"8-30", quota));
    EXPECT_EQ(quota.unitCoefficient, 100);
    EXPECT_EQ(quota.unit, L"100m");
    EXPECT_EQ(quota.formula, L"");
    ASSERT_TRUE(quotas.Find(L"8-1", quota));
    EXPECT_EQ(quota.name, L"镀锌钢管 DN15");
    EXPECT_EQ(quota.annex, 1);
    EXPECT_EQ(quota.formula, L"L");
    EXPECT_FALSE(quotas.Find(L"8-", quota));
}

TEST_F(LibrarySearch, FindsByNumberPrefixAndByAnyPartOfTheName) {
    // Numbers from their start, in the tree's order (0310 before 0304).
    EXPECT_EQ(Numbers(bills.Search(L"0310")),
              (Strings{L"031001001", L"031001006", L"031003001", L"031003003"}));
    EXPECT_EQ(Numbers(bills.Search(L" 031003 ")), (Strings{L"031003001", L"031003003"}));
    EXPECT_TRUE(bills.Search(L"1003").empty()) << "not from the middle of a number";

    // Names: one, two and more characters.
    const Strings valves{L"031003001", L"031003003", L"030404031"};
    EXPECT_EQ(Numbers(bills.Search(L"阀")), valves);
    EXPECT_EQ(Numbers(bills.Search(L"阀门")), valves);
    EXPECT_EQ(Numbers(bills.Search(L"法兰阀")), Strings{L"031003003"});
    EXPECT_EQ(Numbers(bills.Search(L"阀门控制箱")), Strings{L"030404031"});
    EXPECT_EQ(Numbers(bills.Search(L"焊接 阀门")), Strings{L"031003003"}) << "every word";
    EXPECT_EQ(Numbers(bills.Search(L"螺纹 兰")), Strings{});
    EXPECT_EQ(Numbers(bills.Search(L"upvc")), Strings{L"031001006"});
    EXPECT_EQ(Numbers(bills.Search(L"pv")), Strings{L"031001006"});
    EXPECT_EQ(bills.Search(L"阀", 2).size(), 2u);
    EXPECT_TRUE(bills.Search(L"").empty());
    EXPECT_TRUE(bills.Search(L"%").empty()) << "no wildcards";
    EXPECT_TRUE(bills.Search(L"_").empty());
    EXPECT_EQ(Numbers(bills.Search(L"\"安全")), Strings{L"030404034"})
        << "a quote is a character like any other";
    EXPECT_TRUE(bills.Search(L"阀门 OR").empty()) << "no query syntax";

    // Number hits first, then name hits, though 8.2 (the name hit's chapter) comes first.
    EXPECT_EQ(Numbers(quotas.Search(L"8-1")), (Strings{L"8-1", L"8-12", L"8-13", L"8-30"}));
    EXPECT_EQ(Numbers(quotas.Search(L"dn2")), (Strings{L"8-12", L"8-13"}));

    // A database built before the search tables existed still answers, from the item table.
    {
        SqliteDb db;
        CString error;
        ASSERT_TRUE(db.Open(dir.File(L"bills.db"), false, error));
        ASSERT_TRUE(db.Exec("DROP TABLE bill_fts;", error)) << ToUtf8(error);
    }
    ItemLibrary older;
    ASSERT_TRUE(older.Open(files, L"{B}"));
    EXPECT_EQ(Numbers(older.Search(L"法兰阀")), Strings{L"031003003"});
    EXPECT_EQ(Numbers(older.Search(L"阀门")), valves);
}

TEST_F(LibrarySearch, QuotasLinkedToABillByItsCode) {
    EXPECT_EQ(Numbers(quotas.QuotasOfBill(L"031003001")), (Strings{L"8-12", L"8-13"}));
    EXPECT_EQ(Numbers(quotas.QuotasOfBill(L"031003001002")), (Strings{L"8-12", L"8-13"}))
        << "a project's number: code and sequence";
    const std::vector<LibraryItem> linked = quotas.QuotasOfBill(L"031001001");
    ASSERT_EQ(linked.size(), 1u);
    EXPECT_EQ(linked[0].unitCoefficient, 10);
    EXPECT_EQ(linked[0].unit, L"10m");
    EXPECT_TRUE(quotas.QuotasOfBill(L"03100300").empty()) << "part of a code links nothing";
    EXPECT_TRUE(quotas.QuotasOfBill(L"").empty());
    EXPECT_TRUE(bills.QuotasOfBill(L"031003001").empty()) << "bill libraries hold no links";
}
