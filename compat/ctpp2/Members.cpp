#include "Members.hpp"

#include <algorithm>
#include <tuple>
#include <utility>

namespace CTPP {

CDT::Members::~Members() {
    for (Member* member : sorted) {
        std::destroy_at(member);
    }
    // One by one, so that their number costs no stack.
    for (std::unique_ptr<Block> block = std::move(first.next); block;) {
        block = std::move(block->next);
    }
}

CDT* CDT::Members::Find(std::string_view key) const {
    const Place place = Locate(key);
    return place.found ? &sorted[place.index]->second : nullptr;
}

CDT& CDT::Members::FindOrInsert(std::string_view key) {
    const Place place = Locate(key);
    return place.found ? sorted[place.index]->second : Insert(place.index, key);
}

CDT& CDT::Members::InsertLast(std::string_view key) {
    return Insert(sorted.size(), key);
}

bool CDT::Members::Erase(std::string_view key) {
    const Place place = Locate(key);
    if (place.found) {
        Member* const member = sorted[place.index];
        sorted.erase(sorted.begin() + static_cast<std::ptrdiff_t>(place.index));
        std::destroy_at(member);
        // A member of a union is where the union is.
        Slot* const slot = static_cast<Slot*>(static_cast<void*>(member));
        slot->next = spare;
        spare = slot;
    }
    return place.found;
}

CDT::Members::Place CDT::Members::Locate(std::string_view key) const {
    std::size_t low = 0;
    std::size_t high = sorted.size();
    while (low < high) {
        const std::size_t middle = (low + high) / 2;
        const int order = key.compare(sorted[middle]->first);
        if (order == 0) {
            return {.index = middle, .found = true};
        }
        if (order < 0) {
            high = middle;
        } else {
            low = middle + 1;
        }
    }
    return {.index = low, .found = false};
}

/// All that may fail comes first.
CDT& CDT::Members::Insert(std::size_t index, std::string_view key) {
    std::string name(key);
    if (sorted.size() == sorted.capacity()) {
        sorted.reserve(std::max(first.slots.size(), 2 * sorted.size()));
    }
    if (spare == nullptr) {
        auto block = std::make_unique<Block>();
        AddSlots(*block);
        block->next = std::move(first.next);
        first.next = std::move(block);
    }
    Slot* const slot = spare;
    spare = slot->next;
    Member* const member = std::construct_at(&slot->member, std::piecewise_construct,
                                             std::forward_as_tuple(std::move(name)), std::tuple());
    sorted.insert(sorted.begin() + static_cast<std::ptrdiff_t>(index), member);
    return member->second;
}

void CDT::Members::AddSlots(Block& block) noexcept {
    // The last one first, so that members lie in the order in which they come.
    for (auto slot = block.slots.rbegin(); slot != block.slots.rend(); ++slot) {
        slot->next = spare;
        spare = &*slot;
    }
}

}  // namespace CTPP
