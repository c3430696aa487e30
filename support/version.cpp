#include "support/version.h"

#include "support/fmt.h"
#include "support/number.h"

#include <array>

namespace hzn::version {
namespace {

Record& Running() noexcept {
    static constinit Record record;
    return record;
}

} // namespace

Record const& Current() noexcept { return Running(); }

void SetCurrent(Record const& record) noexcept { Running() = record; }

double number::Encode(NumberKind<0> const& version) {
    double value = 0;
    // Through the text, so that a version read from a document equals the one it was written from, bit for bit.
    (void)math::ParseDouble(str::as_wstring(version), value); // digits, a point, digits: this can't fail
    return value;
}

} // namespace hzn::version

namespace str {

std::wstring as_wstring(hzn::version::NumberKind<0> const& version) {
    return fmt::format(version.minorPart < 10 ? L"%u.0%u" : L"%u.%u", version.majorPart, version.minorPart);
}

std::wstring as_wstring(hzn::version::NumberKind<1> const& version) {
    return fmt::format(L"%u.%u.%u.%u", version.majorPart, version.minorPart, version.release, version.build);
}

htl::status from_wstring(std::wstring const& text, hzn::version::NumberKind<1>& version) {
    std::array<unsigned, 4> numbers{};
    std::size_t count = 0;
    for (std::size_t start = 0;; ++count) {
        std::size_t const point = text.find(L'.', start);
        auto const part = std::wstring_view(text).substr(start, point - start);
        // The reader of numbers would also take blanks and a sign.
        if (count == numbers.size() || part.empty() || part.find_first_not_of(L"0123456789") != part.npos)
            return HznError::syntax(text);
        if (math::ParseInteger(part, numbers[count]) != math::ParseResult::Ok)
            return htl::Convert_error_status::OutOfRangeStatus(text, htl::Convert_error_status::WholeNumberString());
        if (point == text.npos) break;
        start = point + 1;
    }
    version = {numbers[0], numbers[1], numbers[2], numbers[3]};
    return htl::status::Success;
}

} // namespace str
