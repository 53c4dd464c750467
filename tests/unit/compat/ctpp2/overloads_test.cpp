// Which argument types compile, and which type of value they lead to. The rules differ between 32
// and 64 bits.
#include <gtest/gtest.h>

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "to_json.h"

namespace {

using CTPP::CDT;

enum Plain { kPlainSeven = 7 };
enum class Scoped { kOne };

template <class T>
concept Assignable = std::is_assignable_v<CDT&, T&>;

template <class T>
concept Constructs = std::is_convertible_v<T, CDT>;

template <class T>
concept Pushable = std::is_void_v<decltype(std::declval<CDT&>().PushBack(std::declval<T&>()))>;

template <class T>
concept Storable = Assignable<T> && Constructs<T> && Pushable<T>;

template <class T>
concept NotStorable = !Assignable<T> && !Constructs<T> && !Pushable<T>;

template <class T>
concept Index = requires(CDT data, const CDT constant, T index) {
    { data[index] } -> std::same_as<CDT&>;
    { constant[index] } -> std::same_as<const CDT&>;
    { data.At(index) } -> std::same_as<CDT&>;
    { constant.GetCDT(index) } -> std::same_as<const CDT&>;
    { constant.Exists(index) } -> std::same_as<bool>;
};

constexpr bool kLong64 = sizeof(long) == 8;

static_assert(Storable<bool> && Storable<char> && Storable<signed char> && Storable<unsigned char>);
static_assert(Storable<short> && Storable<unsigned short> && Storable<wchar_t> && Storable<Plain>);
static_assert(Storable<int> && Storable<unsigned> && Storable<float> && Storable<double>);
static_assert(Storable<std::int64_t> && Storable<std::uint64_t> && Storable<std::size_t> &&
              Storable<std::ptrdiff_t> && Storable<INT_64> && Storable<UINT_64>);
static_assert(kLong64 ? Storable<long> && Storable<unsigned long>
                      : NotStorable<long> && NotStorable<unsigned long>);
static_assert(kLong64 ? NotStorable<long long> && NotStorable<unsigned long long>
                      : Storable<long long> && Storable<unsigned long long>);
static_assert(NotStorable<long double> && NotStorable<Scoped> && NotStorable<std::string_view>);
static_assert(Storable<std::string> && Storable<const char*> && Storable<char*>);
static_assert(Storable<void*> && Storable<int*> && Storable<unsigned char*>);
static_assert(NotStorable<const void*> && NotStorable<const int*> &&
              NotStorable<const unsigned char*>);
static_assert(!Assignable<std::nullptr_t> && !Constructs<std::nullptr_t>);
static_assert(Pushable<std::nullptr_t>);
static_assert(Storable<CDT::eValType> && Storable<CDT>);

static_assert(Index<bool> && Index<char> && Index<int> && Index<unsigned> && Index<long> &&
              Index<long long> && Index<double>);
static_assert(Index<const char*> && Index<std::string>);
// Since C++23, std::string cannot be constructed from a null pointer literal.
static_assert(Index<std::nullptr_t> == std::is_constructible_v<std::string, std::nullptr_t>);
static_assert(!Index<Scoped> && !Index<std::string_view> && !Index<void*>);

static_assert(!std::is_convertible_v<CDT, bool> && !std::is_convertible_v<CDT, int> &&
              !std::is_convertible_v<CDT, std::string> && !std::is_constructible_v<bool, CDT>);

static_assert(std::is_same_v<decltype(std::declval<const CDT&>().GetInt()), INT_64>);
static_assert(std::is_same_v<decltype(std::declval<const CDT&>().GetUInt()), UINT_64>);
static_assert(std::is_same_v<decltype(std::declval<const CDT&>().GetFloat()), W_FLOAT>);
static_assert(std::is_same_v<decltype(std::declval<const CDT&>().GetString()), std::string>);
static_assert(std::is_same_v<decltype(std::declval<const CDT&>().GetType()), CDT::eValType>);
static_assert(std::is_same_v<decltype(std::declval<const CDT&>().Size()), UINT_32>);
static_assert(std::is_same_v<INT_64, std::int64_t> && std::is_same_v<UINT_64, std::uint64_t>);
static_assert(std::is_same_v<W_FLOAT, double> && std::is_same_v<CCHAR_P, const char*>);
static_assert(std::is_nothrow_move_constructible_v<CDT> && std::is_nothrow_move_assignable_v<CDT>);

/// Stores the value in every way and expects the same type and JSON each time.
template <class T>
void ExpectStored(const T& value, CDT::eValType type, const std::string& json) {
    const CDT constructed(value);
    CDT assigned;
    assigned = value;
    CDT array;
    array.PushBack(value);
    EXPECT_EQ(constructed.GetType(), type);
    EXPECT_EQ(assigned.GetType(), type);
    EXPECT_EQ(array[0].GetType(), type);
    EXPECT_EQ(ToJSON(constructed), json);
    EXPECT_EQ(ToJSON(assigned), json);
    EXPECT_EQ(ToJSON(array), "[" + json + "]");
}

TEST(CDTOverloads, EveryIntegerTypeIsAnInteger) {
    ExpectStored(true, CDT::INT_VAL, "1");
    ExpectStored(false, CDT::INT_VAL, "0");
    ExpectStored('A', CDT::INT_VAL, "65");
    ExpectStored(std::uint8_t{200}, CDT::INT_VAL, "200");
    ExpectStored(std::int8_t{-5}, CDT::INT_VAL, "-5");
    ExpectStored(short{-300}, CDT::INT_VAL, "-300");
    ExpectStored(L'A', CDT::INT_VAL, "65");
    ExpectStored(kPlainSeven, CDT::INT_VAL, "7");
    ExpectStored(0, CDT::INT_VAL, "0");
    ExpectStored(4294967295U, CDT::INT_VAL, "4294967295");
    ExpectStored(INT_64{INT64_MIN}, CDT::INT_VAL, "-9223372036854775808");
    ExpectStored(UINT_64{INT64_MAX}, CDT::INT_VAL, "9223372036854775807");
    ExpectStored(std::size_t{7}, CDT::INT_VAL, "7");
}

TEST(CDTOverloads, FloatingPointIsReal) {
    ExpectStored(0.5F, CDT::REAL_VAL, "0.5");
    ExpectStored(2.5, CDT::REAL_VAL, "2.5");
}

TEST(CDTOverloads, TextIsAString) {
    std::string text = "ab";
    ExpectStored(text, CDT::STRING_VAL, "\"ab\"");
    ExpectStored(text.data(), CDT::STRING_VAL, "\"ab\"");
    ExpectStored(text.c_str(), CDT::STRING_VAL, "\"ab\"");
}

TEST(CDTOverloads, PointersAreSilentlyPointers) {
    int number = 0;
    unsigned char byte = 0;
    ExpectStored(&number, CDT::POINTER_VAL, "null");
    ExpectStored(&byte, CDT::POINTER_VAL, "null");
    ExpectStored(static_cast<void*>(nullptr), CDT::POINTER_VAL, "null");
}

TEST(CDTOverloads, ATypeCodeMakesThatTypeOnlyWhenConstructed) {
    const CDT copied = CDT::HASH_VAL;
    CDT data(CDT::HASH_VAL);
    EXPECT_EQ(ToJSON(copied), "{}");
    EXPECT_EQ(ToJSON(data), "{}");
    data = CDT::HASH_VAL;
    EXPECT_EQ(ToJSON(data), "64");
    data = CDT(CDT::ARRAY_VAL);
    EXPECT_EQ(ToJSON(data), "[]");
    data.PushBack(CDT::HASH_VAL);
    EXPECT_EQ(ToJSON(data), "[64]");
}

TEST(CDTOverloads, ANullTextIsALogicErrorAndChangesNothing) {
    const char* null = nullptr;
    CDT data("old");
    CDT array(CDT::ARRAY_VAL);
    EXPECT_THROW(CDT{null}, std::logic_error);
    EXPECT_THROW(data = null, std::logic_error);
    EXPECT_THROW(array.PushBack(null), std::logic_error);
    EXPECT_THROW(array.PushBack(nullptr), std::logic_error);
    EXPECT_EQ(ToJSON(data), "\"old\"");
    EXPECT_EQ(ToJSON(array), "[]");
}

TEST(CDTOverloads, ArithmeticIndexesAreConverted) {
    CDT data;
    data[0] = 1;
    data['\2'] = 3;
    data[true] = 2;
    EXPECT_EQ(ToJSON(data), "[1,2,3]");
    EXPECT_TRUE(data.Exists('\2'));
    EXPECT_FALSE(data.Exists('a'));
}

}  // namespace
