// The texts behind message identifiers.
#pragma once

#include "support/export.h"

#include <span>
#include <string>
#include <string_view>

namespace str {

/// One row of the message table.
struct Message {
    unsigned id;            ///< its number
    std::wstring_view text; ///< with "%1" to "%5" where the arguments stand and "%%" for a percent sign
};

/// All messages, ordered by identifier. Texts are distinct, since failures are told apart by them.
ZO_API std::span<Message const> Messages();

/// The text of message `id`, arguments not filled in; "Message <id>" for an identifier without a text.
/// Cost: a bisection of the table.
ZO_API std::wstring load_wstring(unsigned id);

} // namespace str
