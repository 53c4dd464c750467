#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "include/ctpp2/CDT.hpp"

namespace CTPP {

/// The members of a hash in byte order of their keys. A member stays where it is in memory until it
/// is erased; positions end with the next insertion or erasure.
class CDT::Members {
  public:
    using Position = Member* const*;

    Members() noexcept { AddSlots(first); }
    Members(const Members&) = delete;
    Members& operator=(const Members&) = delete;
    ~Members();

    std::size_t Size() const { return sorted.size(); }
    Position Begin() const { return sorted.data(); }
    Position End() const { return sorted.data() + sorted.size(); }

    /// The value, or null if there is no such member.
    CDT* Find(std::string_view key) const;
    /// The value; a member that is missing is inserted as UNDEF. If there is no memory for it,
    /// nothing changes.
    CDT& FindOrInsert(std::string_view key);
    CDT& FindOrInsert(const LiteralKey& key);
    /// Inserts a member whose key comes after all others.
    CDT& InsertLast(const Key& key);
    /// Removes the member and tells whether it was there.
    bool Erase(std::string_view key);

  private:
    /// Room for one member. While it holds none, it holds the pointer to the next free slot.
    union Slot {
        Slot() noexcept : next(nullptr) {}
        Slot(const Slot&) = delete;
        Slot& operator=(const Slot&) = delete;
        ~Slot() {}

        Slot* next;
        Member member;
    };

    /// All blocks have the same size, so that the allocator can reuse a freed block for the next
    /// one. An element of the notification list has about as many members as fit into one.
    struct Block {
        std::array<Slot, 6> slots;
        std::unique_ptr<Block> next;
    };

    struct Place {
        std::size_t index;
        bool found;
    };

    /// Where the member is, or where it has to be inserted.
    Place Locate(const KeyText& key) const;
    /// Inserts a member, whose key @p key may be a literal.
    template <class AnyKey>
    CDT& Insert(std::size_t index, AnyKey&& key);
    /// Makes room for one more member.
    void Grow();
    void AddSlots(Block& block) noexcept;

    std::vector<Member*> sorted;
    Slot* spare = nullptr;
    Block first;
};

}  // namespace CTPP
