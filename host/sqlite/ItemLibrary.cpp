#include "host/sqlite/ItemLibrary.h"

#include "host/sqlite/LibraryFiles.h"

#include <algorithm>
#include <cwctype>

namespace {

// The trigram tokenizer indexes runs of three characters; a shorter word has no run to look up.
constexpr int kTrigram = 3;

std::vector<CString> Words(const CString& text) {
    std::vector<CString> words;
    CString word;
    for (int i = 0; i <= text.GetLength(); ++i) {
        const bool end = i == text.GetLength();
        if (!end && !std::iswspace(static_cast<wint_t>(text[i]))) {
            word += CString(text[i]);
            continue;
        }
        if (!word.IsEmpty())
            words.push_back(word);
        word.Empty();
    }
    return words;
}

// One word as an FTS5 string: quoted, its quotes doubled, so that no character of the user's
// text reads as query syntax.
CString Phrase(const CString& word) {
    CString quoted = word;
    quoted.Replace(L"\"", L"\"\"");
    return L"\"" + quoted + L"\"";
}

// The chapters in the order the tree shows them, as a sortable key per chapter: each level's
// place, fixed width, from the root down.
constexpr const char* kTreeOrder =
    "WITH RECURSIVE tree(id, sort_key) AS ("
    " SELECT id, printf('%08d%08d', position, id) FROM chapter WHERE parent IS NULL"
    " UNION ALL SELECT c.id, tree.sort_key || printf('%08d%08d', c.position, c.id)"
    " FROM chapter AS c JOIN tree ON c.parent = tree.id) ";

} // namespace

bool ItemLibrary::Open(const std::vector<CString>& files, const CString& code) {
    m_db = SqliteDb();
    m_table.clear();
    m_chapters.clear();
    m_chapterIndex.clear();
    m_indexed = false;
    m_name.Empty();
    if (!OpenLibraryWith(files, L"code", code, m_db))
        return false;
    const CString kind = LibraryFact(m_db, L"kind");
    m_table = kind == L"bill" ? "bill" : "quota";
    m_name = LibraryFact(m_db, L"name");
    SqliteQuery search(m_db, "SELECT 1 FROM sqlite_master WHERE name = ?");
    search.Bind(1, FromUtf8(m_table + "_fts"));
    m_indexed = search.Step();
    ReadChapters();
    return true;
}

void ItemLibrary::ReadChapters() {
    std::vector<LibraryChapter> rows;
    SqliteQuery query(m_db, "SELECT id, ifnull(parent, 0), code, name FROM chapter "
                            "ORDER BY position, id");
    while (query.Step()) {
        LibraryChapter chapter;
        chapter.id = query.Int(0);
        chapter.parent = query.Int(1);
        chapter.code = query.Text(2);
        chapter.name = query.Text(3);
        rows.push_back(chapter);
    }
    std::map<int, std::vector<std::size_t>> children; // by parent id, in sibling order
    std::map<int, bool> known;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        children[rows[i].parent].push_back(i);
        known[rows[i].id] = true;
    }
    // Depth first from the roots; a chapter whose parent is missing counts as a root, and the
    // visited marks keep a cycle in a broken library from looping.
    std::vector<bool> visited(rows.size(), false);
    auto visit = [&](auto&& self, std::size_t index, int depth, const CString& above) -> void {
        visited[index] = true;
        LibraryChapter chapter = rows[index];
        chapter.depth = depth;
        chapter.position = above.IsEmpty() ? chapter.code : above + L"." + chapter.code;
        m_chapterIndex[chapter.id] = m_chapters.size();
        m_chapters.push_back(chapter);
        for (std::size_t child : children[chapter.id])
            if (!visited[child])
                self(self, child, depth + 1, chapter.position);
    };
    for (std::size_t i = 0; i < rows.size(); ++i)
        if (!visited[i] && !known.contains(rows[i].parent))
            visit(visit, i, 0, CString());
}

const LibraryChapter* ItemLibrary::FindChapter(int id) const {
    const auto found = m_chapterIndex.find(id);
    return found == m_chapterIndex.end() ? nullptr : &m_chapters[found->second];
}

int ItemLibrary::ChapterUnder(const LibraryChapter* parent, const CString& rest) const {
    for (const LibraryChapter& chapter : m_chapters) {
        const bool child = parent ? chapter.parent == parent->id : chapter.depth == 0;
        if (!child || chapter.code.IsEmpty())
            continue;
        if (rest == chapter.code)
            return chapter.id;
        const int length = chapter.code.GetLength();
        if (rest.GetLength() > length && rest.Left(length) == chapter.code && rest[length] == L'.')
            if (const int below = ChapterUnder(&chapter, rest.Mid(length + 1)))
                return below;
    }
    return 0;
}

int ItemLibrary::ChapterAt(const CString& position) const {
    CString rest = position;
    rest.Replace(L'\\', L'.');
    rest.Trim();
    return rest.IsEmpty() ? 0 : ChapterUnder(nullptr, rest);
}

std::string ItemLibrary::ItemColumns(const char* alias) const {
    const std::string a = std::string(alias) + ".";
    std::string columns = a + "rowid, " + a + "chapter, " + a + "number, " + a + "name, " + a +
                          "unit, " + a + "unit_coefficient, " + a + "annex, " + a + "formula";
    columns += HoldsBills() ? ", " + a + "feature, " + a + "work" : ", '', ''";
    return columns;
}

std::vector<LibraryItem> ItemLibrary::ReadItems(SqliteQuery& query) const {
    std::vector<LibraryItem> items;
    while (query.Step()) {
        LibraryItem item;
        item.rowId = query.Int(0);
        item.chapter = query.Int(1);
        item.number = query.Text(2);
        item.name = query.Text(3);
        item.unit = query.Text(4);
        item.unitCoefficient = query.Int(5);
        item.annex = query.Int(6);
        item.formula = query.Text(7);
        item.feature = query.Text(8);
        item.work = query.Text(9);
        items.push_back(item);
    }
    return items;
}

std::vector<LibraryItem> ItemLibrary::ItemsOf(int chapter) const {
    if (!IsOpen())
        return {};
    const std::string sql = "SELECT " + ItemColumns("i") + " FROM " + m_table +
                            " AS i WHERE i.chapter = ? ORDER BY i.position, i.number";
    SqliteQuery query(m_db, sql.c_str());
    query.Bind(1, chapter);
    return ReadItems(query);
}

std::vector<LibraryItem> ItemLibrary::Search(const CString& text, std::size_t limit) const {
    CString whole = text;
    whole.Trim();
    if (!IsOpen() || whole.IsEmpty() || limit == 0)
        return {};
    // A number is matched from its start through the key's index: every number that sorts
    // from the text up to the text followed by the highest character.
    const std::string byNumber = "(i.number >= ?1 AND i.number < ?1 || char(1114111))";
    std::vector<CString> binds{whole};
    std::string byName;
    CString phrases;
    for (const CString& word : Words(whole)) {
        if (m_indexed && word.GetLength() >= kTrigram) {
            phrases += (phrases.IsEmpty() ? L"" : L" AND ") + Phrase(word);
            continue;
        }
        binds.push_back(word);
        byName += " AND instr(lower(i.name), lower(?" + std::to_string(binds.size()) + ")) > 0";
    }
    if (!phrases.IsEmpty()) {
        binds.push_back(phrases);
        byName += " AND i.number IN (SELECT number FROM " + m_table + "_fts WHERE " + m_table +
                  "_fts MATCH ?" + std::to_string(binds.size()) + ")";
    }
    const std::string sql = std::string(kTreeOrder) + "SELECT " + ItemColumns("i") + " FROM " +
                            m_table + " AS i LEFT JOIN tree ON tree.id = i.chapter WHERE " +
                            byNumber + " OR (1" + byName + ") ORDER BY " + byNumber +
                            " DESC, tree.sort_key IS NULL, tree.sort_key, i.position, i.number " +
                            "LIMIT " + std::to_string(limit);
    SqliteQuery query(m_db, sql.c_str());
    for (std::size_t i = 0; i < binds.size(); ++i)
        query.Bind(static_cast<int>(i) + 1, binds[i]);
    return ReadItems(query);
}

bool ItemLibrary::Find(const CString& number, LibraryItem& item) const {
    if (!IsOpen())
        return false;
    const std::string sql =
        "SELECT " + ItemColumns("i") + " FROM " + m_table + " AS i WHERE i.number = ?";
    SqliteQuery query(m_db, sql.c_str());
    query.Bind(1, number);
    std::vector<LibraryItem> items = ReadItems(query);
    if (items.empty())
        return false;
    item = items.front();
    return true;
}

std::vector<LibraryItem> ItemLibrary::QuotasOfBill(const CString& billNumber) const {
    if (!IsOpen() || HoldsBills() || billNumber.IsEmpty())
        return {};
    // A plain prefix test: LIKE would take "_" and "%" in a number as wildcards.
    const std::string sql = "SELECT " + ItemColumns("i") +
                            " FROM bill_quota AS link JOIN quota AS i ON i.number = link.quota "
                            "WHERE link.bill <> '' AND substr(?1, 1, length(link.bill)) = "
                            "link.bill ORDER BY link.position, i.number";
    SqliteQuery query(m_db, sql.c_str());
    query.Bind(1, billNumber);
    return ReadItems(query);
}
