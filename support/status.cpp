#include "support/status.h"

#include "support/messages.h"
#include "support/text.h"

namespace htl {
namespace {

constexpr unsigned internalError = 90004;
constexpr unsigned syntaxError = 90005;
constexpr unsigned invalidCharacter = 90006;
constexpr unsigned outOfRange = 90007;

} // namespace

constinit status const status::Success;

std::wstring status::detail::as_wstring() const {
    std::wstring text;
    text.reserve(message.size());
    for (std::size_t i = 0; i < message.size(); ++i) {
        wchar_t const c = message[i];
        wchar_t const next = c == L'%' && i + 1 < message.size() ? message[i + 1] : L'\0';
        if (next == L'%') {
            text += c;
            ++i;
        } else if (next >= L'1' && next <= L'5') {
            text += arguments[static_cast<std::size_t>(next - L'1')];
            ++i;
        } else {
            text += c;
        }
    }
    return text;
}

status::status(unsigned id, List&& arguments) : status(new detail) {
    pointer->message = str::load_wstring(id);
    pointer->arguments = std::move(arguments.items);
}

status status::FromText(std::wstring const& text) {
    status result(new detail);
    result.pointer->message = text;
    str::replace_all(result.pointer->message, L"%", L"%%");
    return result;
}

status status::WithPlace(std::string source, std::int64_t position) const {
    if (!pointer) return {};
    status result(new detail);
    result.pointer->message = pointer->message;
    result.pointer->arguments = pointer->arguments;
    result.pointer->source = std::move(source);
    result.pointer->position = position;
    return result;
}

bool status::Is(unsigned id) const { return pointer && pointer->message == str::load_wstring(id); }

std::wstring status::AsWString() const { return pointer ? pointer->as_wstring() : std::wstring(); }

std::wstring status::AsText(std::string const& value) { return str::as_wstring(value); }

std::wstring status::AsText(char const* value) { return str::as_wstring(std::string(value)); }

void status::Delete(detail* object) noexcept { delete object; }

status_exception::status_exception(status const& cause, char const* file, unsigned line)
    : failure(cause.WithPlace(file, line)), text(str::as_cstring(failure.AsWString())) {
    if (!text.empty()) text += ' ';
    text.append("(").append(file).append(":").append(std::to_string(line)).append(")");
}

status_exception::~status_exception() = default;

char const* status_exception::what() const noexcept { return text.c_str(); }

status Convert_error_status::InvalidCharStatus(std::wstring const& text, std::wstring const& kind) {
    return status(invalidCharacter, text, kind);
}

status Convert_error_status::OutOfRangeStatus(std::wstring const& text, std::wstring const& kind) {
    return status(outOfRange, text, kind);
}

// Never freed, so that statics of other modules may still convert while the process ends.
std::wstring const& Convert_error_status::WholeNumberString() {
    static auto const& word = *new std::wstring(L"whole number");
    return word;
}

std::wstring const& Convert_error_status::FloatingPointString() {
    static auto const& word = *new std::wstring(L"number");
    return word;
}

} // namespace htl

namespace HznError {

htl::status compound(htl::status const& head, std::vector<htl::status> const& parts) {
    std::wstring text = head.AsWString();
    bool isHeadAlone = true;
    bool isFirstLine = !head.IsError();
    for (htl::status const& part : parts) {
        if (!part.IsError()) continue;
        if (!isFirstLine) text += L'\n';
        text += part.AsWString();
        isFirstLine = false;
        isHeadAlone = false;
    }
    // The head as it is keeps the identifier that it can be told by.
    if (isHeadAlone) return head;
    htl::status result = htl::status::FromText(text);
    if (!head.IsError()) return result;
    return result.WithPlace(head.Detail()->source, head.Detail()->position);
}

htl::status internal(char const* file, char const* function, unsigned line) {
    return htl::status(htl::internalError, function).WithPlace(file, line);
}

htl::status syntax(std::wstring const& text) { return htl::status(htl::syntaxError, text); }

} // namespace HznError
