#pragma once
// The tool's checks of what an edit would write, so that it refuses (usage error, nothing
// changed) a condition or an item that can never match or never shows in the workbench.

#include "Cli.h"

// The eight strings of a condition against the small category's attributes, their drop-down
// lists and settings, and the workbench's range rules. `allowUnknown` lets an attribute the
// category lacks through. Notes on standard error what is allowed but looks like a slip.
void CheckCondition(CliContext& ctx, const CPath& category, const CStringArray& strings,
                    bool allowUnknown);

// The condition of `config` on this attribute (its type, compared whole), or null.
ConditionNode* ConditionOn(const ConfigNode& config, const CString& attribute);

// Whether the condition already holds these eight strings as the presenter would read them.
bool HoldsCondition(const ConditionNode& condition, const CStringArray& strings);

// The fields an edit gives an item, whichever of them it gives: the unit code an integer, the
// fittings flag 是 or 否, the formula one the calculator takes over the category's variables.
void CheckItemFields(CliContext& ctx, const CPath& category, const ParsedArgs& args);

// A bill number the edit gives: by the bill library's encoding rule, and not another bill
// item's number in the configuration (`self` is the item being changed, 0 for a new one).
void CheckBillNumber(const ConfigNode& config, const CString& number, int self);
