#pragma once

#include <deque>
#include <memory>

#include "Members.hpp"
#include "include/ctpp2/CDT.hpp"

namespace CTPP {

/// The members of an array or a hash. To destroy a tree, its branches are moved to a linked list
/// (the chain) and destroyed one after another, because recursion would overflow the stack for a
/// very deep tree.
struct CDT::Branch {
    Branch() = default;
    Branch(const Branch&) = delete;
    Branch& operator=(const Branch&) = delete;
    virtual ~Branch() = default;
    /// Moves the branches of all members to the front of the chain.
    virtual void UnhookMembers(std::unique_ptr<Branch>& chain) noexcept = 0;

    std::unique_ptr<Branch> next;
};

/// A deque, because references to elements outlive its growth (`c[9] = c[0]`).
struct CDT::Array : Branch {
    void UnhookMembers(std::unique_ptr<Branch>& chain) noexcept override {
        for (CDT& element : elements) {
            element.Unhook(chain);
        }
    }

    std::deque<CDT> elements;
};

struct CDT::Hash : Branch {
    void UnhookMembers(std::unique_ptr<Branch>& chain) noexcept override {
        for (auto position = members.Begin(); position != members.End(); ++position) {
            (*position)->second.Unhook(chain);
        }
    }

    Members members;
};

}  // namespace CTPP
