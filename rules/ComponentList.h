#pragma once
// The component list as a spreadsheet saves it (CSV, UTF-8, with or without a byte-order
// mark): a header row naming the columns, then one row per component. The column "类别"
// holds the small category (大类\小类 or 专业\大类\小类), "L", "N" and "S" the quantities the
// formulas use (length, count, area; empty is 0), and every other column an attribute by its
// display name (empty: the component lacks it).

#include "rules/BillOfQuantities.h"

#include <string>
#include <string_view>
#include <vector>

// The records of CSV text: fields split at commas and line ends, a quoted field may hold
// commas, line ends and doubled quotes. False, with the line, on a quote left open. `lines`,
// when given, receives the line each record starts on, counting blank lines and the line ends
// inside quoted fields, so a message names the line an editor shows.
bool ReadCsv(std::string_view text, std::vector<std::vector<std::string>>& records,
             std::string& error, std::vector<int>* lines = nullptr);

// A field written so that ReadCsv reads it back: quoted when it holds a comma, a quote or a
// line end.
std::string CsvField(const std::string& text);

// The rows of a component list. False, with the reason, when the header lacks "类别" or a
// quantity is no number.
bool ReadComponentList(std::string_view text, std::vector<ComponentRow>& rows, std::string& error);
