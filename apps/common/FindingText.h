#pragma once
// A lint finding in the user's words and language, as the tool and the desktop program show it.

#include "rules/Linter.h"

#include <string>

// "never matches: ..." — the reason alone, without the place.
std::string FindingText(const Finding& finding);
// "error" or "warning", translated.
std::string SeverityText(Severity severity);
// The kind as a word a program can match on: "shadowed", "emptyRange"...
const char* FindingKindName(FindingKind kind);
