#include "rules/ComponentList.h"

#include <optional>

bool ReadCsv(std::string_view text, std::vector<std::vector<std::string>>& records,
             std::string& error, std::vector<int>* lines) {
    if (text.substr(0, 3) == "\xEF\xBB\xBF")
        text.remove_prefix(3);
    records.clear();
    std::vector<std::string> record;
    std::string field;
    bool quoted = false;
    if (lines)
        lines->clear();
    int line = 1, quoteLine = 0, recordLine = 1;
    auto endRecord = [&] {
        record.push_back(std::move(field));
        field.clear();
        // A blank line is no record.
        if (!(record.size() == 1 && record[0].empty())) {
            records.push_back(std::move(record));
            if (lines)
                lines->push_back(recordLine);
        }
        record.clear();
    };
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (quoted) {
            if (c == '"' && i + 1 < text.size() && text[i + 1] == '"') {
                field += '"';
                ++i;
            } else if (c == '"') {
                quoted = false;
            } else {
                line += c == '\n' ? 1 : 0;
                field += c;
            }
        } else if (c == '"') {
            quoted = true;
            quoteLine = line;
        } else if (c == ',') {
            record.push_back(std::move(field));
            field.clear();
        } else if (c == '\n' || c == '\r') {
            if (c == '\r' && i + 1 < text.size() && text[i + 1] == '\n')
                ++i;
            endRecord();
            recordLine = ++line;
        } else {
            field += c;
        }
    }
    if (quoted) {
        error = "line " + std::to_string(quoteLine) + ": a quote is never closed";
        return false;
    }
    if (!field.empty() || !record.empty())
        endRecord();
    return true;
}

std::string CsvField(const std::string& text) {
    if (text.find_first_of(",\"\r\n") == std::string::npos)
        return text;
    std::string out = "\"";
    for (char c : text)
        out += c == '"' ? std::string("\"\"") : std::string(1, c);
    return out + "\"";
}

bool ReadComponentList(std::string_view text, std::vector<ComponentRow>& rows, std::string& error) {
    std::vector<std::vector<std::string>> records;
    std::vector<int> lines;
    if (!ReadCsv(text, records, error, &lines))
        return false;
    if (records.empty()) {
        error = "the list is empty: it needs a header row with 类别";
        return false;
    }
    const std::vector<std::string>& header = records[0];
    std::optional<size_t> category;
    for (size_t i = 0; i < header.size(); ++i)
        if (header[i] == "类别")
            category = i;
    if (!category) {
        error = "the header row has no column 类别 (the small category)";
        return false;
    }
    rows.clear();
    rows.reserve(records.size() - 1);
    for (size_t r = 1; r < records.size(); ++r) {
        const std::vector<std::string>& record = records[r];
        ComponentRow row;
        row.line = lines[r];
        for (size_t i = 0; i < record.size() && i < header.size(); ++i) {
            const std::string& name = header[i];
            const std::string& value = record[i];
            double* quantity = name == "L"   ? &row.L
                               : name == "N" ? &row.N
                               : name == "S" ? &row.S
                                             : nullptr;
            if (i == *category) {
                row.category = FromUtf8(value);
            } else if (quantity) {
                if (value.empty())
                    continue;
                const std::optional<double> number = ReadNumber(FromUtf8(value));
                if (!number) {
                    error = "line " + std::to_string(row.line) + ": " + name + " \"" + value +
                            "\" is no number";
                    return false;
                }
                *quantity = *number;
            } else if (!value.empty()) {
                row.attributes[FromUtf8(name)] = FromUtf8(value);
            }
        }
        rows.push_back(std::move(row));
    }
    return true;
}
