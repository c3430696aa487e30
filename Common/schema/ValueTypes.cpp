#include "Common/schema/ValueTypes.h"

#include "support/text.h"

#include <array>
#include <iterator>
#include <string_view>
#include <typeinfo>
#include <utility>

namespace zo::schema::impl {
namespace {

using meta::MetaDataTraits;
using meta::MetaTraitsAtomic;

constexpr std::wstring_view anyText = L"xs:string";
constexpr std::wstring_view wholePlace = L"[+\\-]?[0-9]+";
constexpr std::wstring_view numberPlace = L"[+\\-]?([0-9]+(\\.[0-9]*)?|\\.[0-9]+)([eE][+\\-]?[0-9]+)?";

/// The whole numbers and truth values that XML Schema has types for.
struct BuiltIn {
    std::type_info const* type;
    std::wstring_view name;
    std::wstring_view place;
};
std::array const builtIns = {
    BuiltIn{&typeid(unsigned char), L"unsignedByte", wholePlace},
    BuiltIn{&typeid(int), L"int", wholePlace},
    BuiltIn{&typeid(unsigned), L"unsignedInt", wholePlace},
    BuiltIn{&typeid(long), sizeof(long) == 8 ? L"long" : L"int", wholePlace},
    BuiltIn{&typeid(unsigned long), sizeof(long) == 8 ? L"unsignedLong" : L"unsignedInt", wholePlace},
    BuiltIn{&typeid(htl::Int64), L"long", wholePlace},
    BuiltIn{&typeid(htl::UInt64), L"unsignedLong", wholePlace},
    BuiltIn{&typeid(DataParamType), L"int", wholePlace},
    BuiltIn{&typeid(bool), L"boolean", L"true|false|1|0"},
};

BuiltIn const* BuiltInOf(std::type_info const& type) {
    for (BuiltIn const& row : builtIns)
        if (*row.type == type) return &row;
    return nullptr;
}

bool IsText(std::type_info const& type) { return type == typeid(std::string) || type == typeid(std::wstring); }

/// The last part of a type's name, as far as letters and digits go.
std::wstring ShortName(MetaDataTraits const& traits) {
    std::string const full = traits.TypeName();
    std::size_t const colon = full.substr(0, full.find('<')).rfind(':');
    std::wstring name;
    for (char const c : full.substr(colon == full.npos ? 0 : colon + 1)) {
        bool const isLetter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
        if (isLetter || (!name.empty() && c >= '0' && c <= '9')) name += static_cast<wchar_t>(c);
    }
    return name.empty() ? L"words" : name;
}

void AppendLiteral(std::wstring& pattern, std::wstring const& word) {
    constexpr std::wstring_view special = L".\\?*+{}()[]|^-";
    for (wchar_t const c : word) {
        if (special.find(c) != special.npos) pattern += L'\\';
        pattern += c;
    }
}

} // namespace

std::wstring ValueTypes::Claim(std::wstring const& wanted) {
    std::wstring name = wanted;
    for (unsigned number = 2; !names.insert(name).second; ++number) name = wanted + std::to_wstring(number);
    return name;
}

void ValueTypes::MoveTo(Element& schema) {
    schema.children.insert(schema.children.end(), std::make_move_iterator(declarations.begin()),
                           std::make_move_iterator(declarations.end()));
    declarations.clear();
}

std::wstring ValueTypes::Single(MetaDataTraits const& traits) { return Of_(traits).name; }

std::wstring ValueTypes::List(MetaDataTraits const& elements) {
    Known const& element = Of_(elements);
    if (element.place.empty()) return std::wstring(anyText);
    std::wstring& name = lists[element.name];
    if (!name.empty()) return name;
    // Places may be empty, and blanks around a number count for nothing. Words keep theirs.
    bool const isNumber = element.place == wholePlace || element.place == numberPlace;
    std::wstring const place = isNumber ? L"( ?" + element.place + L" ?)?" : L'(' + element.place + L")?";
    name = Pattern_(element.name + L"List", place + L"(," + place + L")*", isNumber ? L"xs:token" : L"xs:string");
    return name;
}

std::wstring ValueTypes::ElementOf(std::wstring const& text) {
    std::wstring& name = elements[text];
    if (!name.empty()) return name;
    name = Claim(text == anyText ? L"textElement" : text + L"Element");
    std::wstring const missing = Pattern_(L"missing", L"true", L"xs:token");
    Element& type = declarations.emplace_back(L"xs:complexType").With(L"name", name);
    Element& extension = type.Add(L"xs:simpleContent").Add(L"xs:extension").With(L"base", text);
    extension.Add(L"xs:attribute").With(L"name", L"Missing").With(L"type", missing);
    return name;
}

std::wstring ValueTypes::Length() {
    Known& known = byContent[L"length"];
    if (!known.name.empty()) return known.name;
    known.name = Claim(L"length");
    Element& type = declarations.emplace_back(L"xs:simpleType").With(L"name", known.name);
    Element& restriction = type.Add(L"xs:restriction").With(L"base", L"xs:unsignedInt");
    restriction.Add(L"xs:maxInclusive").With(L"value", L"2147483647");
    restriction.Add(L"xs:pattern").With(L"value", L"[0-9]+");
    return known.name;
}

std::wstring ValueTypes::Version() { return Pattern_(L"version", L"[0-9]+(\\.[0-9]+)?", L"xs:token"); }

std::wstring ValueTypes::AppVersion() { return Pattern_(L"appVersion", L"[0-9]+(\\.[0-9]+){0,3}", L"xs:token"); }

ValueTypes::Known const& ValueTypes::Of_(MetaDataTraits const& traits) {
    static Known const any{std::wstring(anyText), {}};
    MetaTraitsAtomic const* const record = traits.AsAtomic();
    if (!record || !record->type) return any;
    if (auto const found = byRecord.find(record); found != byRecord.end()) return found->second.known;

    std::type_info const& type = *record->type;
    std::vector<std::wstring> words;
    if (record->valueList) record->valueList(words, 0);
    BuiltIn const* builtIn = BuiltInOf(type);
    bool const isNumber = type == typeid(double) || type == typeid(float);
    // Client types that are no enumeration may have any text.
    if (!builtIn && !isNumber && (words.empty() || IsText(type))) return any;
    // An enumeration may hold a number without a word.
    if (!builtIn) builtIn = BuiltInOf(typeid(int));

    Known const& base = isNumber ? Number_()
                                 : OrEmpty_(std::wstring(builtIn->name), L"xs:" + std::wstring(builtIn->name),
                                            std::wstring(builtIn->place));
    Known const& known = words.empty() ? base : Enumeration_(*record, words, base);
    return byRecord.emplace(record, Met{traits, known}).first->second.known;
}

ValueTypes::Known const& ValueTypes::Number_() {
    Known& known = byContent[L"number"];
    if (!known.name.empty()) return known;
    known.place = numberPlace;
    known.name = Pattern_(L"number", L'(' + known.place + L")?", L"xs:token");
    return known;
}

ValueTypes::Known const& ValueTypes::OrEmpty_(std::wstring const& name, std::wstring const& base,
                                              std::wstring const& place) {
    Known& known = byContent[base];
    if (!known.name.empty()) return known;
    known.name = Claim(name);
    known.place = place;
    std::wstring const members = base + L' ' + Empty_();
    Element& type = declarations.emplace_back(L"xs:simpleType").With(L"name", known.name);
    type.Add(L"xs:union").With(L"memberTypes", members);
    return known;
}

ValueTypes::Known const& ValueTypes::Enumeration_(MetaTraitsAtomic const& record,
                                                  std::vector<std::wstring> const& words, Known const& base) {
    MetaDataTraits const traits(record);
    // Rows may each have a record of the same enumeration.
    std::wstring content = base.name + L'\0' + str::as_wstring(traits.TypeName());
    for (std::wstring const& word : words) (content += L'\0') += word;
    Known& known = byContent[content];
    if (!known.name.empty()) return known;

    known.name = Claim(ShortName(traits));
    known.place = base.place;
    Element& type = declarations.emplace_back(L"xs:simpleType").With(L"name", known.name);
    Element& all = type.Add(L"xs:union").With(L"memberTypes", base.name);
    Element& restriction = all.Add(L"xs:simpleType").Add(L"xs:restriction").With(L"base", anyText);
    std::unordered_set<std::wstring_view> seen;
    for (std::wstring const& word : words) {
        if (!seen.insert(word).second) continue;
        restriction.Add(L"xs:enumeration").With(L"value", word);
        known.place += L'|';
        AppendLiteral(known.place, word);
    }
    return known;
}

std::wstring ValueTypes::Pattern_(std::wstring const& name, std::wstring const& pattern, wchar_t const* base) {
    Known& known = byContent[name + L'\0' + pattern];
    if (!known.name.empty()) return known.name;
    known.name = Claim(name);
    Element& type = declarations.emplace_back(L"xs:simpleType").With(L"name", known.name);
    Element& restriction = type.Add(L"xs:restriction").With(L"base", base);
    restriction.Add(L"xs:pattern").With(L"value", pattern);
    return known.name;
}

std::wstring ValueTypes::Empty_() {
    Known& known = byContent[L"empty"];
    if (!known.name.empty()) return known.name;
    known.name = Claim(L"empty");
    Element& type = declarations.emplace_back(L"xs:simpleType").With(L"name", known.name);
    type.Add(L"xs:restriction").With(L"base", L"xs:token").Add(L"xs:length").With(L"value", L"0");
    return known.name;
}

} // namespace zo::schema::impl
