// Readers that resolve the tags of a document through a set and store its values.
//
// There is one reader for each depth, used again for every element there, so a load allocates nothing for an element.
#pragma once

#include "Common/model/IZO.h"
#include "Common/xml/Read.h"

#include "support/xml/XmlElemReader.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zo {
class ZOArray;
struct ZORegistryImpl;
} // namespace zo

namespace zo::xml::impl {

class ZORootReader;

/// Reads the elements of one depth, one after the other.
class ZOElemReader : public sys::file::XmlElemReader {
public:
    /// Both outlive the reader; the root reader passes itself and no parent. `skip` refuses child elements.
    ZOElemReader(ZOElemReader* parent, ZORootReader* root, bool skip = false);
    ~ZOElemReader() override;

    htl::handle<sys::file::XmlElemReader> Element(std::wstring const& tag) override;
    void Attribute(sys::file::XmlAttribute const& item) override;
    void Text(std::wstring const& text) override;

    virtual std::wstring LocalTag() const;
    /// The path of the current element, shortened as the names of unknown items are.
    virtual std::wstring FullTag() const;
    /// The last two or three steps of the path, for messages.
    virtual std::wstring ErrorTag() const;

    /// Lets go of the nodes of the elements below the current one: a view that is held on to would keep the array that
    /// it lies in from being resized.
    void DropBelow() noexcept;

protected:
    static constexpr std::uint32_t noUnknown = 0xFFFFFFFFu;

    /// `Element`, with `reader` (made if it is null) as the child.
    htl::handle<sys::file::XmlElemReader> Element_(htl::handle<ZOElemReader>& reader, std::wstring const& tag);

    ZOElemReader* parent;
    std::wstring tag;
    bool skip;
    bool arrayMode = false; // the element had a good "Len": its child elements are entries
    std::uint32_t unknownIndex = noUnknown;
    ZORootReader* root;
    H node;
    ZOArray* array = nullptr; // the node, set with arrayMode
    std::size_t position = IZO::npos;
    htl::handle<ZOElemReader> child;

private:
    /// The rows of the attributes of the last element, in the order of the document. Records repeat each other, so the
    /// next one is mostly answered without a search.
    class AttributeRows {
    public:
        void Rewind() noexcept { next = 0; }
        /// The child row of `regID` for a tag, npos without one.
        std::size_t Find(ZORegistryImpl const& tables, std::size_t regID, std::wstring const& tag);

    private:
        struct Hit {
            std::wstring tag;
            std::size_t row;
        };
        std::vector<Hit> hits;
        std::size_t parentRow = IZO::npos;
        std::size_t next = 0;
    };

    void Reset_();
    void BecomeUnknown_();
    /// The node that a child element stands for: below a link only a child of the link's own.
    H Child_(std::wstring const& tag) const;
    bool TakesPart_() const;
    void ReadLength_(sys::file::XmlAttribute const& item);
    H SubNode_(std::wstring const& name);
    H SubNodeOfOtherSet_(std::wstring const& name) const;
    void Report_(std::wstring const& name, std::wstring const& value, htl::status const& cause);

    mutable std::wstring fullTag; // worked out once for each element; empty until then
    ZOElemReader* used = nullptr; // the reader of the last child element, while it may hold nodes
    AttributeRows attributeRows;
};

/// Reads only the child elements that a filter names.
class ZOSkipReader : public ZOElemReader {
public:
    ZOSkipReader(ZOElemReader* parent, ZORootReader* root, Filter const& filter);
    ~ZOSkipReader() override;

    htl::handle<sys::file::XmlElemReader> Element(std::wstring const& tag) override;

private:
    void AddFilter_(std::wstring_view path, bool flag);

    bool skipUnlisted = false;
    std::vector<std::pair<std::wstring, bool>> filterNames;
    std::vector<htl::handle<ZOElemReader>> filterReaders; // beside the names
};

/// Reads the document element and holds what the whole load has in common.
class ZORootReader final : public ZOSkipReader {
public:
    /// `set` outlives the reader. The node is the set's root. `documentSize` in bytes bounds what the lengths of arrays
    /// may claim; npos where it isn't known.
    ZORootReader(ZOSet* set, TagPolicy const& policy, Filter const& filter, std::size_t documentSize = IZO::npos);
    ~ZORootReader() override;

    void Attribute(sys::file::XmlAttribute const& item) override;
    std::wstring LocalTag() const override;
    std::wstring FullTag() const override;
    std::wstring ErrorTag() const override;

    double Version() const noexcept { return version; }
    XMLError& Errors() noexcept { return errors; }
    Unknowns& UnknownItems() noexcept { return unknown; }

private:
    friend class ZOElemReader;

    /// Whether nodes of a row persist. Asked of the first node of each row.
    bool Persists_(IZO const& of);
    /// Whether a document of this size can hold so many entries beside those that were claimed before. Counts them if
    /// so.
    bool Claims_(std::size_t entries) noexcept;

    double version;
    ZOSet* set;
    ZORegistryImpl& tables; // of the registry that is current during the load
    XMLError errors;
    Unknowns unknown;
    TagPolicy tagPolicy;

    enum class Answer : unsigned char { Open, Yes, No };
    std::size_t entriesLeft;      // that lengths of arrays may still claim; npos for any number
    std::vector<Answer> persists; // by row
};

} // namespace zo::xml::impl
