#include "Branches.hpp"

namespace CTPP {
namespace {

/// Limit of an index, far above any real one. A negative index that was converted to unsigned
/// exceeds it.
constexpr UINT_32 kMaxElements = 1U << 24;

/// The array or the hash that @p value holds; throws CDTAccessException if it holds another type.
template <class BranchPtr, class Value>
auto& Require(Value& value) {
    if (auto* branch = std::get_if<BranchPtr>(&value)) {
        return **branch;
    }
    throw CDTAccessException();
}

}  // namespace

const CDT::Array* CDT::GetArray() const {
    const ArrayPtr* array = std::get_if<ArrayPtr>(&content);
    return array != nullptr ? array->get() : nullptr;
}

const CDT::Hash* CDT::GetHash() const {
    const HashPtr* hash = std::get_if<HashPtr>(&content);
    return hash != nullptr ? hash->get() : nullptr;
}

/// The array of this value; UNDEF becomes an empty array first.
CDT::Array& CDT::MakeArray() {
    if (std::holds_alternative<std::monostate>(content)) {
        content = std::make_unique<Array>();
    }
    return Require<ArrayPtr>(content);
}

/// The hash of this value; UNDEF becomes an empty hash first.
CDT::Hash& CDT::MakeHash() {
    if (std::holds_alternative<std::monostate>(content)) {
        content = std::make_unique<Hash>();
    }
    return Require<HashPtr>(content);
}

CDT& CDT::GetOrInsert(const std::string& key) {
    return MakeHash().members.FindOrInsert(std::string_view(key));
}

CDT& CDT::GetOrInsert(const LiteralKey& key) {
    return MakeHash().members.FindOrInsert(key);
}

CDT& CDT::operator[](UINT_32 index) {
    auto& elements = MakeArray().elements;
    if (index >= elements.size()) {
        if (index >= kMaxElements) {
            throw CDTRangeException();
        }
        elements.resize(index + 1);
    }
    return elements[index];
}

const CDT& CDT::operator[](UINT_32 index) const {
    const Array* array = GetArray();
    if (array == nullptr) {
        return Undefined();
    }
    if (index >= array->elements.size()) {
        throw CDTRangeException();
    }
    return array->elements[index];
}

const CDT& CDT::operator[](const std::string& key) const {
    bool exists = false;
    return GetExistedCDT(key, exists);
}

const CDT& CDT::GetCDT(UINT_32 index) const {
    return (*this)[index];
}
const CDT& CDT::GetCDT(const std::string& key) const {
    return (*this)[key];
}

const CDT& CDT::GetExistedCDT(const std::string& key, bool& exists) const {
    exists = false;
    const Hash* hash = GetHash();
    if (hash == nullptr) {
        return Undefined();
    }
    const CDT* member = hash->members.Find(key);
    exists = member != nullptr;
    return exists ? *member : Undefined();
}

CDT& CDT::At(UINT_32 index) {
    auto& elements = Require<ArrayPtr>(content).elements;
    if (index >= elements.size()) {
        throw CDTRangeException();
    }
    return elements[index];
}

CDT& CDT::At(const std::string& key) {
    CDT* member = Require<HashPtr>(content).members.Find(key);
    if (member == nullptr) {
        throw CDTRangeException();
    }
    return *member;
}

bool CDT::Exists(UINT_32 index) const {
    return index < Require<ArrayPtr>(content).elements.size();
}

bool CDT::Exists(const std::string& key) const {
    return Require<HashPtr>(content).members.Find(key) != nullptr;
}

bool CDT::Erase(const std::string& key) {
    return Require<HashPtr>(content).members.Erase(key);
}

void CDT::PushBack(INT_64 value) {
    PushBack(CDT(value));
}
void CDT::PushBack(UINT_64 value) {
    PushBack(CDT(value));
}
void CDT::PushBack(INT_32 value) {
    PushBack(CDT(value));
}
void CDT::PushBack(UINT_32 value) {
    PushBack(CDT(value));
}
void CDT::PushBack(W_FLOAT value) {
    PushBack(CDT(value));
}
void CDT::PushBack(const std::string& value) {
    PushBack(CDT(value));
}
void CDT::PushBack(CCHAR_P value) {
    PushBack(CDT(value));
}
void CDT::PushBack(const CDT& value) {
    PushBack(CDT(value));
}
void CDT::PushBack(CDT&& value) {
    CDT element(std::move(value));
    MakeArray().elements.push_back(std::move(element));
}

CDT::Iterator CDT::Begin() {
    return Iterator(Require<HashPtr>(content).members.Begin());
}
CDT::Iterator CDT::End() {
    return Iterator(Require<HashPtr>(content).members.End());
}
CDT::ConstIterator CDT::Begin() const {
    return ConstIterator(Require<HashPtr>(content).members.Begin());
}
CDT::ConstIterator CDT::End() const {
    return ConstIterator(Require<HashPtr>(content).members.End());
}

}  // namespace CTPP
