#pragma once
// The Windows basic types, messages and notification codes the dialogs are written with, at
// their Windows values so that handlers compare against the numbers they expect. Header only,
// no Qt: anything may include it.

#include "platform/MessageBox.h" // IDOK, IDCANCEL, IDYES, IDNO

#include <cstdint>

using BOOL = int;
inline constexpr BOOL TRUE = 1;
inline constexpr BOOL FALSE = 0;
using UINT = unsigned int;
using DWORD = std::uint32_t;
using WORD = std::uint16_t;
using BYTE = std::uint8_t;
using WPARAM = std::uintptr_t;
using LPARAM = std::intptr_t;
using LRESULT = std::intptr_t;
using COLORREF = std::uint32_t;
using UINT_PTR = std::uintptr_t;

inline constexpr COLORREF RGB(int r, int g, int b) {
    return static_cast<COLORREF>((r & 0xFF) | ((g & 0xFF) << 8) | ((b & 0xFF) << 16));
}
inline constexpr int GetRValue(COLORREF c) {
    return static_cast<int>(c & 0xFF);
}
inline constexpr int GetGValue(COLORREF c) {
    return static_cast<int>((c >> 8) & 0xFF);
}
inline constexpr int GetBValue(COLORREF c) {
    return static_cast<int>((c >> 16) & 0xFF);
}

inline constexpr WORD LOWORD(std::uintptr_t v) {
    return static_cast<WORD>(v & 0xFFFF);
}
inline constexpr WORD HIWORD(std::uintptr_t v) {
    return static_cast<WORD>((v >> 16) & 0xFFFF);
}
inline constexpr WPARAM MAKEWPARAM(unsigned lo, unsigned hi) {
    return static_cast<WPARAM>((lo & 0xFFFF) | ((hi & 0xFFFF) << 16));
}

struct CPoint {
    int x = 0;
    int y = 0;
    constexpr CPoint() = default;
    constexpr CPoint(int px, int py) : x(px), y(py) {}
    friend constexpr bool operator==(const CPoint&, const CPoint&) = default;
};

struct CSize {
    int cx = 0;
    int cy = 0;
    constexpr CSize() = default;
    constexpr CSize(int w, int h) : cx(w), cy(h) {}
    friend constexpr bool operator==(const CSize&, const CSize&) = default;
};

// Right and bottom are exclusive, as in Windows: Width() is right - left.
struct CRect {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
    constexpr CRect() = default;
    constexpr CRect(int l, int t, int r, int b) : left(l), top(t), right(r), bottom(b) {}
    constexpr int Width() const { return right - left; }
    constexpr int Height() const { return bottom - top; }
    constexpr CSize Size() const { return CSize(Width(), Height()); }
    constexpr CPoint TopLeft() const { return CPoint(left, top); }
    constexpr CPoint BottomRight() const { return CPoint(right, bottom); }
    constexpr CPoint CenterPoint() const { return CPoint((left + right) / 2, (top + bottom) / 2); }
    constexpr bool IsRectEmpty() const { return right <= left || bottom <= top; }
    constexpr bool PtInRect(CPoint p) const {
        return p.x >= left && p.x < right && p.y >= top && p.y < bottom;
    }
    constexpr void OffsetRect(int dx, int dy) {
        left += dx;
        right += dx;
        top += dy;
        bottom += dy;
    }
    constexpr void InflateRect(int dx, int dy) {
        left -= dx;
        right += dx;
        top -= dy;
        bottom += dy;
    }
    constexpr void DeflateRect(int dx, int dy) { InflateRect(-dx, -dy); }
    friend constexpr bool operator==(const CRect&, const CRect&) = default;
};

// Messages.
inline constexpr UINT WM_CLOSE = 0x0010;
inline constexpr UINT WM_NOTIFY = 0x004E;
inline constexpr UINT WM_COMMAND = 0x0111;
inline constexpr UINT WM_RBUTTONUP = 0x0205;
inline constexpr UINT WM_USER = 0x0400;

inline constexpr int SW_HIDE = 0;
inline constexpr int SW_SHOW = 5;

// Notification codes (WM_NOTIFY codes are negative and travel as UINT).
inline constexpr int NM_CLICK = -2;
inline constexpr int NM_DBLCLK = -3;
inline constexpr int NM_RCLICK = -5;
inline constexpr int LVN_ITEMCHANGED = -101;
inline constexpr int LVN_BEGINLABELEDITW = -175;
inline constexpr int LVN_ENDLABELEDITW = -176;
inline constexpr int TVN_SELCHANGING = -450;
inline constexpr int TVN_SELCHANGED = -451;
inline constexpr int TCN_SELCHANGE = -551;
inline constexpr int TCN_SELCHANGING = -552;

// WM_COMMAND codes of the classic controls.
inline constexpr UINT BN_CLICKED = 0;
inline constexpr UINT BN_DOUBLECLICKED = 5;
inline constexpr UINT STN_CLICKED = 0;
inline constexpr UINT LBN_SELCHANGE = 1;
inline constexpr UINT LBN_DBLCLK = 2;
inline constexpr UINT CBN_SELCHANGE = 1;
inline constexpr UINT CBN_DBLCLK = 2;
inline constexpr UINT CBN_EDITCHANGE = 5;
inline constexpr UINT CBN_DROPDOWN = 7;
inline constexpr UINT CBN_CLOSEUP = 8;
inline constexpr UINT EN_CHANGE = 0x0300;

inline constexpr int LB_ERR = -1;
inline constexpr int CB_ERR = -1;

class CWnd;

// The header of every WM_NOTIFY record. hwndFrom is the sending control's CWnd.
struct NMHDR {
    CWnd* hwndFrom = nullptr;
    UINT_PTR idFrom = 0;
    UINT code = 0;
};

// Tree items are opaque handles; null is "no item".
struct _TREEITEM;
using HTREEITEM = _TREEITEM*;
inline HTREEITEM const TVI_ROOT = reinterpret_cast<HTREEITEM>(static_cast<std::intptr_t>(-0x10000));
inline HTREEITEM const TVI_FIRST =
    reinterpret_cast<HTREEITEM>(static_cast<std::intptr_t>(-0x0FFFF));
inline HTREEITEM const TVI_LAST = reinterpret_cast<HTREEITEM>(static_cast<std::intptr_t>(-0x0FFFE));

inline constexpr UINT TVE_COLLAPSE = 1;
inline constexpr UINT TVE_EXPAND = 2;
inline constexpr UINT TVE_TOGGLE = 3;
inline constexpr UINT TVGN_CARET = 9;

// What caused a tree selection change.
inline constexpr UINT TVC_UNKNOWN = 0;
inline constexpr UINT TVC_BYMOUSE = 1;
inline constexpr UINT TVC_BYKEYBOARD = 2;

struct NMTREEVIEW {
    NMHDR hdr;
    UINT action = TVC_UNKNOWN;
    HTREEITEM itemOld = nullptr;
    HTREEITEM itemNew = nullptr;
};

// List view item states and flags.
inline constexpr UINT LVIS_FOCUSED = 0x0001;
inline constexpr UINT LVIS_SELECTED = 0x0002;
inline constexpr UINT LVIF_STATE = 0x0008;
inline constexpr int LVNI_ALL = 0x0000;
inline constexpr int LVNI_FOCUSED = 0x0001;
inline constexpr int LVNI_SELECTED = 0x0002;
inline constexpr DWORD LVS_EX_GRIDLINES = 0x00000001;
inline constexpr DWORD LVS_EX_FULLROWSELECT = 0x00000020;
inline constexpr int LVCFMT_LEFT = 0x0000;
inline constexpr int LVCFMT_RIGHT = 0x0001;
inline constexpr int LVCFMT_CENTER = 0x0002;

struct NMLISTVIEW {
    NMHDR hdr;
    int iItem = -1;
    int iSubItem = 0;
    UINT uNewState = 0;
    UINT uOldState = 0;
    UINT uChanged = 0;
    CPoint ptAction;
    LPARAM lParam = 0;
};
using LPNMLISTVIEW = NMLISTVIEW*;
using LPNMTREEVIEW = NMTREEVIEW*;

// Text formats, for the grid's cell formats.
inline constexpr UINT DT_LEFT = 0x0000;
inline constexpr UINT DT_CENTER = 0x0001;
inline constexpr UINT DT_RIGHT = 0x0002;
inline constexpr UINT DT_VCENTER = 0x0004;
inline constexpr UINT DT_SINGLELINE = 0x0020;
inline constexpr UINT DT_WORDBREAK = 0x0010;
inline constexpr UINT DT_NOPREFIX = 0x0800;
