#include "Common/present/FormattedTraits.h"

#include "Common/present/Measure.h"
#include "Common/present/UnitsProvider.h"

#include "support/locale.h"
#include "support/text.h"
#include "support/typename.h"

#include <cmath>
#include <limits>
#include <string_view>

namespace zo {
namespace {

using hzn::units::Kind;
using str::locale::ID;

/// The failures of conversions from text, which repeat the text.
bool QuotesItsText(htl::status const& failure) { return failure.Is(90006) || failure.Is(90007) || failure.Is(90013); }

/// The number that a text begins with, and the notation that it is written in.
struct Found {
    std::size_t length = 0;
    ID notation = ID::Classic();
};

Found NumberAt(std::wstring_view text, ID const& native) noexcept {
    Found found{str::locale::NumberLength(text, native), native};
    if (native.DecimalPoint() == L'.') return found;
    // Checks of client types write "2.5" in every locale. A "." at the end of a sentence has no digit behind it.
    ID const classic = ID::Classic();
    std::size_t const length = str::locale::NumberLength(text, classic);
    if (length > found.length && str::IsDigit(text[length - 1])) found = {length, classic};
    return found;
}

std::wstring WithNumbersConverted(std::wstring_view text, Kind::Type kind, math::UnitSet const& from,
                                  math::UnitSet const& to) {
    ID const native = str::locale::native();
    std::wstring converted;
    converted.reserve(text.size() + 16);
    while (!text.empty()) {
        // A blank begins no number.
        Found const found = NumberAt(text, native);
        // What is not read whole stays: beyond a double it is no number of this system.
        double value = std::numeric_limits<double>::max();
        std::size_t length = 0;
        if (found.length > 0 &&
            !str::locale::from_string(value, length, text.substr(0, found.length), found.notation).IsError()) {
            double const shown = math::units::ConvertBetweenUnitSets(kind, value, from, to);
            if (std::isfinite(shown)) {
                std::wstring number;
                htl::status const failure = str::locale::to_string(number, shown, str::locale::notGiven, 8,
                                                                   str::locale::floatformat::General, native);
                if (failure.IsError()) throw htl::status_exception(failure, __FILE__, __LINE__);
                // The "." of a sentence stays.
                if (!str::locale::isdigit(text[length - 1], native)) --length;
                converted += number;
                text.remove_prefix(length);
                continue;
            }
        }
        std::size_t const kept = found.length > 0 ? found.length : 1;
        converted += text.substr(0, kept);
        text.remove_prefix(kept);
    }
    return converted;
}

} // namespace

htl::status ZOAccessUnitKindTrait::CallValueTypeTrait(void* value) {
    result = Kind::None;
    DataParamType parameter{};
    if (node) {
        meta::MetaDataTraits const traits = node->GetDataTraits();
        if (meta::MetaTraitsAtomic const* const record = traits.AsAtomic())
            parameter = impl::ParameterOf(*record, node.get());
    }
    if (parameter == DataParamType{}) parameter = DataParameterType(regID);
    result = impl::KindOf(*function, parameter, value, node.get());
    return {};
}

htl::status ZOAccessReadFormattedOutput::CallValueTypeTrait(void* value) {
    return *read ? (*read)(value, *output, format, node) : ZOError::not_supported("");
}

htl::status ZOAcessWriteFormattedOutput::CallValueTypeTrait(void* value) {
    quotesInput = false;
    if (!*write) return ZOError::not_supported("");
    htl::status failure = (*write)(*input, value, format, node);
    quotesInput = failure.IsError() && QuotesItsText(failure);
    return failure;
}

htl::status ZOAcessWriteFormattedOutput::ConvertUnitsInStatusToVisible(htl::status const& failure) {
    if (!failure.IsError() || quotesInput || !node) return failure;
    meta::MetaDataTraits const traits = node->GetDataTraits();
    meta::MetaTraitsAtomic const* const record = traits.AsAtomic();
    if (!record || (*record->type != typeid(double) && meta::TypeName(*record->type) != "FnAttr")) return failure;

    DataParamType const parameter = impl::ParameterOf(*record, node);
    Kind::Type const kind = impl::KindOfNode(*node, *record);
    if (kind == Kind::None) return failure;
    math::UnitSet const shown =
        parameter != DataParamType{} ? impl::UnitsOfParameter(parameter) : impl::UnitsOfKind(kind);
    if (shown.IsZero()) return failure;
    math::UnitSet const stored = impl::ActiveUnits();
    if (stored == shown) return failure;

    htl::status const converted = htl::status::FromText(WithNumbersConverted(failure.AsWString(), kind, stored, shown));
    htl::status::detail const& origin = *failure.Detail();
    return origin.source.empty() ? converted : converted.WithPlace(origin.source, origin.position);
}

} // namespace zo
