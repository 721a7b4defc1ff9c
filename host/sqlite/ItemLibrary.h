#pragma once
// One bill or quota library database as the pickers browse it: the chapter tree, the items of
// a chapter, a search by number or name, the quotas linked to a bill, an item by number.

#include "host/sqlite/Sqlite.h"
#include "platform/CString.h"
#include "platform/Export.h"

#include <cstddef>
#include <map>
#include <string>
#include <vector>

struct LibraryChapter {
    int id = 0;
    int parent = 0; // 0 for a root
    int depth = 0;  // 0 for a root
    CString code;
    CString name;
    // The chapter codes from the root, joined by ".": how a picker is told where to open.
    CString position;
};

// A bill or a quota; feature and work are empty for a quota.
struct LibraryItem {
    int rowId = 0;
    int chapter = 0;
    CString number;
    CString name;
    CString unit;
    int unitCoefficient = 1;
    int annex = 0;
    CString formula;
    CString feature;
    CString work;
};

class ItemLibrary {
public:
    // More hits than a list shows usefully; a search stops there.
    static constexpr std::size_t kSearchLimit = 500;

    // Opens, read-only, the library of this code among files; its kind ("bill" or "quota")
    // says which items it holds. False when none has the code.
    KOQDDE_DIALOGS_API bool Open(const std::vector<CString>& files, const CString& code);
    bool IsOpen() const { return m_db.IsOpen(); }
    // The open database, for the facts of its "library" table and its other tables.
    const SqliteDb& Database() const { return m_db; }
    bool HoldsBills() const { return m_table == "bill"; }
    CString Name() const { return m_name; }

    // Every chapter, parents before their children and siblings in their order: the order a
    // tree shows them in, top to bottom.
    const std::vector<LibraryChapter>& Chapters() const { return m_chapters; }
    KOQDDE_DIALOGS_API const LibraryChapter* FindChapter(int id) const;
    // The chapter at a position: chapter codes from the root joined by "." (a "\" is taken as
    // well). Codes may hold dots themselves ("8.1"); the codes of the tree decide how the
    // position splits. 0 when no chapter is there.
    KOQDDE_DIALOGS_API int ChapterAt(const CString& position) const;

    // The items listed under the chapter itself, in their order.
    KOQDDE_DIALOGS_API std::vector<LibraryItem> ItemsOf(int chapter) const;
    // Items whose number starts with text, then items whose name holds every word of text,
    // each group in the tree's order; at most limit of them. Empty text finds nothing.
    KOQDDE_DIALOGS_API std::vector<LibraryItem> Search(const CString& text,
                                                       std::size_t limit = kSearchLimit) const;
    KOQDDE_DIALOGS_API bool Find(const CString& number, LibraryItem& item) const;
    // In a quota library that goes with bills: the quotas linked to a bill, in the order the
    // library lists them. The link names the bill by its code, so a project's longer number
    // (code and sequence) finds the quotas of its code.
    KOQDDE_DIALOGS_API std::vector<LibraryItem> QuotasOfBill(const CString& billNumber) const;

private:
    void ReadChapters();
    std::string ItemColumns(const char* alias) const;
    std::vector<LibraryItem> ReadItems(SqliteQuery& query) const;
    // The chapter at rest below parent (null: among the roots).
    int ChapterUnder(const LibraryChapter* parent, const CString& rest) const;

    SqliteDb m_db;
    std::string m_table;    // "bill" or "quota"
    bool m_indexed = false; // the search table is there (a pack built before it isn't)
    CString m_name;
    std::vector<LibraryChapter> m_chapters;
    std::map<int, std::size_t> m_chapterIndex; // chapter id -> place in m_chapters
};
