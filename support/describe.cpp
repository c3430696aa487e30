#include "support/describe.h"

#include "support/number.h"
#include "support/shown.h"
#include "support/text.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <utility>

namespace meta {
namespace {

using htl::Convert_error_status;
using htl::Int64;
using htl::status;
using htl::UInt64;
using math::ParseResult;

// What stands for a missing value where a value passes as a number.
constexpr Int64 missingInt64 = std::numeric_limits<Int64>::max();
constexpr double missingDouble = std::numeric_limits<double>::max();
constexpr double twoTo63 = 9223372036854775808.0;

status InvalidWhole(std::wstring const& text) {
    return Convert_error_status::InvalidCharStatus(text, Convert_error_status::WholeNumberString());
}
status InvalidNumber(std::wstring const& text) {
    return Convert_error_status::InvalidCharStatus(text, Convert_error_status::FloatingPointString());
}
status WholeOutOfRange(std::wstring const& text) {
    return Convert_error_status::OutOfRangeStatus(text, Convert_error_status::WholeNumberString());
}
status NumberOutOfRange(std::wstring const& text) {
    return Convert_error_status::OutOfRangeStatus(text, Convert_error_status::FloatingPointString());
}

template <class N>
std::wstring NumberText(N value) {
    std::wstring text;
    math::AppendNumber(text, value);
    return text;
}

bool IsMissingDouble(double value) noexcept { return !std::isfinite(value) || value == missingDouble; }

/// Half away from zero by adding half of the sign: the value just below 0.5 becomes 1.
double Rounded(double value) noexcept { return std::trunc(value + (value < 0 ? -0.5 : 0.5)); }

/// A finite double as a whole number. False if it has none in the range.
bool ToInt64(double value, Int64& out) noexcept {
    double const whole = Rounded(value);
    if (!(whole >= -twoTo63 && whole < twoTo63)) return false;
    out = static_cast<Int64>(whole);
    return true;
}

/// Whether text counts as false: nothing, "N", "0", any number equal to zero, and every beginning of "false".
template <class View>
bool IsFalseText(View text) {
    using C = typename View::value_type;
    if (text.empty()) return true;
    if (text.size() == 1 && (text[0] == C('N') || text[0] == C('0'))) return true;
    if (double number = 1; math::ParseDouble(text, number) == ParseResult::Ok && number == 0) return true;
    return text.size() <= 5 && std::equal(text.begin(), text.end(), "false", [](C c, char letter) {
               return str::ToLowerAscii(static_cast<wchar_t>(c)) == static_cast<wchar_t>(letter);
           });
}

bool BeginsWord(std::wstring_view text, std::wstring_view word) noexcept {
    return text.size() <= word.size() &&
           std::equal(text.begin(), text.end(), word.begin(),
                      [](wchar_t c, wchar_t letter) { return str::ToLowerAscii(c) == letter; });
}

bool IsTrueText(std::wstring_view text) {
    double number = 0;
    ParseResult const read = math::ParseDouble(text, number);
    return read == ParseResult::OutOfRange || (read == ParseResult::Ok && number != 0) || BeginsWord(text, L"true") ||
           BeginsWord(text, L"yes");
}

std::wstring const& BoolText(bool value) {
    static std::wstring const& yes = *new std::wstring(L"true");
    static std::wstring const& no = *new std::wstring(L"false");
    return value ? yes : no;
}

// How numbers are shown to people and typed by them: formats 1 and 2, which are the same for numbers.

status IsAmbiguous(std::wstring const& text) {
    return status(90013, text, std::wstring(1, str::locale::native().DecimalPoint()));
}

/// A typed number with what it needs of its node.
struct Typed {
    impl::TypedNumber number;
    impl::ShownUnits units;

    bool IsNothing() const noexcept { return number.result == impl::TypedResult::Nothing; }
    /// Whether the text is a number, in its unit or without one.
    bool IsNumber() const noexcept { return number.result == impl::TypedResult::Number; }
};

template <class T>
Typed ReadTyped(std::wstring const& text, T const& present, zo::IZO const* node) {
    Typed typed{impl::ReadTyped(text, str::locale::native()), {}};
    if (!typed.IsNumber()) return typed;
    if (node) typed.units = impl::unitHooks.unitsOf(&present, *node);
    if (!typed.number.rest.empty() && (!node || typed.number.rest != impl::unitHooks.unitText(typed.units)))
        typed.number.result = impl::TypedResult::NoNumber;
    return typed;
}

/// Appends a stored number as it is shown in other units. `neighbour` is the next one that could be stored, where
/// numbers are spaced.
void AppendShown(std::wstring& text, double value, double neighbour, impl::ShownUnits const& units) {
    double const shown = units.ToShown(value);
    // Beyond what a number can hold: not to be taken for a missing value.
    if (!std::isfinite(shown)) {
        text += shown < 0 ? L"-inf" : L"inf";
        return;
    }
    double const step = neighbour == value ? 0 : std::abs(units.ToShown(neighbour) - shown);
    str::locale::AppendRounded(text, shown, impl::DigitsThatCount(shown, step), str::locale::native());
}

/// Whether a typed number is what is shown of a stored one, which then stays as it is to the last bit.
bool IsWhatIsShown(double typed, double value, double neighbour, impl::ShownUnits const& units) {
    double const shown = units.ToShown(value);
    if (!(std::abs(typed - shown) <= 1e-6 * std::abs(shown) + 1e-6)) return false; // not worth writing it
    std::wstring text;
    AppendShown(text, value, neighbour, units);
    std::ranges::replace(text, str::locale::native().DecimalPoint(), L'.');
    double read = 0;
    return math::ParseDouble(text, read) == ParseResult::Ok && read == typed;
}

/// The conversions of one row, all static: what differs from record to record is the missing value.
template <class T>
struct Row;

/// Whole numbers. N is the type that numbers are read and written as.
template <class T, class N = T>
struct WholeRow {
    using Missing = std::optional<T>;
    static constexpr bool isU64 = std::is_same_v<T, UInt64>;
    static constexpr bool hasUnits = std::is_same_v<T, N>; // a parameter's kind is that of other values

    static bool IsMissing(T value, Missing const& missing) noexcept { return missing && value == *missing; }

    static status ToWide(T value, std::wstring& text, Missing const& missing) {
        text.clear();
        if (IsMissing(value, missing)) return {};
        // A byte has no text of its own.
        if constexpr (sizeof(N) < sizeof(int))
            math::AppendNumber(text, static_cast<int>(value));
        else
            math::AppendNumber(text, static_cast<N>(value));
        return {};
    }
    static status ToShown(T value, std::wstring& text, Missing const& missing, zo::IZO const* node) {
        if constexpr (hasUnits) {
            if (node && !IsMissing(value, missing)) {
                if (impl::ShownUnits const units = impl::unitHooks.unitsOf(&value, *node); units.Differ()) {
                    auto const number = static_cast<double>(value);
                    text.clear();
                    AppendShown(text, number, number, units);
                    return {};
                }
            }
        }
        return ToWide(value, text, missing);
    }
    static status ToBool(T value, bool& out, Missing const& missing) {
        out = static_cast<N>(value) != 0 && !IsMissing(value, missing);
        return {};
    }
    static status ToInt64(T value, Int64& out, Missing const& missing) {
        auto const number = static_cast<N>(value);
        if (IsMissing(value, missing)) {
            out = missingInt64;
            return {};
        }
        if constexpr (std::is_unsigned_v<N> && sizeof(N) == sizeof(Int64) && !isU64)
            if (number > static_cast<N>(missingInt64)) return WholeOutOfRange(NumberText(number));
        out = static_cast<Int64>(number); // bit for bit for the 64-bit row without sign
        return {};
    }
    static status ToDouble(T value, double& out, Missing const& missing) {
        out = IsMissing(value, missing) ? missingDouble : static_cast<double>(static_cast<N>(value));
        return {};
    }

    static status FromWide(std::wstring const& text, T& value, Missing const& missing) {
        N number{};
        switch (Parse_(text, number)) {
        case ParseResult::Ok: value = static_cast<T>(number); return {};
        case ParseResult::Empty:
            if (!missing) return InvalidWhole(text);
            break;
        case ParseResult::BadCharacter: return InvalidWhole(text);
        case ParseResult::OutOfRange:
            if (!isU64 || !missing) return WholeOutOfRange(text);
            break;
        }
        value = *missing;
        return {};
    }
    static status FromShown(std::wstring const& text, T& value, Missing const& missing, zo::IZO const* node) {
        Typed const typed = ReadTyped(text, value, hasUnits ? node : nullptr);
        if (typed.IsNothing()) return FromWide({}, value, missing);
        if (typed.number.result == impl::TypedResult::Ambiguous) return IsAmbiguous(text);
        if (!typed.IsNumber()) return InvalidWhole(text);
        if (hasUnits && typed.units.Differ()) return FromOtherUnits_(text, typed, value, missing);
        N number{};
        ParseResult const read = Parse_(typed.number.digits, number);
        if (read == ParseResult::OutOfRange) return WholeOutOfRange(text);
        if (read != ParseResult::Ok) return InvalidWhole(text);
        value = static_cast<T>(number);
        return {};
    }
    static status FromBool(bool in, T& value) {
        value = static_cast<T>(in ? 1 : 0);
        return {};
    }
    static status FromInt64(Int64 in, T& value, Missing const& missing) {
        if (in == missingInt64 && missing) {
            value = *missing;
            return {};
        }
        if constexpr (!isU64)
            if (!std::in_range<N>(in)) return WholeOutOfRange(NumberText(in));
        value = static_cast<T>(static_cast<N>(in));
        return {};
    }
    static status FromDouble(double in, T& value, Missing const& missing) {
        if (IsMissingDouble(in)) return Missing_(in, value, missing);
        double const whole = Rounded(in);
        if constexpr (std::is_unsigned_v<N> && sizeof(N) == sizeof(UInt64)) {
            // The upper half goes without the top bit, which is set afterwards: the cast knows the lower half only.
            if (whole >= twoTo63 && whole < 2 * twoTo63) {
                value = static_cast<T>(static_cast<UInt64>(static_cast<Int64>(whole - twoTo63)) | (UInt64(1) << 63));
                return {};
            }
        }
        if (!(whole >= -twoTo63 && whole < twoTo63)) {
            if constexpr (isU64) return Missing_(in, value, missing);
            return WholeOutOfRange(NumberText(in));
        }
        auto const number = static_cast<Int64>(whole);
        if constexpr (!isU64)
            if (!std::in_range<N>(number)) return WholeOutOfRange(NumberText(in));
        value = static_cast<T>(static_cast<N>(number));
        return {};
    }

private:
    static ParseResult Parse_(std::wstring_view text, N& number) noexcept {
        if constexpr (sizeof(N) < sizeof(short)) {
            // Without a sign, as every unsigned row.
            unsigned short wide = 0;
            ParseResult const read = math::ParseInteger(text, wide);
            if (read == ParseResult::Ok && !std::in_range<std::uint8_t>(wide)) return ParseResult::OutOfRange;
            number = static_cast<N>(wide);
            return read;
        } else {
            return math::ParseInteger(text, number);
        }
    }
    static status FromOtherUnits_(std::wstring const& text, Typed const& typed, T& value, Missing const& missing) {
        double shown = 0;
        if (math::ParseDouble(typed.number.digits, shown) != ParseResult::Ok) return WholeOutOfRange(text);
        auto const present = static_cast<double>(static_cast<N>(value));
        if (!IsMissing(value, missing) && IsWhatIsShown(shown, present, present, typed.units)) return {};
        double const stored = typed.units.ToStored(shown);
        double const whole = Rounded(stored);
        // What was typed has no more digits than a double keeps; another number than the typed one is no answer.
        if (!(std::abs(stored - whole) <= 1e-9 * std::max(1.0, std::abs(whole)))) return InvalidWhole(text);
        if (FromDouble(whole, value, std::nullopt).IsError()) return WholeOutOfRange(text);
        return {};
    }
    static status Missing_(double in, T& value, Missing const& missing) {
        if (!missing) return WholeOutOfRange(NumberText(in));
        value = *missing;
        return {};
    }
};

template <>
struct Row<unsigned char> : WholeRow<unsigned char> {};
template <>
struct Row<int> : WholeRow<int> {};
template <>
struct Row<unsigned> : WholeRow<unsigned> {};
template <>
struct Row<long> : WholeRow<long> {};
template <>
struct Row<unsigned long> : WholeRow<unsigned long> {};
template <>
struct Row<Int64> : WholeRow<Int64> {};
template <>
struct Row<UInt64> : WholeRow<UInt64> {};
template <>
struct Row<DataParamType> : WholeRow<DataParamType, int> {};

template <class T>
struct FloatRow {
    using Missing = std::optional<T>;

    static bool IsMissing(T value, Missing const& missing) noexcept { return missing && value == *missing; }
    static bool HasNoText(T value, Missing const& missing) noexcept {
        return !std::isfinite(value) || IsMissing(value, missing);
    }

    static status ToWide(T value, std::wstring& text, Missing const& missing) {
        text.clear();
        if (!HasNoText(value, missing)) math::AppendNumber(text, value);
        return {};
    }
    static status ToShown(T value, std::wstring& text, Missing const& missing, zo::IZO const* node) {
        text.clear();
        if (HasNoText(value, missing)) return {};
        if (node)
            if (impl::ShownUnits const units = impl::unitHooks.unitsOf(&value, *node); units.Differ()) {
                AppendShown(text, static_cast<double>(value), Neighbour_(value), units);
                return {};
            }
        str::locale::AppendNumber(text, value, str::locale::native());
        return {};
    }
    static status ToBool(T value, bool& out, Missing const& missing) {
        out = value != 0 && !HasNoText(value, missing);
        return {};
    }
    static status ToInt64(T value, Int64& out, Missing const& missing) {
        if (HasNoText(value, missing)) {
            out = missingInt64;
            return {};
        }
        return meta::ToInt64(static_cast<double>(value), out) ? status() : WholeOutOfRange(NumberText(value));
    }
    static status ToDouble(T value, double& out, Missing const& missing) {
        out = IsMissing(value, missing) ? missingDouble : static_cast<double>(value);
        return {};
    }

    static status FromWide(std::wstring const& text, T& value, Missing const& missing) {
        switch (Parse_(text, value)) {
        case ParseResult::Ok: return {};
        case ParseResult::Empty:
            if (!missing) return InvalidNumber(text);
            value = *missing;
            return {};
        case ParseResult::BadCharacter: return InvalidNumber(text);
        case ParseResult::OutOfRange: break;
        }
        return NumberOutOfRange(text);
    }
    static status FromShown(std::wstring const& text, T& value, Missing const& missing, zo::IZO const* node) {
        Typed const typed = ReadTyped(text, value, node);
        if (typed.IsNothing()) return FromWide({}, value, missing);
        if (typed.number.result == impl::TypedResult::Ambiguous) return IsAmbiguous(text);
        if (!typed.IsNumber()) return InvalidNumber(text);
        if (!typed.units.Differ())
            return Parse_(typed.number.digits, value) == ParseResult::Ok ? status() : NumberOutOfRange(text);
        double shown = 0;
        if (math::ParseDouble(typed.number.digits, shown) != ParseResult::Ok) return NumberOutOfRange(text);
        if (!HasNoText(value, missing) &&
            IsWhatIsShown(shown, static_cast<double>(value), Neighbour_(value), typed.units))
            return {};
        double const stored = typed.units.ToStored(shown);
        // The greatest number stands for a missing one.
        if (!(std::abs(stored) < static_cast<double>(std::numeric_limits<T>::max()))) return NumberOutOfRange(text);
        value = static_cast<T>(stored);
        return {};
    }
    static status FromBool(bool in, T& value) {
        value = in ? T(1) : T(0);
        return {};
    }
    static status FromInt64(Int64 in, T& value, Missing const& missing) {
        value = in == missingInt64 && missing ? *missing : static_cast<T>(in);
        return {};
    }
    static status FromDouble(double in, T& value, Missing const& missing) {
        if (in == missingDouble && missing) {
            value = *missing;
            return {};
        }
        // A value that is not finite passes as it is: only a finite one can be too large.
        if constexpr (sizeof(T) < sizeof(double))
            if (std::isfinite(in) && std::abs(in) > static_cast<double>(std::numeric_limits<T>::max()))
                return NumberOutOfRange(NumberText(in));
        value = static_cast<T>(in);
        return {};
    }

private:
    static ParseResult Parse_(std::wstring_view text, T& value) {
        if constexpr (std::is_same_v<T, float>)
            return math::ParseFloat(text, value);
        else
            return math::ParseDouble(text, value);
    }
    /// The next value towards 0, so that it is finite.
    static double Neighbour_(T value) noexcept { return static_cast<double>(std::nextafter(value, T(0))); }
};

template <>
struct Row<float> : FloatRow<float> {};
template <>
struct Row<double> : FloatRow<double> {};

template <>
struct Row<bool> {
    using Missing = std::optional<bool>;

    static bool IsMissing(bool value, Missing const& missing) noexcept { return missing && value == *missing; }

    static status ToWide(bool value, std::wstring& text, Missing const& missing) {
        if (IsMissing(value, missing))
            text.clear();
        else
            text = BoolText(value);
        return {};
    }
    static status ToShown(bool value, std::wstring& text, Missing const& missing, zo::IZO const*) {
        return ToWide(value, text, missing);
    }
    static status ToBool(bool value, bool& out, Missing const&) {
        out = value;
        return {};
    }
    static status ToInt64(bool value, Int64& out, Missing const& missing) {
        out = IsMissing(value, missing) ? missingInt64 : Int64(value);
        return {};
    }
    static status ToDouble(bool value, double& out, Missing const& missing) {
        out = IsMissing(value, missing) ? missingDouble : (value ? 1.0 : 0.0);
        return {};
    }
    static status FromWide(std::wstring const& text, bool& value, Missing const& missing) {
        if (text.empty() && missing)
            value = *missing;
        else if (IsFalseText(std::wstring_view(text)))
            value = false;
        else if (IsTrueText(text))
            value = true;
        else
            return Convert_error_status::InvalidCharStatus(text, L"truth value");
        return {};
    }
    static status FromShown(std::wstring const& text, bool& value, Missing const& missing, zo::IZO const*) {
        return FromWide(std::wstring(str::Trim(text)), value, missing).IsError()
                   ? Convert_error_status::InvalidCharStatus(text, L"truth value")
                   : status();
    }
    static status FromBool(bool in, bool& value) {
        value = in;
        return {};
    }
    static status FromInt64(Int64 in, bool& value, Missing const& missing) {
        if (in == missingInt64)
            value = missing.value_or(false);
        else
            value = in != 0;
        return {};
    }
    static status FromDouble(double in, bool& value, Missing const& missing) {
        if (IsMissingDouble(in))
            value = missing.value_or(false);
        else
            value = in != 0;
        return {};
    }
};

template <class T>
struct TextRow {
    using Missing = std::optional<T>;
    using View = std::basic_string_view<typename T::value_type>;

    static bool IsMissing(T const& value, Missing const& missing) noexcept { return missing && value == *missing; }

    static status ToWide(T const& value, std::wstring& text, Missing const& missing) {
        if (IsMissing(value, missing))
            text.clear();
        else if constexpr (std::is_same_v<T, std::wstring>)
            text = value;
        else
            str::AssignWide(text, value);
        return {};
    }
    static status ToShown(T const& value, std::wstring& text, Missing const& missing, zo::IZO const*) {
        return ToWide(value, text, missing);
    }
    static status ToBool(T const& value, bool& out, Missing const& missing) {
        out = !IsMissing(value, missing) && !IsFalseText(View(value));
        return {};
    }
    static status ToInt64(T const& value, Int64& out, Missing const& missing) {
        Int64 number = missingInt64;
        if (!IsMissing(value, missing)) {
            ParseResult const read = math::ParseInteger(View(value), number);
            if (read == ParseResult::BadCharacter) return InvalidWhole(Wide_(value));
            if (read == ParseResult::OutOfRange) return WholeOutOfRange(Wide_(value));
        }
        out = number;
        return {};
    }
    static status ToDouble(T const& value, double& out, Missing const& missing) {
        double number = missingDouble;
        if (!IsMissing(value, missing)) {
            ParseResult const read = math::ParseDouble(View(value), number);
            if (read == ParseResult::BadCharacter) return InvalidNumber(Wide_(value));
            if (read == ParseResult::OutOfRange) return NumberOutOfRange(Wide_(value));
        }
        out = number;
        return {};
    }
    static status FromWide(std::wstring const& text, T& value, Missing const& missing) {
        if (text.empty() && missing) {
            value = *missing;
        } else if constexpr (std::is_same_v<T, std::wstring>) {
            value = text;
        } else {
            value.clear();
            str::AppendUtf8(value, text);
        }
        return {};
    }
    static status FromShown(std::wstring const& text, T& value, Missing const& missing, zo::IZO const*) {
        return FromWide(text, value, missing);
    }
    static status FromBool(bool in, T& value) { return FromWide(BoolText(in), value, std::nullopt); }
    static status FromInt64(Int64 in, T& value, Missing const& missing) {
        return FromWide(in == missingInt64 ? std::wstring() : NumberText(in), value, missing);
    }
    static status FromDouble(double in, T& value, Missing const& missing) {
        return FromWide(IsMissingDouble(in) ? std::wstring() : NumberText(in), value, missing);
    }

private:
    static std::wstring Wide_(T const& value) {
        std::wstring text;
        (void)ToWide(value, text, std::nullopt); // can't fail
        return text;
    }
};

template <>
struct Row<std::string> : TextRow<std::string> {};
template <>
struct Row<std::wstring> : TextRow<std::wstring> {};

template <class T>
T const& As(void const* value) noexcept {
    return *static_cast<T const*>(value);
}
template <class T>
T& As(void* value) noexcept {
    return *static_cast<T*>(value);
}

template <class T>
void StorePlainly(MetaTraitsAtomic& record) {
    record.kind = Kind::Atomic;
    record.byteSize = sizeof(T);
    record.type = &typeid(T);
    record.isValid = [](void const*, zo::IZO const*, MetaDataTraits const&) { return status(); };
    record.read = [](void const* memory, void* value) { As<T>(value) = As<T>(memory); };
    record.write = [](void* memory, void const* value) { As<T>(memory) = As<T>(value); };
}

/// An enumeration's words, found by what a caller has of them. A plain function object, small enough to be stored in
/// place wherever it is held.
struct Words {
    std::span<EnumWord const> words;

    /// A word without a text for people is shown by its own: an empty one would be read as nothing.
    static std::wstring_view Text(EnumWord const& word, int format) noexcept {
        std::wstring_view const text = format == 1 ? word.abbreviated : format == 2 ? word.pretty : word.text;
        return text.empty() ? word.text : text;
    }
    EnumWord const* Find(Int64 value) const noexcept {
        for (EnumWord const& word : words)
            if (word.value == value) return &word;
        return nullptr;
    }
    EnumWord const* Find(std::wstring_view text, int format) const noexcept {
        for (EnumWord const& word : words)
            if (Text(word, format) == text) return &word;
        return nullptr;
    }
    status FromNumber(Int64 in, void* value) const {
        if (!Find(in)) return NotRecognized(NumberText(in));
        As<int>(value) = static_cast<int>(in);
        return {};
    }
    status FromText(std::wstring const& text, void* value, int format) const {
        EnumWord const* word = Find(text, format);
        // People may also type what documents hold, and blanks around it.
        if (!word && format != 0) word = Find(text, 0);
        if (!word && format != 0) word = Find(str::Trim(text), format);
        if (!word && format != 0) word = Find(str::Trim(text), 0);
        int number = 0;
        if (word)
            number = static_cast<int>(word->value);
        else if (math::ParseInteger<int>(text, number) != ParseResult::Ok)
            return NotRecognized(text);
        As<int>(value) = number;
        return {};
    }
    /// The node layer's failure of the same name, which lies above this one.
    static status NotRecognized(std::wstring const& text) { return status(21663, text); }
};

} // namespace

template <ValueType T>
MetaTraitsAtomic MakeAtomic(T const& defaultValue, std::optional<T> const& missing) {
    using R = Row<T>;
    MetaTraitsAtomic record;
    StorePlainly<T>(record);
    record.isDefault = [defaultValue](void const* value) { return As<T>(value) == defaultValue; };
    if (missing)
        record.isMissing = [missing](void const* value) { return R::IsMissing(As<T>(value), missing); };
    else
        record.isMissing = &MetaIsMissingValueNotSupported::IsMissing;
    record.setDefault = [defaultValue](void* value) { As<T>(value) = defaultValue; };
    record.toWide = [missing](void const* value, std::wstring& text, int format, zo::IZO const* node) {
        return format == 0 ? R::ToWide(As<T>(value), text, missing) : R::ToShown(As<T>(value), text, missing, node);
    };
    record.toBool = [missing](void const* value, bool& out) { return R::ToBool(As<T>(value), out, missing); };
    record.toInt64 = [missing](void const* value, Int64& out) { return R::ToInt64(As<T>(value), out, missing); };
    record.toDouble = [missing](void const* value, double& out) { return R::ToDouble(As<T>(value), out, missing); };
    record.fromWide = [missing](std::wstring const& text, void* value, int format, zo::IZO const* node) {
        return format == 0 ? R::FromWide(text, As<T>(value), missing) : R::FromShown(text, As<T>(value), missing, node);
    };
    record.fromBool = [](bool const& in, void* value) { return R::FromBool(in, As<T>(value)); };
    record.fromInt64 = [missing](Int64 const& in, void* value) { return R::FromInt64(in, As<T>(value), missing); };
    record.fromDouble = [missing](double const& in, void* value) { return R::FromDouble(in, As<T>(value), missing); };
    return record;
}

template <ValueType T>
MetaDataTraits const& AtomicTraits() {
    // Never freed: values may outlive the statics of the library.
    static MetaTraitsAtomic const& record = *new MetaTraitsAtomic(MakeAtomic<T>(T{}, StandardMissing<T>()));
    static MetaDataTraits const& traits = *new MetaDataTraits(record);
    return traits;
}

#define ZO_ROW(T)                                                                                                      \
    template MetaTraitsAtomic MakeAtomic(T const&, std::optional<T> const&);                                           \
    template MetaDataTraits const& AtomicTraits<T>();
ZO_ROW(unsigned char)
ZO_ROW(int)
ZO_ROW(unsigned)
ZO_ROW(long)
ZO_ROW(unsigned long)
ZO_ROW(float)
ZO_ROW(double)
ZO_ROW(Int64)
ZO_ROW(UInt64)
ZO_ROW(bool)
ZO_ROW(std::string)
ZO_ROW(std::wstring)
ZO_ROW(DataParamType)
#undef ZO_ROW

MetaTraitsAtomic MakeEnum(std::span<EnumWord const> table, int defaultValue) {
    Words const words{table};
    MetaTraitsAtomic record;
    StorePlainly<int>(record);
    record.isDefault = [defaultValue](void const* value) { return As<int>(value) == defaultValue; };
    record.isMissing = &MetaIsMissingValueNotSupported::IsMissing;
    record.setDefault = [defaultValue](void* value) { As<int>(value) = defaultValue; };
    record.toWide = [words](void const* value, std::wstring& text, int format, zo::IZO const*) {
        text.clear();
        if (EnumWord const* const word = words.Find(As<int>(value)))
            text = Words::Text(*word, format);
        else
            math::AppendNumber(text, As<int>(value));
        return status();
    };
    record.toBool = [](void const* value, bool& out) {
        out = As<int>(value) != 0;
        return status();
    };
    record.toInt64 = [](void const* value, Int64& out) {
        out = As<int>(value);
        return status();
    };
    record.toDouble = [](void const* value, double& out) {
        out = As<int>(value);
        return status();
    };
    record.fromWide = [words](std::wstring const& text, void* value, int format, zo::IZO const*) {
        return words.FromText(text, value, format);
    };
    record.fromBool = [words](bool const& in, void* value) { return words.FromNumber(in ? 1 : 0, value); };
    record.fromInt64 = [words](Int64 const& in, void* value) { return words.FromNumber(in, value); };
    record.fromDouble = [words](double const& in, void* value) {
        Int64 number = 0;
        if (!std::isfinite(in) || !ToInt64(in, number)) return Words::NotRecognized(NumberText(in));
        return words.FromNumber(number, value);
    };
    record.valueList = [words](std::vector<std::wstring>& out, int which) {
        out.clear();
        for (EnumWord const& word : words.words) out.emplace_back(Words::Text(word, which));
    };
    return record;
}

impl::EnumRange impl::RangeOfWords(MetaTraitsAtomic const& record) {
    std::vector<std::wstring> texts;
    record.valueList(texts, 0);
    int number = 0;
    record.setDefault(&number);
    bool isSigned = false;
    unsigned bits = 0;
    auto const include = [&](int value) {
        isSigned = isSigned || value < 0;
        bits |= static_cast<unsigned>(value < 0 ? ~value : value);
    };
    include(number);
    for (std::wstring const& text : texts)
        if (!record.fromWide(text, &number, 0, nullptr).IsError()) include(number);
    int const highest = static_cast<int>(std::bit_ceil(std::uint64_t(bits) + 1) - 1);
    return {isSigned ? -highest - 1 : 0, highest};
}

} // namespace meta
