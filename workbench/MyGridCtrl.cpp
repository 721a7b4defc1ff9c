#include "workbench/MyGridCtrl.h"

#include "host/QvKoProject/QvKoProject.h"
#include "platform/MessageBox.h"

#include <new>

bool GetCellOptions(int column, CStringArray& options) {
    options.RemoveAll();
    if (column == 3) {
        for (const wchar_t* unit : {L"m", L"m2", L"m3", L"吨", L"千克", L"个", L"根", L"座", L"榀",
                                    L"块", L"套", L"只", L"樘", L"副"})
            options.Add(unit);
    } else if (column == 5) {
        options.Add(L"是");
        options.Add(L"否");
    }
    return true;
}

MyGridCtrl::MyGridCtrl() {
    SetAutoEnterNext(false);
    SetOptionsFunName(::GetCellOptions);
}

MyGridCtrl::~MyGridCtrl() = default;

BOOL MyGridCtrl::Create(const CRect& rect, CWnd* parent, UINT id, DWORD style) {
    return CGridCtrl::Create(rect, parent, id, style);
}

void MyGridCtrl::OnRButtonUp(int, int) {}

int MyGridCtrl::InitGrid(bool withAnnex) {
    static const int kTypesFive[] = {kText, kText, kText, kOptions, kButton};
    static const int kTypesSix[] = {kText, kText, kText, kOptions, kButton, kOptionsOrText};
    const int columns = withAnnex ? 6 : 5;

    SetDefaultCellType(kText);
    SetEditable(TRUE);
    EnableDragAndDrop(FALSE);
    SetFixedRowSelection(TRUE);
    SetFixedColumnSelection(TRUE);
    SetTextBkColor(kTextBk);
    SetFmtType(withAnnex ? kTypesSix : kTypesFive, columns);

    try {
        SetRowCount(1);
        SetColumnCount(columns);
        SetFixedRowCount(1);
        SetFixedColumnCount(1);
    } catch (const std::bad_alloc&) {
        AfxMessageBox(L"内存不足，无法建立表格" + CString(kRefusalMark));
        return 0;
    }

    static const wchar_t* const kBillHeads[] = {L"",     L"清单/定额编号", L"清单/定额名称",
                                                L"单位", L"计算结果编辑",  L"带管道配件"};
    static const wchar_t* const kQuotaHeads[] = {L"",     L"定额编号",     L"定额名称",
                                                 L"单位", L"计算结果编辑", L"带管道配件"};
    const bool quotaMode = CAtt().GetQdDeMode() == 1;
    for (int col = 0; col < columns; ++col) {
        GV_ITEM item;
        item.mask = GVIF_TEXT | GVIF_FORMAT;
        item.row = 0;
        item.col = col;
        item.nFormat = DT_CENTER | DT_WORDBREAK | DT_NOPREFIX;
        item.strText = quotaMode ? kQuotaHeads[col] : kBillHeads[col];
        SetItem(&item);
    }

    AutoSize();
    static const int kWidths[] = {20, 100, 170, 50, 80};
    for (int col = 0; col < 5; ++col)
        SetColumnWidth(col, kWidths[col]);
    SetRowHeight(0, GetFixedRowHeight() + 2);
    return 1;
}

int MyGridCtrl::GetSelectRow() {
    CCellRange range = GetSelectedCellRange();
    if (!range.IsValid() || range.GetMinRow() != range.GetMaxRow() || range.GetMinRow() < 1)
        return -1;
    return range.GetMinRow();
}

void MyGridCtrl::GetSelectRows(std::vector<int>& rows) {
    rows.clear();
    CCellRange range = GetSelectedCellRange();
    if (!range.IsValid())
        return;
    for (int row = range.GetMaxRow(); row >= range.GetMinRow(); --row) {
        for (int col = GetFixedColumnCount(); col < GetColumnCount(); ++col) {
            if (IsCellSelected(row, col)) {
                rows.push_back(row);
                break;
            }
        }
    }
}
