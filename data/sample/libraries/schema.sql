-- The tables of every library database of a data pack. A database is built from this file
-- followed by one source file of INSERT statements; tables a library does not use stay empty.

-- Facts of the library: kind ('bill' or 'quota'), name, code (the guid the project names it
-- by), local, year; a bill library also code_len and suffix_len, its encoding rule.
CREATE TABLE library (
  key TEXT PRIMARY KEY,
  value TEXT NOT NULL
);

-- The chapter tree: a chapter with a null parent is a root; siblings are ordered by position.
CREATE TABLE chapter (
  id INTEGER PRIMARY KEY,
  parent INTEGER REFERENCES chapter(id),
  position INTEGER NOT NULL,
  code TEXT NOT NULL,
  name TEXT NOT NULL
);

-- Bills of a bill library, under the chapter that lists them.
CREATE TABLE bill (
  number TEXT PRIMARY KEY,
  chapter INTEGER NOT NULL REFERENCES chapter(id),
  position INTEGER NOT NULL,
  name TEXT NOT NULL,
  unit TEXT NOT NULL,
  unit_coefficient INTEGER NOT NULL DEFAULT 1,
  annex INTEGER NOT NULL DEFAULT 0,
  formula TEXT NOT NULL DEFAULT '',
  feature TEXT NOT NULL DEFAULT '',
  work TEXT NOT NULL DEFAULT ''
);

-- Where a small category of the component tree opens the bill library's chapter tree:
-- the category path ('给排水\管道\给水管') to the chapter codes from the root, joined by '\'.
CREATE TABLE index_path (
  tree_path TEXT PRIMARY KEY,
  chapter_path TEXT NOT NULL
);

-- Quota items of a quota library.
CREATE TABLE quota (
  number TEXT PRIMARY KEY,
  chapter INTEGER NOT NULL REFERENCES chapter(id),
  position INTEGER NOT NULL,
  name TEXT NOT NULL,
  unit TEXT NOT NULL,
  unit_coefficient INTEGER NOT NULL DEFAULT 1,
  annex INTEGER NOT NULL DEFAULT 0,
  formula TEXT NOT NULL DEFAULT ''
);

-- In the quota library that goes with bills: the quotas a bill usually takes, by the bill's
-- nine-digit code, in the order the picker lists them.
CREATE TABLE bill_quota (
  bill TEXT NOT NULL,
  quota TEXT NOT NULL REFERENCES quota(number),
  position INTEGER NOT NULL,
  PRIMARY KEY (bill, quota)
);

-- Search tables: the names of bills and quotas under the trigram tokenizer, so that any run of
-- three or more characters finds the items whose name holds it (shorter runs are looked up in
-- the item tables themselves). The number rides along, unindexed, to join back. Sources hold
-- INSERT statements only, so the insert triggers keep the search tables whole.
CREATE VIRTUAL TABLE bill_fts USING fts5(number UNINDEXED, name, tokenize = 'trigram');
CREATE TRIGGER bill_fts_fill AFTER INSERT ON bill BEGIN
  INSERT INTO bill_fts (number, name) VALUES (new.number, new.name);
END;

CREATE VIRTUAL TABLE quota_fts USING fts5(number UNINDEXED, name, tokenize = 'trigram');
CREATE TRIGGER quota_fts_fill AFTER INSERT ON quota BEGIN
  INSERT INTO quota_fts (number, name) VALUES (new.number, new.name);
END;

-- Calculation items of the calculation rules, by small category path; position 0 is the
-- category's default item.
CREATE TABLE calc_item (
  category TEXT NOT NULL,
  position INTEGER NOT NULL,
  name TEXT NOT NULL,
  code TEXT NOT NULL,
  formula TEXT NOT NULL,
  PRIMARY KEY (category, position)
);

-- A project's bill history: the bill numbers the project has used, in the order they were
-- first used.
CREATE TABLE qd_history (
  number TEXT PRIMARY KEY,
  name TEXT NOT NULL,
  unit TEXT NOT NULL,
  position INTEGER NOT NULL
);
