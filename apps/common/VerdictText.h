#pragma once
// Why a condition held or failed on a component, in the user's words and language, as the
// tool's match and the desktop program's trial window show it.

#include "rules/Matcher.h"

#include <string>

// "holds", "\"PP-R管\" is not \"镀锌钢管\"", "80 is above the range (upper bound ≤ 50)"...
std::string VerdictText(const ConditionTrial& trial);
