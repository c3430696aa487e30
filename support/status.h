// The result of every operation that can fail.
//
// A status is one pointer, null for success. A failure holds the text that its identifier stands for and the
// arguments of that text; the identifier itself is not kept.
#pragma once

#include "support/export.h"
#include "support/int64.h"

#include <array>
#include <concepts>
#include <cstdint>
#include <exception>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace htl {

/// Success or one failure. A value type of one word; copying counts a shared detail.
///
/// Threads: the count is plain, so a failure and its copies stay on one thread at a time.
class ZO_API_NODISCARD status {
public:
    /// What a failure carries.
    class ZO_API detail {
    public:
        /// The message with its arguments filled in: "%1" to "%5" by position in one pass, "%%" is "%".
        std::wstring as_wstring() const;

    private:
        friend class status;
        std::int32_t count = 0;

    public:
        std::wstring message;                  ///< the text loaded for the identifier, arguments not yet filled in
        std::array<std::wstring, 5> arguments; ///< by position; those not given are empty
        std::string source;                    ///< source file of a broken invariant, empty otherwise
        std::int64_t position = -1;            ///< line in `source`, -1 if there is none
    };

    /// The success value.
    static status const Success;

    constexpr status() noexcept = default;

    /// The failure of identifier `id` with up to five arguments: strings (narrow ones are UTF-8) or integers (in
    /// decimal). An identifier without a text gives "Message <id>".
    template <class... A>
    requires(sizeof...(A) <= 5) explicit status(unsigned id, A const&... arguments)
        : status(id, List{AsText(arguments)...}) {}

    status(status const& other) noexcept : pointer(other.pointer) { AddRef(pointer); }
    status(status&& other) noexcept : pointer(std::exchange(other.pointer, nullptr)) {}
    // NOLINTNEXTLINE(bugprone-unhandled-self-assignment): one more is counted before one less
    status& operator=(status const& other) noexcept {
        // The new detail first: the old one may be its last owner, or the same.
        AddRef(other.pointer);
        Release(std::exchange(pointer, other.pointer));
        return *this;
    }
    status& operator=(status&& other) noexcept {
        std::swap(pointer, other.pointer);
        return *this;
    }
    ~status() { Release(pointer); }

    /// A failure whose text is `text` as it stands; a "%" in it is no placeholder.
    static status FromText(std::wstring const& text);
    /// The same failure with the place of its origin attached. Success stays success.
    status WithPlace(std::string source, std::int64_t position) const;

    /// Whether this is a failure.
    bool IsError() const noexcept { return pointer != nullptr; }
    /// Whether this is the failure of identifier `id`, told by the message text. Success is no identifier.
    bool Is(unsigned id) const;
    /// The text for people; empty for success.
    std::wstring AsWString() const;
    /// The detail of a failure, null for success. Valid as long as some copy of the status lives.
    detail const* Detail() const noexcept { return pointer; }

private:
    struct List {
        std::array<std::wstring, 5> items;
    };
    status(unsigned id, List&& arguments);
    explicit status(detail* fresh) noexcept : pointer(fresh) { AddRef(pointer); }

    static std::wstring AsText(std::wstring const& value) { return value; }
    static std::wstring AsText(wchar_t const* value) { return value; }
    static std::wstring AsText(std::string const& value);
    static std::wstring AsText(char const* value);
    template <std::integral I>
    static std::wstring AsText(I value) {
        return std::to_wstring(value);
    }

    static void AddRef(detail* object) noexcept {
        if (object) ++object->count;
    }
    static void Release(detail* object) noexcept {
        if (object && object->count-- < 2) Delete(object);
    }
    static void Delete(detail* object) noexcept;

    detail* pointer = nullptr;
};

/// Carries a failure across code that has no status result. Thrown for broken invariants only.
class ZO_API status_exception : public std::exception {
public:
    /// `file` and `line` become the source and position of the failure.
    status_exception(status const& failure, char const* file, unsigned line);
    ~status_exception() override;

    /// The failure's text in UTF-8, with its place.
    char const* what() const noexcept override;
    htl::status const& Status() const noexcept { return failure; }

private:
    status failure;
    std::string text;
};

/// Failures of conversions between text and numbers.
struct ZO_API Convert_error_status {
    /// `text` holds a character that does not belong to a `kind` ("whole number", "number").
    static status InvalidCharStatus(std::wstring const& text, std::wstring const& kind);
    /// `text` is a `kind` that the type can't hold.
    static status OutOfRangeStatus(std::wstring const& text, std::wstring const& kind);
    /// The word for a whole number in those messages.
    static std::wstring const& WholeNumberString();
    /// The word for a floating point number in those messages.
    static std::wstring const& FloatingPointString();
};

} // namespace htl

namespace HznError {

/// One failure that carries `head` and the failures among `parts`, a line each, in order. No failure among all of them
/// gives success; a head of success contributes nothing. Source and position are those of the head.
ZO_API htl::status compound(htl::status const& head, std::vector<htl::status> const& parts);
/// A broken invariant in `function`, with its source place.
ZO_API htl::status internal(char const* file, char const* function, unsigned line);
/// A text that can't be parsed.
ZO_API htl::status syntax(std::wstring const& text);

} // namespace HznError
