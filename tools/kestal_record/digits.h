// Digits in texts.
#pragma once

#include <algorithm>
#include <cctype>
#include <iterator>
#include <string>

inline bool IsDigit(char character) {
    return std::isdigit(static_cast<unsigned char>(character)) != 0;
}

inline bool IsHexDigit(char character) {
    return std::isxdigit(static_cast<unsigned char>(character)) != 0;
}

template <typename Is>
std::string Only(const std::string& text, Is is) {
    std::string result;
    std::copy_if(text.begin(), text.end(), std::back_inserter(result), is);
    return result;
}

/// The digit with which the check of @p digits succeeds when it follows them (Luhn).
inline char CheckDigit(const std::string& digits) {
    int sum = 0;
    bool isDoubled = true;
    for (auto digit = digits.rbegin(); digit != digits.rend(); ++digit) {
        const int value = (*digit - '0') * (isDoubled ? 2 : 1);
        sum += value / 10 + value % 10;
        isDoubled = !isDoubled;
    }
    return static_cast<char>('0' + (10 - sum % 10) % 10);
}
