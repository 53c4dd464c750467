// Positions of virtual functions in the vtable, on which the component classes rely.
#pragma once

#include <array>
#include <cstddef>
#include <cstring>

#if defined(__x86_64__) || defined(__i386__)
/// Position of the virtual function @p member: in the C++ ABI of these machines a pointer to it
/// holds one more than the offset of its slot.
template <typename Member>
std::size_t Slot(Member member) {
    std::array<std::ptrdiff_t, 2> parts{};
    static_assert(sizeof(parts) == sizeof(member));
    std::memcpy(parts.data(), &member, sizeof(member));
    return static_cast<std::size_t>(parts[0] - 1) / sizeof(void*);
}
#endif

/// The first @p Count virtual functions of @p object, in slot order.
template <std::size_t Count, typename Object>
std::array<const void*, Count> VirtualFunctions(const Object& object) {
    const void* table = nullptr;
    std::memcpy(&table, static_cast<const void*>(&object), sizeof(table));
    std::array<const void*, Count> functions{};
    std::memcpy(functions.data(), table, sizeof(functions));
    return functions;
}
