#include "rules/Linter.h"

#include "host/HostData.h"
#include "host/QvBillKit/QvBillKit.h"
#include "host/QvCalcRules/CalcFormula.h"
#include "host/QvKoProject/QvKoProject.h"
#include "model/ConditionNode.h"
#include "model/ConfigNode.h"
#include "model/DeNode.h"
#include "model/LMember.h"
#include "model/QdNode.h"
#include "model/SMember.h"
#include "model/Spec.h"
#include "platform/FileSystem.h"
#include "presenter/BillNumbering.h"
#include "presenter/CQdDeConfigPresenter.h"
#include "presenter/ConditionRules.h"
#include "rules/Matcher.h"
#include "store/CXmlQdDeConfig.h"

#include <algorithm>
#include <map>
#include <optional>
#include <pugixml.hpp>
#include <set>
#include <stdexcept>

namespace {

std::string Utf8(const CString& text) {
    return ToUtf8(text);
}

// The numbers a range condition lets through; nullopt when a bound is no number.
struct Interval {
    std::optional<double> low, high;
    bool lowStrict = false, highStrict = false;

    static std::optional<Interval> Of(const ConditionNode& c) {
        Interval interval;
        for (int side = 0; side < 2; ++side) {
            CString bound = side == 0 ? c.GetRange1() : c.GetRange2();
            if (bound.Trim().IsEmpty())
                continue;
            const std::optional<double> value = ReadNumber(bound);
            if (!value)
                return std::nullopt;
            if (side == 0) {
                interval.low = value;
                interval.lowStrict = c.GetRangeOperator1() == ConditionOperator::kAbove;
            } else {
                interval.high = value;
                interval.highStrict = c.GetRangeOperator2() == ConditionOperator::kBelow;
            }
        }
        return interval;
    }

    // Every number of this one lies in `outer`.
    bool Within(const Interval& outer) const {
        if (outer.low &&
            (!low || *low < *outer.low || (*low == *outer.low && outer.lowStrict && !lowStrict)))
            return false;
        return !(outer.high && (!high || *high > *outer.high ||
                                (*high == *outer.high && outer.highStrict && !highStrict)));
    }

    bool Meets(const Interval& other) const {
        Interval both = *this;
        if (other.low &&
            (!both.low || *other.low > *both.low || (*other.low == *both.low && other.lowStrict)))
            both.low = other.low, both.lowStrict = other.lowStrict || both.lowStrict;
        if (other.high && (!both.high || *other.high < *both.high ||
                           (*other.high == *both.high && other.highStrict)))
            both.high = other.high, both.highStrict = other.highStrict || both.highStrict;
        return !(both.low && both.high &&
                 (*both.low > *both.high ||
                  (*both.low == *both.high && (both.lowStrict || both.highStrict))));
    }
};

// Every component `b` lets through also satisfies `a` (both on one attribute).
bool Implies(const ConditionNode& b, const ConditionNode& a) {
    if (b.GetCFType() != a.GetCFType())
        return false;
    if (b.IsEqual()) {
        if (b.GetEqualOperator() != ConditionOperator::kNotEqual)
            return TryCondition(a, {{b.GetCFType(), b.GetValue()}}).Held();
        return a.IsEqual() && a.GetEqualOperator() == ConditionOperator::kNotEqual &&
               a.GetValue() == b.GetValue();
    }
    const std::optional<Interval> inner = Interval::Of(b);
    if (!inner)
        return false;
    if (!a.IsEqual()) {
        const std::optional<Interval> outer = Interval::Of(a);
        return outer && inner->Within(*outer);
    }
    // A range lets through numbers only: "≠ v" holds for all of them when v is none of them.
    if (a.GetEqualOperator() != ConditionOperator::kNotEqual)
        return false;
    const std::optional<double> v = ReadNumber(a.GetValue());
    return !v || !inner->Meets(Interval{v, v, false, false});
}

// Every component `below` lets through is caught by `above` first.
bool CaughtBy(const ConfigNode& below, const ConfigNode& above) {
    const std::vector<ConditionNode*> mine = below.GetCondition();
    for (const ConditionNode* a : above.GetCondition())
        if (std::none_of(mine.begin(), mine.end(),
                         [&](const ConditionNode* b) { return Implies(*b, *a); }))
            return false;
    return true;
}

// One small category's checks.
class CategoryLint {
public:
    CategoryLint(const CString& path, const LintProject& project, std::vector<Finding>& out)
        : m_path(path), m_project(project), m_out(out), m_attributes(ConditionAttributes(path)),
          m_variables(GetCalcVariables(path)) {}

    void Run(const std::vector<ConfigNode*>& configs) {
        for (size_t i = 0; i < configs.size(); ++i) {
            m_config = configs[i];
            m_position = static_cast<int>(i + 1);
            if (!m_config->IfDefault()) {
                Shadowing(configs, i);
                if (m_config->GetCondition().empty())
                    Add(Severity::kWarning, FindingKind::kNoConditions, {});
                if (m_config->GetQd().empty() && m_config->GetDe().empty())
                    Add(Severity::kWarning, FindingKind::kNoItems, {});
            }
            Conditions();
            Items();
        }
    }

private:
    void Add(Severity severity, FindingKind kind, std::vector<std::string> args) {
        m_out.push_back({severity, kind, m_path, m_config->GetId(), m_position, std::move(args)});
    }

    void Shadowing(const std::vector<ConfigNode*>& configs, size_t index) {
        for (size_t above = 0; above < index; ++above)
            if (!configs[above]->IfDefault() && CaughtBy(*m_config, *configs[above])) {
                Add(Severity::kError, FindingKind::kShadowed,
                    {"#" + std::to_string(above + 1), std::to_string(configs[above]->GetId())});
                return;
            }
    }

    void Conditions() {
        const std::vector<ConditionNode*> conditions = m_config->GetCondition();
        std::map<int, int> ids;
        for (size_t i = 0; i < conditions.size(); ++i) {
            const ConditionNode& c = *conditions[i];
            ++ids[c.GetId()];
            Attribute(c);
            if (!c.IsEqual())
                Range(c);
            for (size_t j = 0; j < i; ++j)
                RangePair(*conditions[j], c);
        }
        for (const auto& [id, count] : ids)
            if (count > 1)
                Add(Severity::kWarning, FindingKind::kSharedConditionId,
                    {std::to_string(id), std::to_string(count)});
    }

    void Attribute(const ConditionNode& c) {
        auto attribute =
            std::find_if(m_attributes.begin(), m_attributes.end(),
                         [&](const ConditionAttribute& a) { return a.name == c.GetCFType(); });
        if (attribute == m_attributes.end()) {
            Add(Severity::kWarning, FindingKind::kUnknownAttribute, {Utf8(c.GetCFType())});
            return;
        }
        CStringArray list;
        if (!ValueListOf(*attribute, m_attributes, list) || list.GetSize() == 0)
            return;
        const AttrConfig* setting =
            m_project.setting ? m_project.setting(m_path, c.GetCFType()) : nullptr;
        if (!c.IsEqual()) {
            // "DN25" reads as no number, so a range on a list of such values holds for none of
            // them; only a typed value can reach it, where the list takes one.
            for (const CString& item : list)
                if (ReadNumber(item))
                    return;
            Add(TakesTypedValue(setting) ? Severity::kWarning : Severity::kError,
                FindingKind::kRangeOnWords, {Utf8(c.GetCFType())});
            return;
        }
        for (const CString& item : list)
            if (item == c.GetValue())
                return;
        if (!TakesTypedValue(setting))
            Add(Severity::kError, FindingKind::kValueNotInList,
                {Utf8(c.GetValue()), Utf8(c.GetCFType())});
    }

    void Range(const ConditionNode& c) {
        for (const CString& bound : {c.GetRange1(), c.GetRange2()}) {
            CString trimmed = bound;
            if (!trimmed.Trim().IsEmpty() && !ReadNumber(bound)) {
                Add(Severity::kError, FindingKind::kBadBound,
                    {Utf8(c.GetConditionString()), Utf8(bound)});
                return;
            }
        }
        switch (CheckRangeWidth(c.GetRange1(), c.GetRange2())) {
        case RangeFault::kSwapped:
            Add(Severity::kError, FindingKind::kEmptyRange, {Utf8(c.GetConditionString())});
            break;
        case RangeFault::kTooNarrow:
            Add(Severity::kWarning, FindingKind::kNarrowRange, {Utf8(c.GetConditionString())});
            break;
        case RangeFault::kNone:
        case RangeFault::kNoBound:
            break;
        }
    }

    void RangePair(const ConditionNode& first, const ConditionNode& second) {
        if (first.IsEqual() || second.IsEqual() || first.GetCFType() != second.GetCFType())
            return;
        const std::optional<Interval> a = Interval::Of(first), b = Interval::Of(second);
        if (!a || !b)
            return;
        const bool meet = a->Meets(*b);
        Add(meet ? Severity::kWarning : Severity::kError,
            meet ? FindingKind::kOverlappingRanges : FindingKind::kConflictingRanges,
            {Utf8(first.GetCFType())});
    }

    void Library(const CString& number, const CString& code, const CString& expected) {
        if (code.CompareNoCase(expected) != 0)
            Add(Severity::kWarning, FindingKind::kForeignLibrary,
                {Utf8(number), Utf8(code), Utf8(expected)});
    }

    void Formula(const CString& number, const CString& formula) {
        CString error;
        if (!CheckFormula(formula, m_variables, error))
            Add(Severity::kError, FindingKind::kBadFormula,
                {Utf8(number), Utf8(formula), Utf8(error)});
    }

    void Items() {
        std::set<CString> numbers;
        for (const QdNode* qd : m_config->GetQd()) {
            const QdStruct& q = qd->m_qd;
            if (!m_project.quotaMode)
                Library(q.strQdId, q.strQdCode, m_project.billCode);
            if (!FollowsEncodingRule(q.strQdId, m_project.codeLength, m_project.suffixLength))
                Add(Severity::kWarning, FindingKind::kBadBillNumber,
                    {Utf8(q.strQdId), std::to_string(RuleNumberLength(m_project.codeLength,
                                                                      m_project.suffixLength))});
            if (!numbers.insert(q.strQdId).second)
                Add(Severity::kError, FindingKind::kDuplicateBill, {Utf8(q.strQdId)});
            Formula(q.strQdId, q.strFormula);
            for (const DeNode* de : qd->GetDe()) {
                if (!m_project.quotaMode)
                    Library(de->m_de.strDeId, de->m_de.strDeCode, m_project.billQuotaCode);
                Formula(de->m_de.strDeId, de->m_de.strFormula);
            }
        }
        for (const DeNode* de : m_config->GetDe()) {
            if (m_project.quotaMode)
                Library(de->m_de.strDeId, de->m_de.strDeCode, m_project.quotaCode);
            Formula(de->m_de.strDeId, de->m_de.strFormula);
        }
    }

    CString m_path;
    const LintProject& m_project;
    std::vector<Finding>& m_out;
    std::vector<ConditionAttribute> m_attributes;
    std::vector<CalcVariable> m_variables;
    const ConfigNode* m_config = nullptr;
    int m_position = 0;
};

} // namespace

LintProject
HostLintProject(std::function<const AttrConfig*(const CString&, const CString&)> setting) {
    CAtt att;
    LintProject project;
    project.quotaMode = att.GetQdDeMode() != 0;
    project.billCode = att.GetQdCode();
    project.billQuotaCode = att.GetQdDeCode();
    project.quotaCode = att.GetDeCode();
    IBillLib::GetEnCodeRule(project.codeLength, project.suffixLength);
    project.setting = std::move(setting);
    return project;
}

std::vector<Finding> LintSpec(const Spec& spec, const LintProject& project) {
    std::vector<Finding> findings;
    for (const LMember* large : spec.GetAllLMember())
        for (const SMember* small : large->GetAllSMember())
            CategoryLint(spec.GetSpecName() + L"\\" + large->GetName() + L"\\" + small->GetName(),
                         project, findings)
                .Run(small->GetAllConfig());
    return findings;
}

std::vector<Finding> LintOpenFile(CQdDeConfigPresenter& presenter) {
    auto* store = dynamic_cast<CXmlQdDeConfig*>(presenter.GetData());
    if (!store)
        throw std::runtime_error("the configuration store is not an XML store");
    AttrConfig record;
    const LintProject project = HostLintProject(
        [&](const CString& category, const CString& attribute) -> const AttrConfig* {
            return presenter.GetAttConfig(category, attribute, record) ? &record : nullptr;
        });
    std::vector<Finding> findings = LintSpec(store->GetSpec(), project);
    if (const FileBytes bytes = ReadRegularFile(store->GetFilePath())) {
        std::vector<Finding> more = LintFileText(bytes.bytes);
        findings.insert(findings.end(), more.begin(), more.end());
    }
    return findings;
}

std::vector<Finding> LintFileText(const std::string& xml) {
    std::vector<Finding> findings;
    pugi::xml_document doc;
    if (!doc.load_buffer(xml.data(), xml.size()))
        return findings;
    const HostData* host = CurrentHostData();
    std::set<std::string> seen;
    for (pugi::xml_node element : doc.document_element().children()) {
        if (element.type() != pugi::node_element)
            continue;
        const std::string name = element.attribute("name").value();
        const CString specName = FromUtf8(name);
        if (!seen.insert(name).second) {
            findings.push_back({Severity::kError,
                                FindingKind::kDuplicateSpecialty,
                                specName,
                                0,
                                0,
                                {element.name()}});
            continue;
        }
        const HostSpecialty* spec = host ? host->FindSpec(specName) : nullptr;
        if (!spec)
            continue; // a specialty of another project: the store keeps it as it is
        for (pugi::xml_node large : element.children("LMember")) {
            const CString largeName = FromUtf8(large.attribute("name").value());
            auto hostLarge =
                std::find_if(spec->larges.begin(), spec->larges.end(),
                             [&](const HostLargeCategory& l) { return l.name == largeName; });
            const CString largePath = specName + L"\\" + largeName;
            if (hostLarge == spec->larges.end()) {
                findings.push_back({Severity::kWarning,
                                    FindingKind::kUnknownCategory,
                                    largePath,
                                    0,
                                    0,
                                    {Utf8(largePath)}});
                continue;
            }
            for (pugi::xml_node small : large.children("SMember")) {
                const CString smallName = FromUtf8(small.attribute("name").value());
                if (std::none_of(hostLarge->smalls.begin(), hostLarge->smalls.end(),
                                 [&](const HostSmallCategory& s) { return s.name == smallName; }))
                    findings.push_back({Severity::kWarning,
                                        FindingKind::kUnknownCategory,
                                        largePath + L"\\" + smallName,
                                        0,
                                        0,
                                        {Utf8(largePath + L"\\" + smallName)}});
            }
        }
    }
    return findings;
}

int RenumberSharedConditionIds(ConfigNode& config) {
    const std::vector<ConditionNode*> conditions = config.GetCondition();
    // Past every id in use too, should the counter lag behind the file's ids.
    int last = config.GetLastConditionId();
    for (const ConditionNode* condition : conditions)
        last = std::max(last, condition->GetId());
    std::set<int> used;
    int renumbered = 0;
    for (ConditionNode* condition : conditions) {
        if (used.insert(condition->GetId()).second)
            continue;
        condition->SetId(++last);
        ++renumbered;
    }
    if (renumbered)
        config.SetLastConditionId(last);
    return renumbered;
}
