#include "Common/xml/Write.h"

#include "Common/model/ZOAccessTrait.h"
#include "Common/registry/Find.h"
#include "Common/registry/SetImpl.h"
#include "Common/xml/ElemWriter.h"
#include "Common/xml/PersistTree.h"

#include "support/xml/XmlFile.h"

#include <cstddef>
#include <limits>
#include <stdexcept>

namespace zo {
namespace xml {
namespace {

htl::handle<sys::file::XmlElemWriter> MakeWriter(std::pair<impl::ZOPersistEntry*, impl::ZOPersistEntry*> roots,
                                                 hzn::version::NumberKind<0> const& version,
                                                 std::vector<std::wstring> const* filter) {
    return htl::handle<sys::file::XmlElemWriter>(
        new impl::ZOElemWriterRoot(roots.first, roots.second, version, filter));
}

} // namespace

htl::status FileWrite(std::wstring const& path, hzn::version::NumberKind<0> const& version) {
    auto const roots = impl::PersistRoots(true);
    TrackingSuspension const suspended(*ZORegistry::Instance()->Impl());
    auto const writer = MakeWriter(roots, version, nullptr);
    return sys::file::XmlFileWrite(path, writer);
}

htl::status StringWrite(std::wstring& text, hzn::version::NumberKind<0> const& version, std::size_t reserve,
                        std::vector<std::wstring> const* filter) {
    text.clear();
    auto const roots = impl::PersistRoots(true);
    TrackingSuspension const suspended(*ZORegistry::Instance()->Impl());

    // The document takes memory as it grows, so there is nothing to set aside.
    if (reserve > static_cast<std::size_t>(std::numeric_limits<std::ptrdiff_t>::max()))
        throw std::length_error("vector too long");
    return sys::file::XmlTextWrite(text, MakeWriter(roots, version, filter));
}

std::wstring TransformForWriteFilterList(H const& node) {
    // No path has an empty step, so this one matches only the document element above it.
    if (!node) return L"HZNData..";
    return L"HZNData." + node->TagName(FullTagType);
}

namespace rootattribute {

std::wstring AppVersion() { return L"AppVersion"; }

std::wstring FileVersion() { return L"Version"; }

} // namespace rootattribute
} // namespace xml

namespace {

bool IsAtDefault(H const& value, meta::MetaTraitsAtomic const& record) {
    if (!record.isDefault) return false;
    ZOAccessValueTypeTrait<bool> question(record.isDefault);
    // A value that can't be read leaves the answer at false.
    (void)impl::NodeAccess::CallValueTypeTrait(*value, question);
    return question.Result();
}

// Aliases can lead back to where the walk came from.
constexpr unsigned identicalDepthLimit = 1000;

bool AreIdentical(H const& a, H const& b, unsigned depth) {
    if (!a || a->GetPersistTraits().Type == meta::MetaPersistTraits::No || depth > identicalDepthLimit) return true;
    if (auto const traits = a->GetDataTraits(); auto const* record = traits.AsAtomic()) {
        if (!b) return IsAtDefault(a, *record);
        std::wstring left, right;
        // A value that can't be read counts as empty.
        (void)a->Get(left);
        (void)b->Get(right);
        return left == right;
    }
    for (ZOFwrdIterator at = a->begin(); at.current; ++at) {
        H const counterpart = b ? Find(b, at.current->SubName()) : H();
        if (!AreIdentical(at.current, counterpart, depth + 1)) return false;
    }
    return true;
}

} // namespace

bool AreZOsIdenticalUsingPersistance(H const& a, H const& b) { return AreIdentical(a, b, 0); }

} // namespace zo
