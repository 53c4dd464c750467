#pragma once

#include <string>

namespace CTPP {

class CDT;

/// Appends the tree as JSON without whitespace, keys in byte order; what `json` holds stays.
void CDT2JSON(const CDT& data, std::string& json);

}  // namespace CTPP
