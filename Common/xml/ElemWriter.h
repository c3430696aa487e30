// Cursors that walk the persist tree beside the live nodes and give the XML layer one element at a time.
//
// There is one cursor and one live node for each depth, whatever the size of the document.
#pragma once

#include "Common/model/CastCache.h"
#include "Common/xml/PersistEntry.h"
#include "Common/xml/WriteFilter.h"

#include "support/version.h"
#include "support/xml/XmlElemWriter.h"

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zo {
class ZOArray;
class ZOSet;
} // namespace zo

namespace zo::xml::impl {

class ZOElemWriterArrayEntry;

/// A cursor over the children of a structure. It reads the current registry and is used while tracking is suspended.
class ZOElemWriter : public sys::file::XmlElemWriter {
public:
    using Selection = WriteFilter::Selection;

    /// Stands on the first child that has a node; `IsAtEnd` if there is none. The first entry is taken as it is, the
    /// later ones only if their store is active. `parent` and `filter` (null for none) outlive the cursor.
    ZOElemWriter(ZOPersistEntry const* first, ZOPersistEntry const* end, ZOElemWriter* parent,
                 WriteFilter const* filter);
    ~ZOElemWriter() override;

    std::wstring Tag() override;
    std::wstring Text() override;
    std::pair<sys::file::XmlAttribute const*, sys::file::XmlAttribute const*> Attributes() override;
    htl::handle<sys::file::XmlElemWriter> Next() override;
    htl::handle<sys::file::XmlElemWriter> FirstChild() override;
    bool IsArrayEntry() override;

    /// The path that filters are compared with: "HZNData.Items[2].Title".
    virtual std::wstring FilterPath() const;
    virtual std::wstring LocalTag() const;
    /// The last steps of the path, for messages.
    virtual std::wstring ErrorTag() const;

    bool IsAtEnd() const noexcept { return current == end; }

protected:
    struct Unplaced {};

    /// For derived cursors, which find their first node themselves.
    ZOElemWriter(Unplaced, ZOPersistEntry const* first, ZOPersistEntry const* end, ZOElemWriter* parent,
                 WriteFilter const* filter);

    void Prepare_();
    /// Fetches the value of the current element into `text`; empty where it is left out. Whether it is to be written.
    bool FetchText_();
    Selection AskFilter_() const;
    /// Stands on the first of other entries under the same parent.
    void Restart_(ZOPersistEntry const* first, ZOPersistEntry const* last);
    /// Memory for one more attribute, emptied. It counts from `attributeCount` on.
    sys::file::XmlAttribute& Slot_();
    void AddAttribute_(std::wstring_view name, std::wstring_view value);

    // Elements past the count are spare: their texts keep their memory for the next element.
    std::vector<sys::file::XmlAttribute> attributes;
    std::size_t attributeCount = 0;
    std::wstring text;
    bool hasText = false;
    bool textIsGone = false; // handed over, to be fetched again if somebody asks twice
    ZOPersistEntry const* current;
    ZOPersistEntry const* end;
    ZOElemWriter* parent;
    H node;
    std::size_t length = 0; // of the current array
    WriteFilter const* filter;
    Selection selection = Selection::All; // of the current element
    ZOSet& registry;                      // the one that is current during the write

private:
    friend class ZOElemWriterArrayEntry;

    /// Steps to the next active sibling; false at the end.
    bool Step_();

    zo::impl::CastCache<IZOWrapper> asWrapper;
    std::vector<std::wstring const*> slotTags; // what each attribute's name was copied from, or null
    // Cursors of the last children, used again once nobody else holds them.
    htl::handle<ZOElemWriter> spareChild;
    htl::handle<ZOElemWriterArrayEntry> spareEntries;
};

/// The cursor on the document element.
class ZOElemWriterRoot final : public ZOElemWriter {
public:
    ZOElemWriterRoot(ZOPersistEntry const* first, ZOPersistEntry const* end, hzn::version::NumberKind<0> const& version,
                     std::vector<std::wstring> const* filter);

    std::wstring ErrorTag() const override;

private:
    hzn::version::NumberKind<0> version;
    std::optional<WriteFilter> texts;
};

/// A cursor over the entries of an array, which all have one persist entry.
class ZOElemWriterArrayEntry final : public ZOElemWriter {
public:
    /// Stands on the first entry; `HasEntry` says whether there is one. `array` is held by the parent.
    ZOElemWriterArrayEntry(ZOPersistEntry const* first, ZOPersistEntry const* end, ZOElemWriter* parent, ZOArray* array,
                           WriteFilter const* filter);

    htl::handle<sys::file::XmlElemWriter> Next() override;
    bool IsArrayEntry() override;
    std::wstring FilterPath() const override;
    std::wstring LocalTag() const override;

    bool HasEntry() const noexcept { return static_cast<bool>(node); }

private:
    friend class ZOElemWriter;

    void Restart_(ZOPersistEntry const* first, ZOPersistEntry const* last, ZOArray* other);

    ZOArray* array;
    std::size_t index = 0;
};

} // namespace zo::xml::impl
