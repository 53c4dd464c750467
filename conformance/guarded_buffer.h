// Memory that a call may write to, between bytes that it must leave alone.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

namespace conformance {

class GuardedBuffer {
  public:
    /// @p size bytes, each of them @p fill.
    GuardedBuffer(std::size_t size, std::byte newFill);

    void* Data() { return memory.data() + kGuardSize; }
    std::span<const std::byte> Bytes() const;

    /// Whether all bytes still have the fill value.
    bool IsUntouched() const;

    /// What has been written outside of the buffer; empty when nothing was.
    std::string Damage() const;

    static constexpr std::byte kFill{0xA5};
    static constexpr std::byte kOtherFill{0x5A};

  private:
    // A multiple of the alignment of every record, so that the buffer is aligned.
    static constexpr std::size_t kGuardSize = 1024;

    std::byte fill;
    std::vector<std::byte> memory;
};

}  // namespace conformance
