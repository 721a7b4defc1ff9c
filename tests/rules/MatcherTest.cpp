// The matching rule case by case: each operator of each bound, open bounds, text that is no
// number, the first match winning over later ones, and the default taking the rest.
#include "rules/Matcher.h"
#include "model/ConditionNode.h"
#include "model/ConfigNode.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

ConditionNode Value(const wchar_t* attribute, const wchar_t* op, const wchar_t* value) {
    return ConditionNode(attribute, true, op, L"", L"", value, L"", L"");
}

ConditionNode Range(const wchar_t* op1, const wchar_t* lower, const wchar_t* op2,
                    const wchar_t* upper) {
    return ConditionNode(L"管径", false, L"", op1, op2, L"", lower, upper);
}

} // namespace

TEST(Matcher, EachConditionHoldsOrSaysWhyNot) {
    struct Case {
        ConditionNode condition;
        const wchar_t* text; // the component's 管径 or 材质; null: the attribute is absent
        Verdict verdict;
    };
    const Case cases[] = {
        {Value(L"材质", L"＝", L"镀锌钢管"), L"镀锌钢管", Verdict::kHeld},
        {Value(L"材质", L"＝", L"镀锌钢管"), L"镀锌钢管 ", Verdict::kValueDiffers},
        {Value(L"材质", L"＝", L"镀锌钢管"), nullptr, Verdict::kValueDiffers},
        {Value(L"材质", L"≠", L"PPR"), L"镀锌钢管", Verdict::kHeld},
        {Value(L"材质", L"≠", L"PPR"), nullptr, Verdict::kHeld},
        {Value(L"材质", L"≠", L"PPR"), L"PPR", Verdict::kValueEquals},
        // Each operator on its bound, at the bound and either side of it.
        {Range(L"＞", L"50", L"", L""), L"50", Verdict::kBelowLower},
        {Range(L"＞", L"50", L"", L""), L"50.01", Verdict::kHeld},
        {Range(L"≥", L"50", L"", L""), L"50", Verdict::kHeld},
        {Range(L"≥", L"50", L"", L""), L"49.9", Verdict::kBelowLower},
        {Range(L"", L"", L"＜", L"100"), L"100", Verdict::kAboveUpper},
        {Range(L"", L"", L"＜", L"100"), L"-3", Verdict::kHeld},
        {Range(L"", L"", L"≤", L"100"), L"100", Verdict::kHeld},
        {Range(L"", L"", L"≤", L"100"), L"100.5", Verdict::kAboveUpper},
        {Range(L"＞", L"25", L"≤", L"50"), L" 32 ", Verdict::kHeld},
        {Range(L"＞", L"25", L"≤", L"50"), L"65", Verdict::kAboveUpper},
        // No number in the component, or in a bound: nothing lies within.
        {Range(L"＞", L"25", L"≤", L"50"), L"DN32", Verdict::kNotANumber},
        {Range(L"＞", L"25", L"≤", L"50"), L"1e1", Verdict::kNotANumber},
        {Range(L"＞", L"25", L"≤", L"50"), nullptr, Verdict::kNotANumber},
        {Range(L"＞", L"二十五", L"", L""), L"32", Verdict::kBadBound},
    };
    for (const Case& c : cases) {
        Component component;
        if (c.text)
            component[c.condition.GetCFType()] = c.text;
        ConditionTrial trial = TryCondition(c.condition, component);
        EXPECT_EQ(trial.verdict, c.verdict) << ToUtf8(c.condition.GetConditionString()) << " on "
                                            << (c.text ? ToUtf8(CString(c.text)) : "-");
    }
}

TEST(Matcher, TheFirstMatchWinsAndTheDefaultTakesTheRest) {
    // 1: 材质＝镀锌钢管 and 25＜管径≤50; 2: 材质＝镀锌钢管; default.
    ConfigNode narrow, wide, fallback;
    narrow.SetId(1);
    narrow.AddCondition(Value(L"材质", L"＝", L"镀锌钢管"));
    narrow.AddCondition(Range(L"＞", L"25", L"≤", L"50"));
    wide.SetId(2);
    wide.AddCondition(Value(L"材质", L"＝", L"镀锌钢管"));
    fallback.SetId(3);
    fallback.SetDefault(true);
    std::vector<ConfigNode*> configs = {&narrow, &wide, &fallback};

    MatchResult both = Match(configs, {{L"材质", L"镀锌钢管"}, {L"管径", L"32"}});
    EXPECT_EQ(both.Winner(), &narrow);
    EXPECT_EQ(both.trials.size(), 1u);

    MatchResult wideOnly = Match(configs, {{L"材质", L"镀锌钢管"}, {L"管径", L"80"}});
    EXPECT_EQ(wideOnly.Winner(), &wide);
    ASSERT_EQ(wideOnly.trials.size(), 2u);
    // The failed configuration keeps every condition's verdict, not only the first failure.
    ASSERT_EQ(wideOnly.trials[0].conditions.size(), 2u);
    EXPECT_TRUE(wideOnly.trials[0].conditions[0].Held());
    EXPECT_EQ(wideOnly.trials[0].conditions[1].verdict, Verdict::kAboveUpper);

    MatchResult none = Match(configs, {{L"材质", L"PPR"}});
    EXPECT_EQ(none.Winner(), &fallback);
    EXPECT_EQ(none.trials.size(), 3u);

    // Without its default a list may leave a component with nothing.
    configs.pop_back();
    EXPECT_EQ(Match(configs, {{L"材质", L"PPR"}}).Winner(), nullptr);
}
