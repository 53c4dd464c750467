// What a text of a recorded device or scenario is for, which its place tells.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tools/kestal_record/identity_form.h"

/// A text of a field, or a block of bytes with texts at places that must not move.
enum class TextLayout { text, block };

enum class TextUse {
    identity,   ///< the place is that of an identity
    structure,  ///< what programs know, such as a message id, or the name of an operator
    version,    ///< may have the form of an address, but is none
    other,
};

struct TextPlace {
    TextUse use = TextUse::other;
    IdentityKind kind = IdentityKind::other;  ///< of an identity
    bool mayHoldMac = false;                  ///< MAC addresses without separators
};

/// The place of @p text at @p path, as VisitTexts gives it.
TextPlace PlaceOf(const std::vector<std::string>& path, const std::string& text);

/// Whether @p text is too short to be found in other texts, or is the value of a switch.
bool IsCommon(const std::string& text);
