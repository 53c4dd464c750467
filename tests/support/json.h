#pragma once

#include <string>

#include "framework/answer_tree.h"

/// The tree as JSON, as a client would receive it.
inline std::string ToJson(const CTPP::CDT& tree) {
    std::string json;
    CTPP::CDT2JSON(tree, json);
    return json;
}
