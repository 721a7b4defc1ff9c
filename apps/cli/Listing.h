#pragma once
// How the tool shows a configuration: the lines of `show`, and its JSON object.

#include "Json.h"

class ConfigNode;

// The configuration's line, then its conditions, bills with their quotas, and its own quotas.
void PrintConfig(const ConfigNode& config);
Json ConfigJson(const ConfigNode& config);
