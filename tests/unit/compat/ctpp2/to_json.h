#pragma once

#include <ctpp2/CDT.hpp>
#include <ctpp2/CTPP2Util.hpp>
#include <string>

inline std::string ToJSON(const CTPP::CDT& data) {
    std::string json;
    CTPP::CDT2JSON(data, json);
    return json;
}
