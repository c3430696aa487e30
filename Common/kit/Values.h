// The descriptions of single values, as lines of a declaration ask for them.
#pragma once

#include "Common/kit/Options.h"

#include "support/describe.h"
#include "support/number.h"

#include <cmath>
#include <concepts>
#include <deque>
#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace zo::kit::impl {

/// Takes the text of a mistake, a sentence.
using Complain = std::function<void(std::wstring text)>;

/// An enumeration's words with texts of their own, so that a declaration may hand over a temporary table.
struct WordTable {
    std::vector<meta::EnumWord> words;
    std::deque<std::wstring> texts; // stay where they are

    explicit WordTable(std::span<meta::EnumWord const> table) {
        words.reserve(table.size());
        auto const keep = [this](std::wstring_view text) -> std::wstring_view { return texts.emplace_back(text); };
        for (meta::EnumWord const& word : table)
            words.push_back({word.value, keep(word.text), keep(word.abbreviated), keep(word.pretty)});
    }
    WordTable(WordTable const&) = delete;
    WordTable& operator=(WordTable const&) = delete;

    bool Has(htl::Int64 value) const noexcept {
        for (meta::EnumWord const& word : words)
            if (word.value == value) return true;
        return false;
    }

    /// A document would give back another value, or none, where words are not told apart.
    void Check(Complain const& complain) const {
        if (words.empty()) complain(L"an enumeration needs words.");
        std::set<htl::Int64> values;
        std::set<std::wstring_view> plain, abbreviated, pretty;
        for (meta::EnumWord const& word : words) {
            if (!std::in_range<int>(word.value)) complain(L"the value " + std::to_wstring(word.value) + L" is no int.");
            if (!values.insert(word.value).second)
                complain(L"two words have the value " + std::to_wstring(word.value) + L".");
            if (word.text.empty()) complain(L"a word needs a text.");
            auto const distinct = [&complain](std::set<std::wstring_view>& seen, std::wstring_view text) {
                if (!text.empty() && !seen.insert(text).second)
                    complain(L"two words have the text {" + std::wstring(text) + L"}.");
            };
            distinct(plain, word.text);
            distinct(abbreviated, word.abbreviated);
            distinct(pretty, word.pretty);
            int number = 0;
            if (math::ParseInteger(word.text, number) == math::ParseResult::Ok && number != word.value)
                complain(L"the text {" + std::wstring(word.text) + L"} is the number of another value.");
        }
    }
    /// Whether no text would be taken apart in a list with commas.
    bool FitsOneText() const noexcept {
        for (meta::EnumWord const& word : words)
            if (word.text.empty() || word.text.find_first_of(L",()") != word.text.npos) return false;
        return true;
    }
};

using Words = std::shared_ptr<WordTable const>;

/// In which form a document holds a value.
enum class Form {
    Single,        ///< an element or attribute of its own
    Place,         ///< a place in a list with commas, of a fixed number of places
    ResizablePlace ///< of a list whose length is the number of its places
};

/// What a line says of a single value, whatever its type.
class ValueRules {
public:
    ValueRules() = default;
    ValueRules(ValueRules const&) = delete;
    ValueRules& operator=(ValueRules const&) = delete;
    virtual ~ValueRules() = default;

    /// The type of an enumeration, null for any other.
    virtual std::type_info const* EnumType() const = 0;
    /// `words` are those of the enumeration, null for other types.
    virtual meta::MetaDataTraits Make(Words const& words, Form form) const = 0;
    virtual void Check(Words const& words, Complain const& complain) const = 0;
    /// Whether a list with commas gives every value back.
    virtual bool FitsOneText(Words const& words) const = 0;
};

template <class T>
std::wstring TextOf(T const& value) {
    std::wstring text;
    using Row = meta::RowOf<T>;
    Row const row = static_cast<Row>(value);
    if (meta::AtomicTraits<Row>().AsAtomic()->toWide(&row, text, 0, nullptr).IsError() || text.empty())
        return std::same_as<Row, std::string> || std::same_as<Row, std::wstring> ? L"\"\"" : L"no value";
    return text;
}

/// Whether a value is in the range of a line, with the failure that says which.
template <Value T>
htl::status CheckRange(Options<T> const& options, T const& value) {
    if (!options.min && !options.max) return {};
    if (options.missing && value == *options.missing) return {};
    // Asked for what holds, so that a NaN is refused.
    bool const aboveMin = !options.min || value >= *options.min;
    bool const belowMax = !options.max || value <= *options.max;
    bool missing = false;
    if constexpr (!meta::EnumType<T>)
        if (auto const standard = meta::StandardMissing<T>(); standard && !options.noMissing)
            missing = value == *standard;
    // No document holds it, so it would come back as missing.
    if constexpr (std::floating_point<T>) missing |= !std::isfinite(value);
    if (aboveMin && belowMax && !missing) return {};
    if (options.min && options.max) {
        constexpr unsigned notBetween = 21662; // as `ZOError::out_of_bounds`, which takes whole numbers only
        return htl::status(notBetween, TextOf(value), TextOf(*options.min), TextOf(*options.max));
    }
    if (missing) return htl::status::FromText(L"A value is needed here.");
    return options.min ? htl::status::FromText(TextOf(value) + L" is less than " + TextOf(*options.min) + L".")
                       : htl::status::FromText(TextOf(value) + L" is more than " + TextOf(*options.max) + L".");
}

template <Value T>
class ValueRulesOf final : public ValueRules {
    using Row = meta::RowOf<T>;
    static constexpr bool isText = std::same_as<T, std::string> || std::same_as<T, std::wstring>;

public:
    using Read = std::function<T(void const* object)>;
    using Write = std::function<void(void* object, T const& value)>;

    /// `fresh` is the default where the options name none. With `read` the value is what the function of the object
    /// says; without `write` it can't be changed.
    ValueRulesOf(Options<T> lineOptions, T fresh, Read read = {}, Write write = {})
        : options(std::move(lineOptions)), initial(options.dflt ? *options.dflt : std::move(fresh)),
          read(std::move(read)), write(std::move(write)) {}

    std::type_info const* EnumType() const override { return meta::EnumType<T> ? &typeid(T) : nullptr; }

    meta::MetaDataTraits Make(Words const& words, Form form) const override {
        struct Owning : meta::MetaTraitsAtomic {
            explicit Owning(meta::MetaTraitsAtomic record) : meta::MetaTraitsAtomic(std::move(record)) {}
            Words words;
        };
        auto record = std::make_shared<Owning>(Plain_(words, form));
        record->words = words;
        Builder_().Apply(*record);
        if (read) OfObject_(*record);
        return meta::MetaDataTraits(std::shared_ptr<meta::MetaTraits const>(std::move(record)));
    }

    void Check(Words const& words, Complain const& complain) const override {
        if (options.min && options.max && *options.min > *options.max)
            complain(L"the range from " + TextOf(*options.min) + L" to " + TextOf(*options.max) + L" is empty.");
        if (options.missing && options.noMissing) complain(L"a missing value is named and refused.");
        if constexpr (meta::EnumType<T>) {
            if (options.missing) complain(L"an enumeration has no missing value.");
            if (words && !ReadOnly_() && !words->Has(static_cast<htl::Int64>(initial)))
                complain(L"the default " + TextOf(initial) + L" is none of the enumeration's words.");
        }
        if constexpr (isText)
            if (options.missing && !options.missing->empty())
                complain(L"only the empty text can stand for a missing one.");
        if (ReadOnly_()) return;
        if (htl::status const failure = Accepts_(initial, nullptr); failure.IsError())
            complain(L"the default is refused by the line's own rule: " + failure.AsWString());
    }

    bool FitsOneText(Words const& words) const override {
        // A place without text is skipped by a reader, and at the end of a list it is no place at all.
        if constexpr (isText) return false;
        if (options.missing) return false;
        return !words || words->FitsOneText();
    }

private:
    bool ReadOnly_() const { return read && !write; }

    htl::status Accepts_(T const& value, IZO const* node) const {
        if (htl::status failure = CheckRange(options, value); failure.IsError()) return failure;
        return options.valid ? options.valid(value, node) : htl::status();
    }

    meta::MetaTraitsAtomic Plain_(Words const& words, Form form) const {
        meta::MetaTraitsAtomic record;
        if constexpr (meta::EnumType<T>) {
            static_assert(sizeof(T) <= sizeof(int), "an enumeration is written and read as an int");
            record = meta::MakeEnum(words->words, static_cast<int>(initial));
            meta::impl::StoreAsEnum<T>(record);
        } else {
            std::optional<T> missing = options.missing;
            if (!missing && !options.noMissing && form == Form::Single) missing = meta::StandardMissing<T>();
            record = meta::MakeAtomic<T>(initial, missing);
        }
        // A default without a text would shorten a list that it ends.
        if (form == Form::ResizablePlace) record.isDefault = &meta::MetaIsDefaultNever::IsDefault;
        if constexpr (std::floating_point<T>)
            if (form != Form::Single || options.noMissing) {
                // What is not finite has no text; where no text is none it becomes the number that stands for missing
                // elsewhere.
                record.toWide = [plain = std::move(record.toWide)](void const* value, std::wstring& text, int format,
                                                                   IZO const* node) {
                    T number = *static_cast<T const*>(value);
                    if (!std::isfinite(number)) number = std::numeric_limits<T>::max();
                    return plain(&number, text, format, node);
                };
            }
        return record;
    }

    meta::AtomicBuilder<Row> Builder_() const {
        meta::AtomicBuilder<Row> builder;
        if (options.min || options.max || options.valid) {
            struct Rule {
                Options<T> options;
                htl::status operator()(Row const& row, IZO const* node) const {
                    T const value = static_cast<T>(row);
                    if (htl::status failure = CheckRange(options, value); failure.IsError()) return failure;
                    return options.valid ? options.valid(value, node) : htl::status();
                }
            };
            builder.Valid(Rule{options});
        }
        if (options.unit != Kind::None) builder.Units(options.unit);
        if (options.param != DataParamType{}) builder.Param(options.param);
        builder.LinkGroup(options.linkGroup);
        if (options.visible) builder.Visible(options.visible);
        if (options.editable) builder.Editable(options.editable);
        return builder;
    }

    void OfObject_(meta::MetaTraitsAtomic& record) const {
        record.read = [get = read](void const* object, void* value) {
            *static_cast<Row*>(value) = static_cast<Row>(get(object));
        };
        if (write) {
            record.write = [set = write](void* object, void const* value) {
                set(object, static_cast<T>(*static_cast<Row const*>(value)));
            };
            return;
        }
        record.write = [](void*, void const*) {}; // a reset passes over it
        record.editable = [](void const*) { return false; };
        record.isValid = [](void const*, IZO const* node, meta::MetaDataTraits const&) {
            return ZOError::not_supported(node ? node->SubName() : std::string());
        };
    }

    Options<T> options;
    T initial;
    Read read;
    Write write;
};

} // namespace zo::kit::impl
