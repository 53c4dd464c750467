#include "conformance/guarded_buffer.h"

#include <algorithm>
#include <cstdint>

#include "conformance/report.h"

namespace conformance {

namespace {

/// A value that differs from byte to byte, and from the values that calls are likely to write: 0
/// and the two fills.
std::byte GuardByte(std::size_t index) {
    return static_cast<std::byte>(0xC0 + index % 0x2F);
}

std::int64_t Changed(std::span<const std::byte> guard) {
    std::int64_t changed = 0;
    for (std::size_t index = 0; index < guard.size(); ++index) {
        changed += guard[index] == GuardByte(index) ? 0 : 1;
    }
    return changed;
}

void Fill(std::span<std::byte> guard) {
    for (std::size_t index = 0; index < guard.size(); ++index) {
        guard[index] = GuardByte(index);
    }
}

}  // namespace

GuardedBuffer::GuardedBuffer(std::size_t size, std::byte newFill)
    : fill(newFill), memory(size + 2 * kGuardSize, newFill) {
    const std::span all(memory);
    Fill(all.first(kGuardSize));
    Fill(all.last(kGuardSize));
}

std::span<const std::byte> GuardedBuffer::Bytes() const {
    return std::span(memory).subspan(kGuardSize, memory.size() - 2 * kGuardSize);
}

bool GuardedBuffer::IsUntouched() const {
    const auto bytes = Bytes();
    return std::all_of(bytes.begin(), bytes.end(), [&](std::byte byte) { return byte == fill; });
}

std::string GuardedBuffer::Damage() const {
    const std::span all(memory);
    const std::string size = std::to_string(Bytes().size());
    if (const std::int64_t changed = Changed(all.last(kGuardSize)); changed > 0) {
        return Counted(changed, "byte") + " behind the " + size + " of its buffer";
    }
    if (const std::int64_t changed = Changed(all.first(kGuardSize)); changed > 0) {
        return Counted(changed, "byte") + " before the " + size + " of its buffer";
    }
    return "";
}

}  // namespace conformance
