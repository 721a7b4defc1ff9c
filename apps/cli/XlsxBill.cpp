// The bill of quantities as a workbook: 清单 (the bill), 仅默认配置 (the components only the
// default took), 问题 (the rows with problems).
#include "Cli.h"
#include "Translate.h"

#include "rules/BillOfQuantities.h"

#include <filesystem>
#include <string>

#ifdef KOQDDE_HAVE_XLSX
#include <xlsxwriter.h>
#endif

bool CanWriteXlsx() {
#ifdef KOQDDE_HAVE_XLSX
    return true;
#else
    return false;
#endif
}

#ifdef KOQDDE_HAVE_XLSX
namespace {

void Row(lxw_worksheet* sheet, lxw_row_t row, const std::vector<std::string>& cells) {
    for (size_t i = 0; i < cells.size(); ++i)
        worksheet_write_string(sheet, row, static_cast<lxw_col_t>(i), cells[i].c_str(), nullptr);
}

void Item(lxw_worksheet* sheet, lxw_row_t row, const std::string& no, const BoqItem& item) {
    Row(sheet, row, {no, ToUtf8(item.number), ToUtf8(item.name), ToUtf8(item.unit)});
    worksheet_write_number(sheet, row, 4, item.quantity, nullptr);
    worksheet_write_number(sheet, row, 5, item.components, nullptr);
}

} // namespace
#endif

void WriteBillXlsx(const BillOfQuantities& boq, const std::vector<std::string>& problemTexts,
                   const CString& file) {
#ifdef KOQDDE_HAVE_XLSX
    // Written beside the target and renamed over it, so a failure leaves the old file whole.
    const std::filesystem::path target = ToUtf8(file);
    std::filesystem::path partial = target;
    partial += ".partial";
    lxw_workbook* book = workbook_new(partial.c_str());
    if (!book)
        throw std::runtime_error(Tr("cannot write {1}: {2}", {target.string(), "workbook"}));
    lxw_worksheet* bills = workbook_add_worksheet(book, "清单");
    Row(bills, 0, {"序号", "编号", "名称", "单位", "工程量", "构件数"});
    worksheet_set_column(bills, 1, 2, 24, nullptr);
    lxw_row_t row = 1;
    ForEachBillLine(
        boq, [&](const std::string& no, const BoqItem& item) { Item(bills, row++, no, item); });

    lxw_worksheet* uncovered = workbook_add_worksheet(book, "仅默认配置");
    Row(uncovered, 0, {"行", "类别", "属性"});
    row = 1;
    for (const ComponentRow* r : boq.defaultOnly) {
        std::string attributes;
        for (const auto& [name, value] : r->attributes)
            attributes += (attributes.empty() ? "" : " ") + ToUtf8(name) + "=" + ToUtf8(value);
        worksheet_write_number(uncovered, row, 0, r->line, nullptr);
        worksheet_write_string(uncovered, row, 1, ToUtf8(r->category).c_str(), nullptr);
        worksheet_write_string(uncovered, row++, 2, attributes.c_str(), nullptr);
    }

    lxw_worksheet* problems = workbook_add_worksheet(book, "问题");
    Row(problems, 0, {"行", "类别", "原因"});
    for (size_t i = 0; i < boq.problems.size(); ++i) {
        const lxw_row_t r = static_cast<lxw_row_t>(i + 1);
        worksheet_write_number(problems, r, 0, boq.problems[i].line, nullptr);
        worksheet_write_string(problems, r, 1, ToUtf8(boq.problems[i].category).c_str(), nullptr);
        worksheet_write_string(problems, r, 2, problemTexts[i].c_str(), nullptr);
    }
    const lxw_error closed = workbook_close(book);
    std::error_code ec;
    if (closed != LXW_NO_ERROR) {
        std::filesystem::remove(partial, ec);
        throw std::runtime_error(
            Tr("cannot write {1}: {2}", {target.string(), lxw_strerror(closed)}));
    }
    std::filesystem::rename(partial, target, ec);
    if (ec) {
        std::filesystem::remove(partial, ec);
        throw std::runtime_error(Tr("cannot write {1}: {2}", {target.string(), ec.message()}));
    }
#else
    (void)boq;
    (void)problemTexts;
    (void)file;
    throw UsageError(Tr("this koqdde was built without XLSX support (libxlsxwriter); write .csv"));
#endif
}
