// Each finding of the lint on a small category made for it, and none on a clean one; the
// renumbering of shared condition ids; what only the file shows.
#include "rules/Linter.h"
#include "model/ConditionNode.h"
#include "model/ConfigNode.h"
#include "presenter/CQdDeConfigPresenter.h"
#include "store/CAttrConfigStore.h"
#include "store/CXmlQdDeConfig.h"
#include "support/TestHost.h"

#include <gtest/gtest.h>

#include <set>
#include <utility>

namespace {

const wchar_t* const kBill = L"{BILL}";
const wchar_t* const kBillQuota = L"{BILL-QUOTA}";

ConditionNode Value(const wchar_t* attribute, const wchar_t* value) {
    return ConditionNode(attribute, true, L"＝", L"", L"", value, L"", L"");
}

ConditionNode Range(const wchar_t* op1, const wchar_t* lower, const wchar_t* op2,
                    const wchar_t* upper) {
    return ConditionNode(L"管径(mm)", false, L"", op1, op2, L"", lower, upper);
}

QdStruct Bill(const wchar_t* number, const wchar_t* code = kBill, const wchar_t* formula = L"L") {
    QdStruct qd;
    qd.strQdId = number;
    qd.strQdCode = code;
    qd.strFormula = formula;
    return qd;
}

struct Config {
    std::vector<ConditionNode> conditions;
    std::vector<QdStruct> bills = {Bill(L"031001001001")};
};

using Found = std::set<std::pair<FindingKind, int>>; // kind, position

class Lint : public ::testing::Test {
protected:
    Lint() {
        host.Add(L"给排水", L"管道", L"给水管", 1, 101);
        HostSmallCategory& pipe = host.data.catalog[0].larges[0].smalls[0];
        pipe.attributes = {{L"GDCZ", L"材质", L"给水管材质", L"CZ"},
                           {L"GDGJ", L"管径(mm)", L"", L"GJ"}};
        host.data.dropLists[L"给水管材质"] = {L"镀锌钢管", L"PPR管"};
        host.data.project.bill.code = kBill;
        host.data.project.billQuota.code = kBillQuota;
        project.billCode = kBill;
        project.billQuotaCode = kBillQuota;
        project.codeLength = 9;
        project.suffixLength = 3;
    }

    // The findings of 给水管 holding these configurations above its default.
    Found Run(const std::vector<Config>& configs) {
        CQdDeConfigPresenter presenter(host.ConfigDir() + L"/lint.xml");
        CPath path;
        path.SpecId = host.data.catalog[0].id;
        path.LMemberId = 1;
        path.SMemberId = 101;
        for (const Config& c : configs) {
            presenter.AddConfig(path, path.ConfigId);
            ConfigNode* config = presenter.GetConfig(path);
            for (const ConditionNode& condition : c.conditions)
                config->AddCondition(condition);
            for (const QdStruct& bill : c.bills)
                config->AddQd(bill);
        }
        Found found;
        auto* store = dynamic_cast<CXmlQdDeConfig*>(presenter.GetData());
        last = LintSpec(store->GetSpec(), project);
        for (const Finding& f : last)
            found.insert({f.kind, f.position});
        return found;
    }

    // The kinds and severities of the last run's findings, in their order.
    std::vector<std::pair<FindingKind, Severity>> Severities() const {
        std::vector<std::pair<FindingKind, Severity>> out;
        for (const Finding& f : last)
            out.push_back({f.kind, f.severity});
        return out;
    }

    TestHost host;
    std::vector<Finding> last;
    LintProject project;
};

} // namespace

TEST_F(Lint, EachFindingOnACategoryMadeForIt) {
    const ConditionNode zinc = Value(L"材质", L"镀锌钢管");
    const ConditionNode mid = Range(L"＞", L"25", L"≤", L"50");
    struct Case {
        const char* what;
        std::vector<Config> configs;
        Found expected;
    };
    const Case cases[] = {
        {"clean", {{{zinc, mid}}, {{zinc}}, {{Range(L"≥", L"0", L"", L"")}}}, {}},
        {"the same conditions below", {{{zinc}}, {{zinc, mid}}}, {{FindingKind::kShadowed, 2}}},
        {"a narrower range below",
         {{{Range(L"≥", L"25", L"", L"")}}, {{mid}}},
         {{FindingKind::kShadowed, 2}}},
        {"a bound the one above excludes", {{{Range(L"≥", L"30", L"", L"")}}, {{mid}}}, {}},
        {"a value within the range above",
         {{{mid}}, {{ConditionNode(L"管径(mm)", true, L"＝", L"", L"", L"32", L"", L"")}}},
         {{FindingKind::kShadowed, 2}}},
        {"no condition",
         {{{}}, {{zinc}}},
         {{FindingKind::kNoConditions, 1}, {FindingKind::kShadowed, 2}}},
        {"two ranges that never meet",
         {{{Range(L"＞", L"50", L"", L""), Range(L"", L"", L"≤", L"25")}}},
         {{FindingKind::kConflictingRanges, 1}}},
        {"two ranges that touch",
         {{{Range(L"≥", L"50", L"", L""), Range(L"", L"", L"≤", L"50")}}},
         {{FindingKind::kOverlappingRanges, 1}}},
        {"empty, narrow and wordy ranges",
         {{{Range(L"＞", L"50", L"≤", L"25")}},
          {{Range(L"＞", L"25", L"≤", L"25.005")}},
          {{Range(L"＞", L"二十", L"", L"")}}},
         {{FindingKind::kEmptyRange, 1},
          {FindingKind::kNarrowRange, 2},
          {FindingKind::kBadBound, 3}}},
        {"an attribute the category lacks",
         {{{Value(L"颜色", L"红")}}},
         {{FindingKind::kUnknownAttribute, 1}}},
        {"bills",
         {{{zinc},
           {Bill(L"0310010010"), Bill(L"031001001001", L"{OTHER}"),
            Bill(L"031001001001", kBill, L"L*(")}}},
         {{FindingKind::kBadBillNumber, 1},
          {FindingKind::kForeignLibrary, 1},
          {FindingKind::kDuplicateBill, 1},
          {FindingKind::kBadFormula, 1}}},
        {"no items", {{{zinc}, {}}}, {{FindingKind::kNoItems, 1}}},
    };
    for (const Case& c : cases)
        EXPECT_EQ(Run(c.configs), c.expected) << c.what;
}

TEST_F(Lint, ValuesAndRangesTheListCannotGiveAreErrorsOnlyWhereItTakesNoTyping) {
    const std::vector<Config> configs = {{{Value(L"材质", L"铸铁管")}},
                                         {{Range(L"＞", L"25", L"", L"")}}};
    // A list of numbers gives the range what it needs; one of words does not.
    host.data.dropLists[L"管径"] = {L"15", L"32"};
    host.data.catalog[0].larges[0].smalls[0].attributes[1].dropKey = L"管径";
    EXPECT_EQ(Run(configs), Found{}); // no setting: typing is allowed
    host.data.dropLists[L"管径"] = {L"DN15", L"DN32"};
    EXPECT_EQ(Run(configs), (Found{{FindingKind::kRangeOnWords, 2}}));
    EXPECT_EQ(Severities(), (std::vector<std::pair<FindingKind, Severity>>{
                                {FindingKind::kRangeOnWords, Severity::kWarning}}));
    AttrConfig listOnly(L"材质", L"CZ", 0, 0, 0);
    project.setting = [&](const CString&, const CString&) { return &listOnly; };
    EXPECT_EQ(Run(configs),
              (Found{{FindingKind::kValueNotInList, 1}, {FindingKind::kRangeOnWords, 2}}));
    EXPECT_EQ(Severities(), (std::vector<std::pair<FindingKind, Severity>>{
                                {FindingKind::kValueNotInList, Severity::kError},
                                {FindingKind::kRangeOnWords, Severity::kError}}));
}

TEST_F(Lint, SharedConditionIdsAreReportedAndRenumbered) {
    ConfigNode config;
    config.SetLastConditionId(2);
    for (int id : {1, 2, 0, 0, 2}) {
        auto* condition = new ConditionNode(Value(L"材质", L"镀锌钢管"));
        condition->SetId(id);
        config.AddCondition(condition);
    }
    EXPECT_EQ(RenumberSharedConditionIds(config), 2);
    std::vector<int> ids;
    for (const ConditionNode* c : config.GetCondition())
        ids.push_back(c->GetId());
    EXPECT_EQ(ids, (std::vector<int>{1, 2, 0, 3, 4}));
    EXPECT_EQ(config.GetLastConditionId(), 4);
    EXPECT_EQ(RenumberSharedConditionIds(config), 0);
}

TEST_F(Lint, TheFileShowsSpecialtiesWrittenTwiceAndCategoriesTheProjectLacks) {
    const std::string xml = R"(<自动套清单定额配置信息 Version="1.0.0">
  <给排水 id="2" name="给排水">
    <LMember id="1" name="管道"><SMember id="101" name="给水管"/><SMember name="废水管"/></LMember>
    <LMember name="风管"/>
  </给排水>
  <电气 id="3" name="电气"><LMember name="任意"/></电气>
  <给排水 id="2" name="给排水"/>
</自动套清单定额配置信息>)";
    std::set<std::pair<FindingKind, std::string>> found;
    for (const Finding& f : LintFileText(xml))
        found.insert({f.kind, ToUtf8(f.category)});
    EXPECT_EQ(found, (std::set<std::pair<FindingKind, std::string>>{
                         {FindingKind::kUnknownCategory, "给排水\\管道\\废水管"},
                         {FindingKind::kUnknownCategory, "给排水\\风管"},
                         {FindingKind::kDuplicateSpecialty, "给排水"}}));
}
