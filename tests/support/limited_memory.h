#pragma once

#include <cstddef>

/// For the lifetime of the object, NothrowArray fails to allocate more than @p bytes.
class LimitedMemory {
  public:
    explicit LimitedMemory(std::size_t bytes);
    ~LimitedMemory();
    LimitedMemory(const LimitedMemory&) = delete;
    LimitedMemory& operator=(const LimitedMemory&) = delete;
};
