#include "rules/BillOfQuantities.h"

#include "host/QvCalcRules/CalcFormula.h"
#include "model/ConfigNode.h"
#include "model/DeNode.h"
#include "model/LMember.h"
#include "model/QdNode.h"
#include "model/SMember.h"
#include "model/Spec.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <memory>
#include <optional>
#include <unordered_map>

namespace {

// An item's formula, parsed once for every component that receives it.
struct PreparedItem {
    const CString* number;
    const CString* name;
    const CString* unit;
    CompiledFormula formula;
    CString error; // empty when the formula parsed
    CString formulaText;
    // Where the item's number sits in its list of the bill, found at its first count: rows
    // after that add to it without looking the number up.
    std::optional<size_t> slot;
};

struct PreparedBill {
    PreparedItem bill;
    std::vector<PreparedItem> quotas;
};

struct PreparedConfig {
    std::vector<PreparedBill> bills;
    std::vector<PreparedItem> quotas;
};

struct PreparedCategory {
    explicit PreparedCategory(const std::vector<ConfigNode*>& configs) : rules(configs) {}
    RuleList rules;
    std::map<const ConfigNode*, PreparedConfig> items; // filled when a config first wins
};

PreparedItem Prepare(const CString& number, const CString& name, const CString& unit,
                     const CString& formula, const std::vector<CalcVariable>& variables) {
    PreparedItem item{&number, &name, &unit, {}, {}, formula, std::nullopt};
    item.formula.Compile(formula, variables, item.error);
    return item;
}

PreparedConfig PrepareConfig(const ConfigNode& config, const std::vector<CalcVariable>& vars) {
    PreparedConfig prepared;
    for (const QdNode* qd : config.GetQd()) {
        const QdStruct& q = qd->m_qd;
        PreparedBill bill{Prepare(q.strQdId, q.strName, q.strUnit, q.strFormula, vars), {}};
        for (const DeNode* de : qd->GetDe())
            bill.quotas.push_back(Prepare(de->m_de.strDeId, de->m_de.strName, de->m_de.strUnit,
                                          de->m_de.strFormula, vars));
        prepared.bills.push_back(std::move(bill));
    }
    for (const DeNode* de : config.GetDe())
        prepared.quotas.push_back(Prepare(de->m_de.strDeId, de->m_de.strName, de->m_de.strUnit,
                                          de->m_de.strFormula, vars));
    return prepared;
}

BoqItem& ItemOf(BoqItem& item) {
    return item;
}
BoqItem& ItemOf(BoqBill& bill) {
    return bill.item;
}

// Adds a quantity to the row of the item's number, made at its first meeting so the bill
// keeps the order in which numbers first came.
// `indexOf` gives the list's numbers; it is asked only at an item's first count.
template <class Row, class IndexOf>
Row& Tally(std::vector<Row>& rows, IndexOf indexOf, PreparedItem& item, double quantity) {
    if (!item.slot) {
        auto [it, added] = indexOf().emplace(*item.number, rows.size());
        if (added) {
            rows.emplace_back();
            ItemOf(rows.back()) = {*item.number, *item.name, *item.unit, 0, 0};
        }
        item.slot = it->second;
    }
    BoqItem& total = ItemOf(rows[*item.slot]);
    total.quantity += quantity;
    ++total.components;
    return rows[*item.slot];
}

class Runner {
public:
    Runner(const Spec& spec, BillOfQuantities& out)
        : m_out(out), m_variables(GetCalcVariables(L"")) {
        for (const LMember* large : spec.GetAllLMember())
            for (const SMember* small : large->GetAllSMember()) {
                auto category = std::make_shared<PreparedCategory>(small->GetAllConfig());
                const CString path = large->GetName() + L"\\" + small->GetName();
                m_categories[path.str()] = category;
                m_categories[(spec.GetSpecName() + L"\\" + path).str()] = category;
            }
    }

    void Run(const ComponentRow& row) {
        ++m_out.components;
        auto found = m_categories.find(Normalized(row.category).str());
        if (found == m_categories.end()) {
            m_out.problems.push_back({row.line, row.category, "unknownCategory", ""});
            return;
        }
        PreparedCategory& category = *found->second;
        const ConfigNode* winner = category.rules.Winner(row.attributes);
        if (!winner) {
            m_out.problems.push_back({row.line, row.category, "noMatch", ""});
            return;
        }
        if (winner->IfDefault())
            m_out.defaultOnly.push_back(&row);
        auto prepared = category.items.find(winner);
        if (prepared == category.items.end())
            prepared = category.items.emplace(winner, PrepareConfig(*winner, m_variables)).first;
        const double values[] = {row.L, row.N, row.S};
        double quantity = 0;
        for (PreparedBill& bill : prepared->second.bills) {
            // A bill that can't be counted takes its quotas with it.
            if (!Quantity(row, bill.bill, values, quantity))
                continue;
            BoqBill& total = Tally(
                m_out.bills, [&]() -> auto& { return m_billIndex; }, bill.bill, quantity);
            auto quotaIndex = [&]() -> auto& {
                return m_quotaUnderBill[*bill.bill.number];
            };
            for (PreparedItem& quota : bill.quotas)
                if (Quantity(row, quota, values, quantity))
                    Tally(total.quotas, quotaIndex, quota, quantity);
        }
        for (PreparedItem& quota : prepared->second.quotas)
            if (Quantity(row, quota, values, quantity))
                Tally(
                    m_out.quotas, [&]() -> auto& { return m_quotaIndex; }, quota, quantity);
    }

private:
    static CString Normalized(CString path) {
        path.Replace(L"/", L"\\");
        return path;
    }

    bool Quantity(const ComponentRow& row, const PreparedItem& item, const double* values,
                  double& quantity) {
        if (!item.error.IsEmpty()) {
            m_out.problems.push_back({row.line, row.category, "badFormula",
                                      ToUtf8(*item.number) + ": " + ToUtf8(item.formulaText) +
                                          ": " + ToUtf8(item.error)});
            return false;
        }
        quantity = item.formula.Evaluate(values);
        if (!std::isfinite(quantity)) {
            m_out.problems.push_back({row.line, row.category, "notFinite",
                                      ToUtf8(*item.number) + ": " + ToUtf8(item.formulaText)});
            return false;
        }
        return true;
    }

    BillOfQuantities& m_out;
    std::vector<CalcVariable> m_variables;
    std::unordered_map<std::wstring, std::shared_ptr<PreparedCategory>> m_categories;
    std::map<CString, size_t> m_billIndex;
    std::map<CString, size_t> m_quotaIndex;
    std::map<CString, std::map<CString, size_t>> m_quotaUnderBill;
};

// Item numbers as a bill lists them: runs of digits by their value, so that 10-1-2 comes
// before 10-1-12 and 031001001001 before 031001006001.
bool NumberLess(const CString& left, const CString& right) {
    const std::wstring& a = left.str();
    const std::wstring& b = right.str();
    size_t i = 0, j = 0;
    auto digit = [](wchar_t c) { return c >= L'0' && c <= L'9'; };
    while (i < a.size() && j < b.size()) {
        if (digit(a[i]) && digit(b[j])) {
            size_t ei = i, ej = j;
            while (ei < a.size() && digit(a[ei]))
                ++ei;
            while (ej < b.size() && digit(b[ej]))
                ++ej;
            // Leading zeros aside, the longer run is the larger number.
            size_t zi = i, zj = j;
            while (zi + 1 < ei && a[zi] == L'0')
                ++zi;
            while (zj + 1 < ej && b[zj] == L'0')
                ++zj;
            if (ei - zi != ej - zj)
                return ei - zi < ej - zj;
            if (int c = a.compare(zi, ei - zi, b, zj, ej - zj); c != 0)
                return c < 0;
            i = ei;
            j = ej;
        } else {
            if (a[i] != b[j])
                return a[i] < b[j];
            ++i;
            ++j;
        }
    }
    return a.size() - i < b.size() - j || (a.size() - i == b.size() - j && a < b);
}

} // namespace

BillOfQuantities ApplyComponents(const Spec& spec, const std::vector<ComponentRow>& rows) {
    BillOfQuantities out;
    {
        Runner runner(spec, out);
        for (const ComponentRow& row : rows)
            runner.Run(row);
    }
    // Sorted only now: the runner finds its lines by their place in the lists.
    auto byNumber = [](const BoqItem& a, const BoqItem& b) {
        return NumberLess(a.number, b.number);
    };
    std::stable_sort(out.bills.begin(), out.bills.end(),
                     [&](const BoqBill& a, const BoqBill& b) { return byNumber(a.item, b.item); });
    std::stable_sort(out.quotas.begin(), out.quotas.end(), byNumber);
    return out;
}

void ForEachBillLine(const BillOfQuantities& boq,
                     const std::function<void(const std::string& no, const BoqItem& item)>& line) {
    int position = 0;
    for (const BoqBill& bill : boq.bills) {
        const std::string no = std::to_string(++position);
        line(no, bill.item);
        int sub = 0;
        for (const BoqItem& quota : bill.quotas)
            line(no + "." + std::to_string(++sub), quota);
    }
    for (const BoqItem& quota : boq.quotas)
        line(std::to_string(++position), quota);
}
