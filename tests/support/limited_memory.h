#pragma once

#include <cstddef>

/// For its lifetime, NothrowArray gives none of more than @p bytes.
class LimitedMemory {
  public:
    explicit LimitedMemory(std::size_t bytes);
    ~LimitedMemory();
    LimitedMemory(const LimitedMemory&) = delete;
    LimitedMemory& operator=(const LimitedMemory&) = delete;
};
