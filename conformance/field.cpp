#include "conformance/field.h"

#include <algorithm>

#include "conformance/report.h"

namespace conformance {

namespace {

/// The number in @p bytes, in the byte order of the processor.
template <typename Number>
Number NumberIn(std::span<const std::byte> bytes) {
    Number number{};
    std::memcpy(&number, bytes.data(), sizeof(number));
    return number;
}

std::uint64_t Unsigned(std::span<const std::byte> bytes) {
    switch (bytes.size()) {
        case sizeof(std::uint8_t):
            return NumberIn<std::uint8_t>(bytes);
        case sizeof(std::uint32_t):
            return NumberIn<std::uint32_t>(bytes);
        default:
            return NumberIn<std::uint64_t>(bytes);
    }
}

std::int64_t Signed(std::span<const std::byte> bytes) {
    return NumberIn<std::int32_t>(bytes);
}

bool IsText(Kind kind) {
    return kind == Kind::kText || kind == Kind::kWholeText;
}

std::string TextIn(std::span<const std::byte> bytes) {
    std::string text;
    for (const std::byte byte : bytes) {
        if (byte == std::byte{0}) {
            break;
        }
        text += static_cast<char>(byte);
    }
    return text;
}

std::string NumberText(Kind kind, std::span<const std::byte> bytes) {
    return kind == Kind::kSigned ? std::to_string(Signed(bytes)) : std::to_string(Unsigned(bytes));
}

bool IsWithin(const Bounds& bounds, Kind kind, std::span<const std::byte> bytes) {
    if (kind == Kind::kSigned) {
        return Signed(bytes) >= bounds.first && Signed(bytes) <= bounds.last;
    }
    return Unsigned(bytes) >= static_cast<std::uint64_t>(bounds.first) &&
           Unsigned(bytes) <= static_cast<std::uint64_t>(bounds.last);
}

}  // namespace

std::string Field::Value(std::span<const std::byte> record) const {
    const auto bytes = In(record);
    return name + " " + (IsText(kind) ? Quoted(TextIn(bytes)) : NumberText(kind, bytes));
}

std::string Field::Problem(std::span<const std::byte> record) const {
    const auto bytes = In(record);
    if (kind == Kind::kText && std::find(bytes.begin(), bytes.end(), std::byte{0}) == bytes.end()) {
        return "the text " + name + " is not terminated";
    }
    if (bounds && !IsWithin(*bounds, kind, bytes)) {
        return name + " is " + NumberText(kind, bytes) + ", which is not within " +
               std::to_string(bounds->first) + " to " + std::to_string(bounds->last);
    }
    return "";
}

bool Field::IsUnwritten(std::span<const std::byte> record, std::byte fill) const {
    const auto bytes = In(record);
    // A text counts as written if its first byte has been written.
    const auto looked = IsText(kind) ? bytes.first(1) : bytes;
    return std::all_of(looked.begin(), looked.end(), [&](std::byte byte) { return byte == fill; });
}

std::string Values(const Fields& fields, std::span<const std::byte> record) {
    std::string text;
    for (const Field& field : fields) {
        text += (text.empty() ? "" : ", ") + field.Value(record);
    }
    return text;
}

}  // namespace conformance
