#include "include/ctpp2/CDT.hpp"

#include <array>
#include <stdexcept>
#include <type_traits>

#include "Branches.hpp"

namespace CTPP {
namespace {

std::string ToText(CCHAR_P value) {
    if (value == nullptr) {
        throw std::logic_error("CDT: null text");
    }
    return value;
}

}  // namespace

CDT::CDT() noexcept = default;

CDT::CDT(const eValType& type) {
    switch (type) {
        case INT_VAL:
            content = INT_64{0};
            break;
        case REAL_VAL:
            content = W_FLOAT{0};
            break;
        case POINTER_VAL:
            content = static_cast<void*>(nullptr);
            break;
        case STRING_VAL:
            content = Text{{}};
            break;
        case STRING_INT_VAL:
            content = Text{{}, INT_64{0}};
            break;
        case STRING_REAL_VAL:
            content = Text{{}, W_FLOAT{0}};
            break;
        case ARRAY_VAL:
            content = std::make_unique<Array>();
            break;
        case HASH_VAL:
            content = std::make_unique<Hash>();
            break;
        case UNDEF:
            break;
    }
}

CDT::CDT(const CDT& other) {
    Copies branches;
    CopyShallow(other, branches);
    while (!branches.empty()) {
        const auto [from, to] = branches.back();
        branches.pop_back();
        if (const Array* array = from->GetArray()) {
            auto copy = std::make_unique<Array>();
            for (const CDT& element : array->elements) {
                copy->elements.emplace_back().CopyShallow(element, branches);
            }
            to->content = std::move(copy);
        } else if (const Hash* hash = from->GetHash()) {
            auto copy = std::make_unique<Hash>();
            const Members& members = hash->members;
            for (auto position = members.Begin(); position != members.End(); ++position) {
                const Member& member = **position;
                copy->members.InsertLast(member.first).CopyShallow(member.second, branches);
            }
            to->content = std::move(copy);
        }
    }
}

/// Copies the value if it is not an array or a hash; those are added to @p branches for the caller,
/// which copies their members without recursion.
void CDT::CopyShallow(const CDT& other, Copies& branches) {
    std::visit(
        [&](const auto& value) {
            using Alternative = std::decay_t<decltype(value)>;
            if constexpr (std::is_copy_constructible_v<Alternative>) {
                content = Value(value);
            } else {
                branches.emplace_back(&other, this);
            }
        },
        other.content);
}

CDT::CDT(CDT&& other) noexcept : content(std::exchange(other.content, Value{})) {}
CDT::CDT(INT_64 value) : content(value) {}
CDT::CDT(UINT_64 value) : content(static_cast<INT_64>(value)) {}
CDT::CDT(INT_32 value) : content(INT_64{value}) {}
CDT::CDT(UINT_32 value) : content(INT_64{value}) {}
CDT::CDT(W_FLOAT value) : content(value) {}
CDT::CDT(const std::string& value) : content(Text{std::string(value)}) {}
CDT::CDT(std::string&& value) : content(Text{std::move(value)}) {}
CDT::CDT(CCHAR_P value) : content(Text{ToText(value)}) {}
CDT::CDT(void* value) : content(value) {}

CDT::~CDT() {
    if (!HasBranch()) {
        return;
    }
    std::unique_ptr<Branch> chain;
    Unhook(chain);
    while (chain) {
        const std::unique_ptr<Branch> branch = std::move(chain);
        chain = std::move(branch->next);
        branch->UnhookMembers(chain);
    }
}

/// Moves the branch of an array or a hash to the front of the chain. Afterwards, the value may only
/// be destroyed.
void CDT::Unhook(std::unique_ptr<Branch>& chain) noexcept {
    std::unique_ptr<Branch> branch;
    if (ArrayPtr* array = std::get_if<ArrayPtr>(&content)) {
        branch = std::move(*array);
    } else if (HashPtr* hash = std::get_if<HashPtr>(&content)) {
        branch = std::move(*hash);
    }
    if (branch) {
        branch->next = std::move(chain);
        chain = std::move(branch);
    }
}

CDT& CDT::operator=(const CDT& other) {
    CDT copy(other);
    Swap(copy);
    return *this;
}

CDT& CDT::operator=(CDT&& other) noexcept {
    CDT taken(std::move(other));
    Swap(taken);
    return *this;
}

CDT& CDT::operator=(INT_64 value) {
    content.emplace<INT_64>(value);
    return *this;
}

CDT& CDT::operator=(UINT_64 value) {
    return *this = static_cast<INT_64>(value);
}
CDT& CDT::operator=(INT_32 value) {
    return *this = INT_64{value};
}
CDT& CDT::operator=(UINT_32 value) {
    return *this = INT_64{value};
}

CDT& CDT::operator=(W_FLOAT value) {
    content.emplace<W_FLOAT>(value);
    return *this;
}

CDT& CDT::operator=(const std::string& value) {
    return *this = std::string(value);
}

CDT& CDT::operator=(std::string&& value) {
    content.emplace<Text>(std::move(value));
    return *this;
}

CDT& CDT::operator=(CCHAR_P value) {
    content.emplace<Text>(Text{ToText(value)});
    return *this;
}

CDT& CDT::operator=(void* value) {
    content.emplace<void*>(value);
    return *this;
}

void CDT::Swap(CDT& other) noexcept {
    content.swap(other.content);
}

const CDT& CDT::Undefined() {
    static const CDT undefined;
    return undefined;
}

CDT::eValType CDT::GetType() const {
    if (const Text* text = std::get_if<Text>(&content)) {
        constexpr std::array kTypes{STRING_VAL, STRING_INT_VAL, STRING_REAL_VAL};
        return kTypes[text->number.index()];
    }
    constexpr std::array kTypes{UNDEF,      INT_VAL,   REAL_VAL, POINTER_VAL,
                                STRING_VAL, ARRAY_VAL, HASH_VAL};
    return kTypes[content.index()];
}

CCHAR_P CDT::PrintableType() const {
    return PrintableType(GetType());
}

CCHAR_P CDT::PrintableType(eValType type) {
    switch (type) {
        case INT_VAL:
            return "INTEGER";
        case REAL_VAL:
            return "REAL";
        case POINTER_VAL:
            return "POINTER";
        case STRING_VAL:
            return "STRING";
        case STRING_INT_VAL:
            return "STRING+INT";
        case STRING_REAL_VAL:
            return "STRING+REAL";
        case ARRAY_VAL:
            return "ARRAY";
        case HASH_VAL:
            return "HASH";
        case UNDEF:
            break;
    }
    return "*UNDEF*";
}

UINT_32 CDT::Size() const {
    std::size_t size = 0;
    if (const Text* text = std::get_if<Text>(&content)) {
        size = text->value.size();
    } else if (const Array* array = GetArray()) {
        size = array->elements.size();
    } else if (const Hash* hash = GetHash()) {
        size = hash->members.Size();
    }
    return static_cast<UINT_32>(size);
}

bool CDT::Nonzero() const {
    if (const INT_64* integer = std::get_if<INT_64>(&content)) {
        return *integer != 0;
    }
    if (const W_FLOAT* real = std::get_if<W_FLOAT>(&content)) {
        return *real != 0;
    }
    if (void* const* pointer = std::get_if<void*>(&content)) {
        return *pointer != nullptr;
    }
    return Size() > 0;
}

}  // namespace CTPP
