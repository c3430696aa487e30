// The texts of values as an XML Schema tells them: numbers, words of enumerations, lists.
#pragma once

#include "Common/schema/ElementTree.h"

#include "support/meta.h"

#include <map>
#include <string>
#include <unordered_set>
#include <vector>

namespace zo::schema::impl {

/// Names the types of values, each when it is first asked for, so that a schema declares what it uses and no more.
///
/// An empty text is a value of every type: it stands for a missing one, and where an element of an array is at its
/// default.
class ValueTypes {
public:
    /// The type of one value's text; any text for what is no value.
    std::wstring Single(meta::MetaDataTraits const& traits);
    /// The type of the text of an array with such elements.
    std::wstring List(meta::MetaDataTraits const& elements);
    /// The type of an element whose text is of type `text`.
    std::wstring ElementOf(std::wstring const& text);
    /// The types that all documents use.
    std::wstring Length();
    std::wstring Version();
    std::wstring AppVersion();

    /// Makes a name that no type has yet, beginning with `wanted`.
    std::wstring Claim(std::wstring const& wanted);
    /// Moves the declarations behind the other children of the schema.
    void MoveTo(Element& schema);

private:
    struct Known {
        std::wstring name;
        std::wstring place; // in a list: a regular expression; empty if any text may stand there
    };
    /// A record that was met; held, so that no other one takes its address.
    struct Met {
        meta::MetaDataTraits traits;
        Known known;
    };

    Known const& Of_(meta::MetaDataTraits const& traits);
    Known const& OrEmpty_(std::wstring const& name, std::wstring const& base, std::wstring const& place);
    Known const& Number_();
    Known const& Enumeration_(meta::MetaTraitsAtomic const& record, std::vector<std::wstring> const& words,
                              Known const& base);
    std::wstring Pattern_(std::wstring const& name, std::wstring const& pattern, wchar_t const* base);
    std::wstring Empty_();

    std::map<meta::MetaTraits const*, Met> byRecord;
    std::map<std::wstring, Known> byContent;       // by what tells one type from another
    std::map<std::wstring, std::wstring> lists;    // by the name of the element's type
    std::map<std::wstring, std::wstring> elements; // by the name of the text's type
    std::unordered_set<std::wstring> names;
    std::vector<Element> declarations;
};

} // namespace zo::schema::impl
