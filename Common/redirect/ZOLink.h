// Links: values that refer to a record and act as a door to it.
//
// A link field stores the number of a record; its descriptor names the record's group. Below the field's node stand the
// record's own fields, and "@" is the record itself: `Regions[2].Material.Cohesion`, `Regions[2].Material.@`.
#pragma once

#include "Common/model/ZOWrapper.h"
#include "Common/registry/ZORedirect.h"

#include "support/gid.h"

#include <string>

namespace zo {

/// The part of a node that shows another node's children.
class ZO_API ZOLink : public ZORedirect {
public:
    /// A walk over the target's children; at the end without a target.
    ZOFwrdIterator LinkBegin();
    /// Steps to the target's next child. An iterator without a parent ends.
    void LinkGetNextSubZO(ZOFwrdIterator& position);
    /// The child of the target, or the target itself for "@". Empty without a target.
    H LinkGetSubZO(std::string const& name);
};

/// A view of a value that refers to something else. Its own registered children hide those of the target.
///
/// A derived class says where the link leads: by `RedirectName`, or by its own `Redirect`.
class ZO_API ZOWrapperLinkBase : public ZOWrapperBase, public ZOLink {
public:
    /// As `ZOWrapperBase`.
    ZOWrapperLinkBase(std::size_t regID, ZOSet* owner, meta::MetaDataTraits const& traits, void* memory,
                      htl::handle<ZOMemMgr> const& manager);
    ZOWrapperLinkBase(ZOWrapperLinkBase const& other);
    /// Copies.
    ZOWrapperLinkBase(ZOWrapperLinkBase&& other); // NOLINT(performance-noexcept-move-constructor): it copies

    ZOFwrdIterator begin() override;

protected:
    ~ZOWrapperLinkBase() override;
    H GetSubZO(std::string const& name) override;
    void GetNextSubZO(ZOFwrdIterator& position) override;
};

/// Knows where records are.
///
/// Lifetime: counted, for views of links outlive the registry that made them.
class ZO_API RecordNames : public htl::handle_ref_counter {
public:
    /// The name of a record's node in `set`, "" for none. Asked at each step through a link.
    virtual std::string NameOf(GGID const& record, ZOSet& set) const = 0;

protected:
    ~RecordNames() override;
};

/// Reads and writes a link's number in client memory, and leads to the record.
template <class T>
class ZO_API ZOAccessLink : public ZOWrapperLinkBase {
public:
    /// With `names` empty the link leads nowhere.
    ZOAccessLink(std::size_t regID, ZOSet* owner, meta::MetaDataTraits const& traits, void* memory,
                 htl::handle<ZOMemMgr> const& manager, htl::handle<RecordNames const> names);

    /// The number in memory.
    T GetData() const;
    /// Writes it to memory; always succeeds.
    htl::status SetData(T const& value);
    /// The name of the record that the value refers to; "" for no record.
    std::string RedirectName() const override;

protected:
    htl::handle<RecordNames const> names; ///< may be empty
};

/// A link field over client memory that holds the record's number: a value node like any other, and the record's door.
/// Detached, it is the number alone.
template <class T>
class ZO_API ZOWrapperLink final : public ZOAtomicAccess<ZOAccessLink<T>, ZOAtomicData<T>> {
    using Base = ZOAtomicAccess<ZOAccessLink<T>, ZOAtomicData<T>>;

public:
    using Base::Base;
    /// The number in memory.
    T GetData() const override { return ZOAccessLink<T>::GetData(); }
    IZO* RemapClone(void* memory, htl::handle<ZOMemMgr> const& manager) override;
    /// A registered prototype gives the default value.
    IZO* Clone() override;
    ZOFwrdIterator begin() override { return ZOWrapperLinkBase::begin(); }

    static void* operator new(std::size_t size);
    static void operator delete(void* block, std::size_t size);
};

extern template class ZO_API ZOAccessLink<int>;
extern template class ZO_API ZOAccessLink<unsigned>;
extern template class ZO_API ZOAccessLink<long>;
extern template class ZO_API ZOAccessLink<unsigned long>;
extern template class ZO_API ZOAccessLink<htl::Int64>;
extern template class ZO_API ZOAccessLink<htl::UInt64>;
extern template class ZO_API ZOAtomicAccess<ZOAccessLink<int>, ZOAtomicData<int>>;
extern template class ZO_API ZOAtomicAccess<ZOAccessLink<unsigned>, ZOAtomicData<unsigned>>;
extern template class ZO_API ZOAtomicAccess<ZOAccessLink<long>, ZOAtomicData<long>>;
extern template class ZO_API ZOAtomicAccess<ZOAccessLink<unsigned long>, ZOAtomicData<unsigned long>>;
extern template class ZO_API ZOAtomicAccess<ZOAccessLink<htl::Int64>, ZOAtomicData<htl::Int64>>;
extern template class ZO_API ZOAtomicAccess<ZOAccessLink<htl::UInt64>, ZOAtomicData<htl::UInt64>>;
extern template class ZO_API ZOWrapperLink<int>;
extern template class ZO_API ZOWrapperLink<unsigned>;
extern template class ZO_API ZOWrapperLink<long>;
extern template class ZO_API ZOWrapperLink<unsigned long>;
extern template class ZO_API ZOWrapperLink<htl::Int64>;
extern template class ZO_API ZOWrapperLink<htl::UInt64>;

} // namespace zo
