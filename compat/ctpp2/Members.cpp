#include "Members.hpp"

#include <algorithm>
#include <type_traits>
#include <utility>

namespace CTPP {

CDT::Key::Key(std::string_view other)
    : copy(std::make_unique_for_overwrite<char[]>(other.size())),
      text(std::string_view(copy.get(), other.copy(copy.get(), other.size()))) {}

CDT::Key::Key(const Key& other) : text(other.text), plain(other.plain) {
    if (other.copy) {
        *this = Key(other.text);
    }
}

CDT::Members::~Members() {
    for (Member* member : sorted) {
        std::destroy_at(member);
    }
    // One after another, because each destructor would otherwise call the next one and a long list
    // would overflow the stack.
    for (std::unique_ptr<Block> block = std::move(first.next); block;) {
        block = std::move(block->next);
    }
}

/// Inlined, because every member of an answer is searched here.
[[gnu::always_inline]] inline CDT::Members::Place CDT::Members::Locate(const KeyText& key) const {
    const Position members = Begin();
    std::size_t low = 0;
    std::size_t high = sorted.size();
    while (low < high) {
        const std::size_t middle = (low + high) / 2;
        if (members[middle]->first.Text() < key) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    return {.index = low, .found = low < sorted.size() && members[low]->first.Text() == key};
}

/// Whatever may throw comes first, so that a failed insertion changes nothing.
template <class AnyKey>
CDT& CDT::Members::Insert(std::size_t index, AnyKey&& key) {
    static_assert(std::is_nothrow_constructible_v<Member, AnyKey>);
    if (spare == nullptr || sorted.size() == sorted.capacity()) {
        Grow();
    }
    Slot* const slot = spare;
    spare = slot->next;
    Member* const member = std::construct_at(&slot->member, std::forward<AnyKey>(key));
    sorted.insert(sorted.begin() + static_cast<std::ptrdiff_t>(index), member);
    return member->second;
}

CDT* CDT::Members::Find(std::string_view key) const {
    const Place place = Locate(KeyText(key));
    return place.found ? &sorted[place.index]->second : nullptr;
}

CDT& CDT::Members::FindOrInsert(std::string_view key) {
    const Place place = Locate(KeyText(key));
    return place.found ? sorted[place.index]->second : Insert(place.index, Key(key));
}

CDT& CDT::Members::FindOrInsert(const LiteralKey& key) {
    const Place place = Locate(key.text);
    return place.found ? sorted[place.index]->second : Insert(place.index, key);
}

CDT& CDT::Members::InsertLast(const Key& key) {
    return Insert(sorted.size(), Key(key));
}

bool CDT::Members::Erase(std::string_view key) {
    const Place place = Locate(KeyText(key));
    if (place.found) {
        Member* const member = sorted[place.index];
        sorted.erase(sorted.begin() + static_cast<std::ptrdiff_t>(place.index));
        std::destroy_at(member);
        // A member of a union has the address of the union.
        Slot* const slot = static_cast<Slot*>(static_cast<void*>(member));
        slot->next = spare;
        spare = slot;
    }
    return place.found;
}

void CDT::Members::Grow() {
    if (sorted.size() == sorted.capacity()) {
        sorted.reserve(std::max(first.slots.size(), 4 * sorted.size()));
    }
    if (spare == nullptr) {
        auto block = std::make_unique<Block>();
        AddSlots(*block);
        block->next = std::move(first.next);
        first.next = std::move(block);
    }
}

void CDT::Members::AddSlots(Block& block) noexcept {
    // The free list begins with the slot that was added last, so the slots are added in reverse:
    // then members that are inserted one after another are in the same order in memory.
    for (auto slot = block.slots.rbegin(); slot != block.slots.rend(); ++slot) {
        slot->next = spare;
        spare = &*slot;
    }
}

}  // namespace CTPP
