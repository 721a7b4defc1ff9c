#pragma once
// A component list run through a configuration: each component receives the items of the
// configuration the matching rule gives it, each item's quantity is its formula over the
// component's L, N and S, and items of one number are summed into a bill of quantities.

#include "platform/CString.h"
#include "rules/Matcher.h"

#include <functional>
#include <string>
#include <vector>

class Spec;

struct ComponentRow {
    int line = 0;     // the row's line in its file, for messages
    CString category; // 大类\小类 or 专业\大类\小类
    Component attributes;
    double L = 0, N = 0, S = 0;
};

struct BoqItem {
    CString number, name, unit;
    double quantity = 0;
    int components = 0; // how many components gave it
};

struct BoqBill {
    BoqItem item;
    std::vector<BoqItem> quotas; // the quotas under this bill, in the order first met
};

// A row that received nothing it should have, with the reason.
struct BoqProblem {
    int line = 0;
    CString category;
    std::string kind;   // "unknownCategory", "noMatch", "badFormula", "notFinite"
    std::string detail; // the formula's error, the item's number
};

struct BillOfQuantities {
    // In number order, digit runs by their value (10-1-2 before 10-1-12).
    std::vector<BoqBill> bills;
    std::vector<BoqItem> quotas;                  // quotas of configurations themselves
    std::vector<const ComponentRow*> defaultOnly; // rows only the default configuration took
    std::vector<BoqProblem> problems;
    int components = 0;
};

// Runs the rows through the specialty's configurations. The rows must outlive the result.
BillOfQuantities ApplyComponents(const Spec& spec, const std::vector<ComponentRow>& rows);

// The bill's lines in order with their numbers as printed: a bill 1, 2..., the quotas under it
// 1.1, 1.2..., then the configurations' own quotas continuing the count.
void ForEachBillLine(const BillOfQuantities& boq,
                     const std::function<void(const std::string& no, const BoqItem& item)>& line);
