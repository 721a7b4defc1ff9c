#pragma once
// The address of a node in the configuration tree. The caller fills it down to the level of
// the operation; the rest stays at the "no node" value so that an unfilled record matches
// nothing (category ids are positive, node ids start at 1 and 0 is never a specialty).

#include "platform/Export.h"
#include <cstdint>

struct KOQDDE_API CPath {
    static constexpr std::int32_t kNone = -1;

    std::int32_t SpecId = kNone;
    std::int32_t LMemberId = kNone;
    std::int32_t SMemberId = kNone;
    std::int32_t ConfigId = kNone;
    std::int32_t ConditionId = kNone;
    std::int32_t QdId = kNone;
    std::int32_t Reserved = kNone; // carried along, read by nobody
    std::int32_t DeId = kNone;
};
