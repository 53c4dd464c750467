#include "framework/value_text.h"

int FindText(std::span<const ValueText> table, std::int32_t value, std::string& text) {
    for (const ValueText& entry : table) {
        if (entry.value == value) {
            text = entry.text;
            return kTextSet;
        }
    }
    return kTextNone;
}
