#pragma once
// The rules a condition of a small category follows, as the workbench's condition editor
// applies them: which attributes it may test, which of them take a range, and how wide a range
// must be. The editor and the command-line tool check conditions with these, so that what one
// refuses the other refuses too.

#include "platform/CString.h"
#include "platform/Export.h"
#include "store/CAttrConfigStore.h"

#include <vector>

// One attribute a condition may test.
struct ConditionAttribute {
    enum class Source {
        kCatalog,        // an attribute of the category in the project's catalog
        kMeasured,       // a quantity measured from the drawn shape
        kWholeComponent, // the component as a whole: free text, no code
    };
    CString name;    // display name; a condition's type is this name
    CString code;    // attribute code; empty for the whole component
    CString dropKey; // the catalog's drop-down list key; empty for none
    Source source = Source::kCatalog;
};

// The attributes of the small category "专业\大类\小类" in the editor's order: the catalog's,
// then the measured quantities some categories offer, then the whole component (具体构件).
KOQDDE_DIALOGS_API std::vector<ConditionAttribute>
ConditionAttributes(const CString& smallCategoryPath);

// The drop-down list a value of `attribute` is chosen from, by the host's lists for the drop
// keys of the category's attributes; false (and `items` empty) when it has none.
bool ValueListOf(const ConditionAttribute& attribute,
                 const std::vector<ConditionAttribute>& categoryAttributes, CStringArray& items);

// What an attribute's setting (AttrConfig.xml) allows; without a record everything is allowed,
// as the generator's defaults allow it.
KOQDDE_DIALOGS_API bool TakesRange(const AttrConfig* setting); // false when set to 不可比较
bool TakesTypedValue(const AttrConfig* setting); // false when set to 下拉 (list only)

// Why a range's bounds, read as numbers the way the editor reads them, leave no room: both
// empty, upper below lower, or closer than 0.01 (compared in double precision, as computed).
// With one bound empty nothing is read.
enum class RangeFault { kNone, kNoBound, kSwapped, kTooNarrow };
KOQDDE_DIALOGS_API RangeFault CheckRangeWidth(const CString& lower, const CString& upper);

// A bound written as a plain decimal number: an optional sign, digits with at most one point,
// blanks around; "1e3", "5mm" and "" are not.
bool IsDecimalNumber(const CString& text);

// The operators of the editor's lists: for a value, for a lower bound, for an upper one.
namespace ConditionOperator {
inline constexpr const wchar_t* kEqual = L"\uFF1D";    // ＝
inline constexpr const wchar_t* kNotEqual = L"\u2260"; // ≠
inline constexpr const wchar_t* kAbove = L"\uFF1E";    // ＞
inline constexpr const wchar_t* kAtLeast = L"\u2265";  // ≥
inline constexpr const wchar_t* kBelow = L"\uFF1C";    // ＜
inline constexpr const wchar_t* kAtMost = L"\u2264";   // ≤
} // namespace ConditionOperator
bool IsEqualOperator(const CString& op);
bool IsLowerOperator(const CString& op);
bool IsUpperOperator(const CString& op);
