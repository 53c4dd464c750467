#pragma once

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

/// The body that a responder of the benchmark answers. KESTAL_DEVICE names its file, because the
/// launcher passes on only the variables of the service.
inline std::string StoredBody() {
    const char* path = std::getenv("KESTAL_DEVICE");
    std::ifstream file(path == nullptr ? "" : path);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}
