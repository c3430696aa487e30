#include "support/messages.h"

#include <algorithm>
#include <array>

namespace str {
namespace {

constexpr std::array messages = {
    Message{21654, L"The array cannot be resized while its elements are in use."},
    Message{21655, L"Duplicate name."},
    Message{21656, L"Unable to assign \"%2\" to %1: %3"},
    Message{21658, L"%1: invalid value \"%3\" of attribute \"%2\"."},
    Message{21659, L"Invalid name: %1"},
    Message{21660, L"Not found: %1"},
    Message{21661, L"Not supported: %1"},
    Message{21662, L"%1 is not between %2 and %3."},
    Message{21663, L"Not recognized: %1"},
    Message{26502, L"The clipboard contents cannot be pasted here."},
    Message{27568, L"The link refers to a record of another group."},
    Message{29130, L"%1 is not visible."},
    Message{90001, L"Cannot open %1: %2"},
    Message{90002, L"XML error in line %1, column %2: %3"},
    Message{90003, L"Cannot write %1: %2"},
    Message{90004, L"Internal error in %1"},
    Message{90005, L"The text {%1} can't be read."},
    Message{90006, L"{%1} can't be read as a %2."},
    Message{90007, L"{%1} is out of range for a %2."},
    Message{90008, L"XML error in line %1, column %2: a document type declaration is not accepted."},
    Message{90009, L"XML error in line %1, column %2: elements are nested deeper than %3."},
    Message{90010, L"The document cannot be written: %1"},
    Message{90011, L"{%1} is no file name: %2"},
    Message{90012, L"The text holds a character that no document can carry at position %1."},
    Message{90013, L"{%1} can be read as two numbers. Write \"%2\" for the decimal point and nothing between digits."},
    Message{90014, L"The clipboard contents were written under version %1, expected %2."},
    Message{90015, L"The clipboard contents name no version, expected %1."},
};

static_assert(std::ranges::is_sorted(messages, {}, &Message::id));

} // namespace

std::span<Message const> Messages() { return messages; }

std::wstring load_wstring(unsigned id) {
    auto const row = std::ranges::lower_bound(messages, id, {}, &Message::id);
    if (row != messages.end() && row->id == id) return std::wstring(row->text);
    return L"Message " + std::to_wstring(id);
}

} // namespace str
