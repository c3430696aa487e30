#include "Common/model/IZO.h"

#include "Common/model/ZOAccessTrait.h"

#include <cassert>
#include <iterator>

namespace zo {

// Operations that read the registry's tables are defined beside those, in Common/registry/NodeTables.cpp.

namespace {

/// Puts a question about the value to the node. A node that can't be asked answers no.
bool Ask(IZO const& node, std::function<bool(void const*)> const& question) {
    ZOAccessValueTypeTrait<bool> trait(question);
    // The question leaves the value as it is, so nothing is written.
    (void)impl::NodeAccess::CallValueTypeTrait(const_cast<IZO&>(node), trait);
    return trait.Result();
}

} // namespace

char const* const IZO::evName[1] = {"!Changed"};

char const* IZO::EventName(EventType event) {
    auto const index = static_cast<std::size_t>(event);
    assert(index < std::size(evName));
    return index < std::size(evName) ? evName[index] : "";
}

bool IZO::IsDefault() const {
    meta::MetaDataTraits const traits = GetDataTraits();
    if (auto const* const atomic = traits.AsAtomic()) return Ask(*this, atomic->isDefault);
    return traits.AsArray() && Length() == 0;
}

bool IZO::IsUndefined() const {
    meta::MetaDataTraits const traits = GetDataTraits();
    if (auto const* const atomic = traits.AsAtomic()) return Ask(*this, atomic->isMissing);
    return traits.AsArray() && Length() == 0;
}

std::size_t IZO::Length() const { return 1; }

htl::status IZO::Verify() const { return {}; }

void IZO::Clear() {}

htl::status IZO::Set(double const&) { return ZOError::not_supported(GetDataTraits().TypeName()); }
htl::status IZO::Set(__int64 const&) { return ZOError::not_supported(GetDataTraits().TypeName()); }
htl::status IZO::Set(bool const&) { return ZOError::not_supported(GetDataTraits().TypeName()); }
htl::status IZO::Set(std::wstring const&) { return ZOError::not_supported(GetDataTraits().TypeName()); }
htl::status IZO::Get(double&) { return ZOError::not_supported(GetDataTraits().TypeName()); }
htl::status IZO::Get(__int64&) { return ZOError::not_supported(GetDataTraits().TypeName()); }
htl::status IZO::Get(bool&) { return ZOError::not_supported(GetDataTraits().TypeName()); }
htl::status IZO::Get(std::wstring&) { return ZOError::not_supported(GetDataTraits().TypeName()); }

htl::status IZO::Run() { return ZOError::not_supported(""); }

IZO* IZO::EmptyClone() { return Clone(); }

htl::status IZO::Assign(H const&) { return ZOError::not_supported(""); }

htl::status IZO::CallValueTypeTrait(IZOAccessValueTypeTrait&) { return ZOError::not_supported("<IZO>"); }

void IZO::OnRegistration(std::size_t row) { regID = row; }

void IZO::OnInvalidateMemory() {}

htl::status IZO::Resize(std::size_t const&) { return ZOError::not_supported(""); }

std::wstring IZO::Tag() const { return GetPersistTraits().Tag; }

bool IZO::IsValueType() const { return GetDataTraits().AsAtomic() != nullptr; }

htl::status IZO::SetLength(std::size_t const& length) {
    // The present length is fine with every node, also with one that can't be resized.
    if (length == Length()) return {};
    return Resize(length);
}

ZOFwrdIterator IZO::end() { return {}; }

ZOFwrdIterator& ZOFwrdIterator::operator++() {
    if (parent)
        impl::NodeAccess::GetNextSubZO(*parent, *this);
    else
        current.release();
    return *this;
}

} // namespace zo
