// The conversions of one descriptor, each as a plain function, for tables of expectations.
#pragma once

#include "support/describe.h"
#include "support/text.h"

#include <limits>
#include <string>

namespace conversions {

inline constexpr htl::Int64 missingInt64 = 0x7FFFFFFFFFFFFFFF;
inline constexpr double missingDouble = 1.7976931348623157e308;

/// The value that `function` wrote, or what was there before.
template <class T>
class Row {
public:
    explicit Row(meta::MetaDataTraits traits) : traits(std::move(traits)) {}
    Row() : Row(meta::AtomicTraits<T>()) {}

    meta::MetaTraitsAtomic const& Record() const { return *traits.AsAtomic(); }
    meta::MetaDataTraits const& Traits() const { return traits; }

    std::wstring Text(T const& value, int format = 0) const {
        std::wstring text = L"replaced";
        htl::status const failure = Record().toWide(&value, text, format, nullptr);
        return failure.IsError() ? L"<" + failure.AsWString() + L">" : text;
    }
    bool Bool(T const& value) const {
        bool out = false;
        EXPECT_FALSE(Record().toBool(&value, out).IsError());
        return out;
    }
    htl::Int64 Int64(T const& value) const {
        htl::Int64 out = -77;
        EXPECT_FALSE(Record().toInt64(&value, out).IsError());
        return out;
    }
    double Double(T const& value) const {
        double out = -77;
        EXPECT_FALSE(Record().toDouble(&value, out).IsError());
        return out;
    }
    T FromText(std::wstring const& text, int format = 0) const {
        T out{};
        htl::status const failure = Record().fromWide(text, &out, format, nullptr);
        EXPECT_FALSE(failure.IsError()) << str::as_cstring(failure.AsWString());
        return out;
    }
    T FromBool(bool in) const {
        T out{};
        EXPECT_FALSE(Record().fromBool(in, &out).IsError());
        return out;
    }
    T FromInt64(htl::Int64 in) const {
        T out{};
        htl::status const failure = Record().fromInt64(in, &out);
        EXPECT_FALSE(failure.IsError()) << str::as_cstring(failure.AsWString());
        return out;
    }
    T FromDouble(double in) const {
        T out{};
        htl::status const failure = Record().fromDouble(in, &out);
        EXPECT_FALSE(failure.IsError()) << str::as_cstring(failure.AsWString());
        return out;
    }

    /// The failures; the value stays `before`.
    htl::status TextFailure(std::wstring const& text, T const& before = T{}) const {
        T out = before;
        htl::status failure = Record().fromWide(text, &out, 0, nullptr);
        EXPECT_EQ(out, before);
        return failure;
    }
    htl::status Int64Failure(htl::Int64 in, T const& before = T{}) const {
        T out = before;
        htl::status failure = Record().fromInt64(in, &out);
        EXPECT_EQ(out, before);
        return failure;
    }
    htl::status DoubleFailure(double in, T const& before = T{}) const {
        T out = before;
        htl::status failure = Record().fromDouble(in, &out);
        EXPECT_EQ(out, before);
        return failure;
    }

    bool IsDefault(T const& value) const { return Record().isDefault(&value); }
    bool IsMissing(T const& value) const { return Record().isMissing(&value); }

private:
    meta::MetaDataTraits traits;
};

inline htl::status BadWhole(std::wstring const& text) {
    return htl::Convert_error_status::InvalidCharStatus(text, htl::Convert_error_status::WholeNumberString());
}
inline htl::status BadNumber(std::wstring const& text) {
    return htl::Convert_error_status::InvalidCharStatus(text, htl::Convert_error_status::FloatingPointString());
}
inline htl::status WholeOutOfRange(std::wstring const& text) {
    return htl::Convert_error_status::OutOfRangeStatus(text, htl::Convert_error_status::WholeNumberString());
}
inline htl::status NumberOutOfRange(std::wstring const& text) {
    return htl::Convert_error_status::OutOfRangeStatus(text, htl::Convert_error_status::FloatingPointString());
}

} // namespace conversions
