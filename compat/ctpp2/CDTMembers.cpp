#include "Branches.hpp"

namespace CTPP {
namespace {

/// Far above any real array; a negative index, converted to unsigned, lies beyond it.
constexpr UINT_32 kMaxElements = 1U << 24;

/// The array or the hash that a value must be.
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

/// The array of this value, which may be UNDEF.
CDT::Array& CDT::MakeArray() {
    if (std::holds_alternative<std::monostate>(content)) {
        content = std::make_unique<Array>();
    }
    return Require<ArrayPtr>(content);
}

/// The hash of this value, which may be UNDEF.
CDT::Hash& CDT::MakeHash() {
    if (std::holds_alternative<std::monostate>(content)) {
        content = std::make_unique<Hash>();
    }
    return Require<HashPtr>(content);
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

CDT& CDT::operator[](const std::string& key) {
    return MakeHash().members[key];
}

CDT& CDT::operator[](std::string&& key) {
    return MakeHash().members[std::move(key)];
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
    const auto member = hash->members.find(key);
    exists = member != hash->members.end();
    return exists ? member->second : Undefined();
}

CDT& CDT::At(UINT_32 index) {
    auto& elements = Require<ArrayPtr>(content).elements;
    if (index >= elements.size()) {
        throw CDTRangeException();
    }
    return elements[index];
}

CDT& CDT::At(const std::string& key) {
    auto& members = Require<HashPtr>(content).members;
    const auto member = members.find(key);
    if (member == members.end()) {
        throw CDTRangeException();
    }
    return member->second;
}

bool CDT::Exists(UINT_32 index) const {
    return index < Require<ArrayPtr>(content).elements.size();
}

bool CDT::Exists(const std::string& key) const {
    return Require<HashPtr>(content).members.contains(key);
}

bool CDT::Erase(const std::string& key) {
    return Require<HashPtr>(content).members.erase(key) > 0;
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
    return Iterator(Require<HashPtr>(content).members.begin());
}
CDT::Iterator CDT::End() {
    return Iterator(Require<HashPtr>(content).members.end());
}
CDT::ConstIterator CDT::Begin() const {
    return ConstIterator(Require<HashPtr>(content).members.begin());
}
CDT::ConstIterator CDT::End() const {
    return ConstIterator(Require<HashPtr>(content).members.end());
}

}  // namespace CTPP
