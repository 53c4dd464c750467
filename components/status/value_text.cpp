#include "components/status/value_text.h"

#include "components/status/status_texts.h"

int FindText(std::span<const ValueText> table, std::int32_t value, std::string& text) {
    for (const ValueText& entry : table) {
        if (entry.value == value) {
            text = entry.text;
            return kStatusTextSet;
        }
    }
    return kStatusTextNone;
}
