#include "VerdictText.h"

#include "Translate.h"

#include "model/ConditionNode.h"

std::string VerdictText(const ConditionTrial& trial) {
    const ConditionNode& c = *trial.condition;
    const std::string text = ToUtf8(trial.attributeText);
    switch (trial.verdict) {
    case Verdict::kHeld:
        return Tr("holds");
    case Verdict::kValueDiffers:
        return Tr("\"{1}\" is not \"{2}\"", {text, ToUtf8(c.GetValue())});
    case Verdict::kValueEquals:
        return Tr("\"{1}\" is \"{2}\"", {text, ToUtf8(c.GetValue())});
    case Verdict::kNotANumber:
        return Tr("\"{1}\" is no number", {text});
    case Verdict::kBadBound:
        return Tr("a bound of the range is no number");
    case Verdict::kBelowLower:
        return Tr("{1} is below the range (lower bound {2} {3})",
                  {text, ToUtf8(c.GetRangeOperator1()), ToUtf8(c.GetRange1())});
    case Verdict::kAboveUpper:
        return Tr("{1} is above the range (upper bound {2} {3})",
                  {text, ToUtf8(c.GetRangeOperator2()), ToUtf8(c.GetRange2())});
    }
    return {};
}
