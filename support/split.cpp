#include "support/split.h"

namespace str {
namespace {

template <class C>
void Split(std::vector<std::basic_string_view<C>>& out, std::basic_string_view<C> text,
           std::basic_string_view<C> separators) {
    constexpr std::size_t npos = std::basic_string_view<C>::npos;
    out.clear();
    for (std::size_t at = text.find_first_not_of(separators); at != npos;) {
        std::size_t const end = text.find_first_of(separators, at);
        out.push_back(text.substr(at, end - at));
        at = end == npos ? npos : text.find_first_not_of(separators, end);
    }
}

constexpr wchar_t escape = L'\\';

// Whether a backslash stands here with something behind it to escape, which a line end is not.
bool IsEscapeAt(std::wstring_view text, std::size_t at) noexcept {
    return at + 1 < text.size() && text[at] == escape && text[at + 1] != L'\n' && text[at + 1] != L'\r';
}

// Where quoted parts end.
class QuotedParts {
public:
    static constexpr std::size_t none = std::wstring_view::npos;

    QuotedParts(std::wstring_view whole, FieldSyntax const& theSyntax) : text(whole), syntax(theSyntax) {}

    /// The place behind the closing quotation mark of the part that opens at `at`, `none` if no part opens there or
    /// it is not closed.
    std::size_t EndOf(std::size_t at) {
        if (text[at] != syntax.open) return none;
        if (ends.empty()) Prepare_();
        return ends[at + 1];
    }

private:
    // An escaped quotation mark closes a part after all if no other one does, so whether a part is closed depends on
    // all that follows: found from the back, once for all places.
    void Prepare_() {
        ends.assign(text.size() + 1, none);
        for (std::size_t at = text.size(); at-- != 0;) {
            if (IsEscapeAt(text, at)) ends[at] = ends[at + 2];
            if (ends[at] == none) ends[at] = text[at] == syntax.close ? at + 1 : ends[at + 1];
        }
    }

    std::wstring_view text;
    FieldSyntax syntax;
    std::vector<std::size_t> ends; // by the place where the inside of a part begins or goes on
};

} // namespace

void SplitComponents(std::vector<std::string_view>& out, std::string_view text, std::string_view separators) {
    Split(out, text, separators);
}

void SplitComponents(std::vector<std::wstring_view>& out, std::wstring_view text, std::wstring_view separators) {
    Split(out, text, separators);
}

void SplitFields(std::vector<std::wstring_view>& out, std::wstring_view text, FieldSyntax const& syntax) {
    out.clear();
    QuotedParts quoted(text, syntax);
    std::size_t begin = 0;
    for (;;) {
        std::size_t at = begin;
        while (at < text.size()) {
            if (std::size_t const end = quoted.EndOf(at); end != QuotedParts::none)
                at = end;
            else if (IsEscapeAt(text, at))
                at += 2;
            else if (text[at] != syntax.separator && text[at] != escape)
                ++at;
            else
                break;
        }
        out.push_back(text.substr(begin, at - begin));
        std::size_t const separator = text.find(syntax.separator, at);
        if (separator == std::wstring_view::npos) return;
        begin = separator + 1;
    }
}

std::wstring StripField(std::wstring_view field, FieldSyntax const& syntax) {
    std::wstring unquoted;
    unquoted.reserve(field.size());
    QuotedParts quoted(field, syntax);
    for (std::size_t at = 0; at < field.size();) {
        std::size_t const end = quoted.EndOf(at);
        if (end == QuotedParts::none) {
            unquoted += field[at++];
        } else {
            unquoted += field.substr(at + 1, end - at - 2);
            at = end;
        }
    }
    std::wstring stripped;
    stripped.reserve(unquoted.size());
    for (std::size_t at = 0; at < unquoted.size(); ++at) {
        if (IsEscapeAt(unquoted, at)) ++at;
        stripped += unquoted[at];
    }
    return stripped;
}

} // namespace str
