// A document has the shape of the persist tree, so a schema of it is a walk over that tree: each entry that is written
// as an element with something in it gives a type of its own, named after the path of its tags.
#include "Common/schema/Xsd.h"

#include "Common/extinfo/ExtendedInfoStore.h"
#include "Common/present/UnitsProvider.h"
#include "Common/present/Values.h"
#include "Common/registry/RegistryImpl.h"
#include "Common/schema/ElementTree.h"
#include "Common/schema/ValueTypes.h"
#include "Common/xml/PersistTree.h"
#include "Common/xml/Write.h"

#include "support/lock.h"
#include "support/xml/XmlFile.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace zo::schema {
namespace {

using impl::Element;
using meta::MetaDataTraits;
using xml::impl::ZOPersistEntry;

/// Whether a schema can declare elements and attributes of this name. Colons belong to namespaces there.
bool IsDeclarable(std::wstring const& tag) { return sys::file::IsXmlName(tag) && tag.find(L':') == std::wstring::npos; }

/// What the table calls a row, without marks of accelerators.
std::wstring LabelOf(std::size_t regID) {
    ExtendedInfoStore& store = extinfo::Store();
    sys::thread::impl::ExclusiveAccessGuard const guard(store.Lock());
    std::size_t const index = store.Lookup(regID, ExtendedInfoField::Label);
    if (index == ExtendedInfoStore::End) return {};
    std::wstring label = store.Entry(index).Label;
    std::erase(label, L'&');
    return label;
}

/// What the elements of an array are registered as; null for an alias, and where nobody registered it.
ZOPersistEntry const* ElementOf(ZOPersistEntry const& array) {
    auto const found = std::find_if(array.children.begin(), array.children.end(),
                                    [](ZOPersistEntry const& child) { return child.name == "[]"; });
    return found == array.children.end() ? nullptr : &*found;
}

/// What people read of an entry: "Cohesion (Stress, kPa)".
std::wstring Documentation(ZOPersistEntry const& entry) {
    std::wstring text = LabelOf(entry.node->RegID());
    // What a list holds is measured by its elements.
    ZOPersistEntry const* const element = entry.isArray ? ElementOf(entry) : nullptr;
    hzn::units::Kind::Type const kind = Units((element ? *element : entry).node->RegID(), nullptr);
    std::wstring units = hzn::units::KindName(kind);
    if (kind == hzn::units::Kind::None || units.empty()) return text;
    // A document has the units that values are stored in, whatever people see.
    std::wstring const unit = hzn::units::GetEngUnitValueString(kind, zo::impl::ActiveUnits());
    if (!unit.empty()) units += L", " + unit;
    return text.empty() ? units : text + L" (" + units + L')';
}

void Document(Element& declaration, std::wstring const& text) {
    if (!text.empty()) declaration.Add(L"xs:annotation").Add(L"xs:documentation").text = text;
}

/// Validators take time by the cube of a sequence of elements that may all be absent: a second for some 1,000.
constexpr std::size_t longestSequence = 500;

/// The tags that several children of one entry have. Only rows that reach into each other by odd tag paths can.
class SharedTags {
public:
    explicit SharedTags(ZOPersistEntry const& entry) {
        std::unordered_map<std::wstring_view, ZOPersistEntry const*> seen;
        for (ZOPersistEntry const& child : entry.children) {
            auto const [at, isNew] = seen.emplace(child.persist.Tag, &child);
            if (!isNew) first.emplace(at->first, at->second);
        }
    }

    bool IsEmpty() const { return first.empty(); }
    bool Has(ZOPersistEntry const& child) const { return first.contains(child.persist.Tag); }
    /// Whether it is the first child with its tag, which is one of these.
    bool IsFirst(ZOPersistEntry const& child) const { return first.at(child.persist.Tag) == &child; }

private:
    std::unordered_map<std::wstring_view, ZOPersistEntry const*> first;
};

class XsdBuilder {
public:
    Element Build() {
        Element schema(L"xs:schema");
        schema.With(L"xmlns:xs", L"http://www.w3.org/2001/XMLSchema");
        ZOPersistEntry const& root = *xml::impl::PersistRoots(true).first;
        Document(schema, L"The project document. Elements stand in the order in which they are declared. What is "
                         L"absent is at its default, or not there at all.");
        std::wstring const& tag = root.persist.Tag;
        schema.Add(L"xs:element").With(L"name", tag).With(L"type", tag);
        (void)values.Claim(tag);
        pending.push_back({&root, tag});
        while (!pending.empty()) {
            Pending const next = pending.back();
            pending.pop_back();
            std::size_t const behind = pending.size();
            Element& type = schema.Add(L"xs:complexType").With(L"name", next.type);
            FillType_(type, *next.entry, next.type);
            if (next.entry == &root) AddVersions_(type);
            std::reverse(pending.begin() + static_cast<std::ptrdiff_t>(behind), pending.end());
        }
        values.MoveTo(schema);
        return schema;
    }

private:
    struct Pending {
        ZOPersistEntry const* entry;
        std::wstring type; // its name, the path of tags
    };

    /// The content of an element that has no text.
    void FillType_(Element& type, ZOPersistEntry const& entry, std::wstring const& path) {
        if (entry.isArray)
            FillArray_(type, entry, path);
        else if (entry.persist.IsAllChildrenValue)
            FillRecord_(type, entry);
        else if (!entry.children.empty())
            FillStructure_(type, entry, path);
    }

    Element& AddGroup_(Element& type, std::size_t children, bool hasSharedTags) {
        // A name may stand in a sequence once only, and its elements have one type.
        if (hasSharedTags) return type.Add(L"xs:choice").With(L"minOccurs", L"0").With(L"maxOccurs", L"unbounded");
        return type.Add(children > longestSequence ? L"xs:all" : L"xs:sequence");
    }

    void FillStructure_(Element& type, ZOPersistEntry const& entry, std::wstring const& path) {
        SharedTags const shared(entry);
        Element& group = AddGroup_(type, entry.children.size(), !shared.IsEmpty());
        for (ZOPersistEntry const& child : entry.children) {
            if (!IsDeclarable(child.persist.Tag)) continue;
            if (!shared.Has(child))
                AddElement_(group, child, path);
            else if (shared.IsFirst(child))
                group.Add(L"xs:element").With(L"name", child.persist.Tag).With(L"type", L"xs:anyType");
        }
    }

    void FillArray_(Element& type, ZOPersistEntry const& entry, std::wstring const& path) {
        // The tag of the first child is that of all elements.
        if (!entry.children.empty() && IsDeclarable(entry.children.front().persist.Tag))
            AddElement_(type.Add(L"xs:sequence"), entry.children.front(), path).With(L"maxOccurs", L"unbounded");
        type.Add(L"xs:attribute").With(L"name", L"Len").With(L"type", values.Length()).With(L"use", L"required");
    }

    void FillRecord_(Element& type, ZOPersistEntry const& entry) {
        SharedTags const shared(entry);
        for (ZOPersistEntry const& child : entry.children) {
            // Structures have no text, so they are no attributes either.
            if (!child.getter || child.traits.AsStructure() || !IsDeclarable(child.persist.Tag)) continue;
            if (shared.Has(child) && !shared.IsFirst(child)) continue;
            Element& attribute = type.Add(L"xs:attribute");
            attribute.With(L"name", child.persist.Tag);
            attribute.With(L"type", shared.Has(child) ? L"xs:string" : TextOf_(child));
            Document(attribute, Documentation(child));
        }
    }

    Element& AddElement_(Element& sequence, ZOPersistEntry const& entry, std::wstring const& path) {
        bool const hasText = entry.persist.IsPersistedAsValue;
        std::wstring const type = hasText ? values.ElementOf(TextOf_(entry)) : path + L'.' + entry.persist.Tag;
        if (!hasText) pending.push_back({&entry, type});
        Element& element = sequence.Add(L"xs:element");
        element.With(L"name", entry.persist.Tag).With(L"type", type).With(L"minOccurs", L"0");
        Document(element, Documentation(entry));
        return element;
    }

    std::wstring TextOf_(ZOPersistEntry const& entry) {
        // What an alias stands for may have come after it.
        bool const redirects = zo::impl::Current().redirects[entry.node->RegID()] != nullptr;
        MetaDataTraits const traits = redirects ? entry.node->GetDataTraits() : entry.traits;
        meta::MetaTraitsArray const* const array = traits.AsArray();
        if (!array) return values.Single(traits);
        if (ZOPersistEntry const* const element = ElementOf(entry)) return values.List(element->traits);
        return values.List(array->elementTraits ? array->elementTraits() : MetaDataTraits());
    }

    void AddVersions_(Element& type) {
        type.Add(L"xs:attribute")
            .With(L"name", xml::rootattribute::FileVersion())
            .With(L"type", values.Version())
            .With(L"use", L"required");
        type.Add(L"xs:attribute").With(L"name", xml::rootattribute::AppVersion()).With(L"type", values.AppVersion());
    }

    impl::ValueTypes values;
    std::vector<Pending> pending; // entries whose types are named already, the next one at the end
};

} // namespace

htl::status SaveXsd(std::wstring const& path) {
    Element const schema = XsdBuilder().Build();
    return sys::file::XmlFileWrite(path, impl::WriterOf(schema));
}

htl::status XsdText(std::string& utf8) {
    utf8.clear();
    Element const schema = XsdBuilder().Build();
    std::vector<unsigned char> bytes;
    if (htl::status failure = sys::file::XmlStringWrite(bytes, impl::WriterOf(schema)); failure.IsError())
        return failure;
    utf8.assign(bytes.begin(), bytes.end());
    return {};
}

} // namespace zo::schema
