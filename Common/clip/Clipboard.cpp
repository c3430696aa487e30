#include "Common/clip/Clipboard.h"

#include "Common/clip/Merge.h"
#include "Common/clip/ZOClipImportTransaction.h"
#include "Common/xml/Read.h"

#include "support/number.h"
#include "support/text.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zo::clip {
namespace {

using FileVersion = hzn::version::NumberKind<0>;

constexpr double noVersion = std::numeric_limits<double>::max();

/// A version as people write it; a number that is none as it is.
std::wstring TextOfVersion(double version) {
    if (version >= 0 && version < 1e6) {
        FileVersion known{static_cast<unsigned>(version), 0};
        known.minorPart = static_cast<unsigned>(std::lround((version - known.majorPart) * 100));
        if (known.minorPart < 100 && hzn::version::number::Encode(known) == version) return str::as_wstring(known);
    }
    std::wstring text;
    math::AppendNumber(text, version);
    return text;
}

/// Empties the list of reasons, or stands for one that nobody wants.
class Reasons {
public:
    explicit Reasons(std::vector<htl::status>* wanted) : list(wanted ? *wanted : own) { list.clear(); }
    Reasons(Reasons const&) = delete;
    Reasons& operator=(Reasons const&) = delete;
    std::vector<htl::status>& operator*() noexcept { return list; }
    std::vector<htl::status>* operator->() noexcept { return &list; }

private:
    std::vector<htl::status> own;
    std::vector<htl::status>& list;
};

} // namespace

bool Contains(GID const& id, ClipboardContents& contents, FileVersion const& version) {
    if (contents.version != str::as_wstring(version)) return false;
    std::vector<std::wstring> containers;
    str::split(containers, contents.objects, L",");
    return std::find(containers.begin(), containers.end(), std::to_wstring(id)) != containers.end();
}

htl::status Deserialize(GID const& id, ClipboardContents& contents, FileVersion const& version,
                        std::vector<std::wstring>& names, std::string const& path, std::vector<htl::status>* reasons) {
    if (!hzn::gid::IsNestedContainerId(id)) return Deserialize(id, {}, {}, contents, version, names, path, reasons);
    GGID const around = hzn::gid::ContainerRef({}, id).EnclosingRecordId();
    return Deserialize(id & 0xFFFFu, around, around, contents, version, names, path, reasons);
}

htl::status Deserialize(GID const& id, GGID const& source, GGID const& target, ClipboardContents& contents,
                        FileVersion const& version, std::vector<std::wstring>& names, std::string const& path,
                        std::vector<htl::status>* reasons) {
    auto const transaction = MakeClipImportTransaction();
    if (htl::status failure = DeserializeToTransaction(transaction, contents.document, version, reasons);
        failure.IsError())
        return failure;
    return DeserializeFromTransaction(id, source, target, transaction, names, path, reasons);
}

htl::handle<ZOTransaction> MakeClipImportTransaction() {
    return htl::handle<ZOTransaction>(new ZOClipImportTransaction);
}

htl::status DeserializeToTransaction(htl::handle<ZOTransaction> const& transaction, std::wstring const& document,
                                     FileVersion const& version, std::vector<htl::status>* reasons) {
    Reasons why(reasons);
    // Without a set a document would be read into the registry.
    if (!transaction) return impl::CannotPaste();
    double read = noVersion;
    auto const handler = [&read](ZOSet* set, xml::Unknowns& unknowns, double found, xml::impl::XMLError& errors) {
        xml::impl::UnknownAreErrors()(set, unknowns, found, errors);
        read = found;
    };
    htl::status const failure =
        xml::StringImport(document, *why, {}, transaction.get(), handler, xml::impl::UnknownTagIsMissing());
    if (failure.IsError()) {
        why->assign(1, failure);
        return impl::CannotPaste();
    }
    if (!why->empty()) return impl::CannotPaste();
    if (read == hzn::version::number::Encode(version)) return {};
    std::wstring const expected = str::as_wstring(version);
    why->push_back(read == noVersion ? htl::status(90015, expected)
                                     : htl::status(90014, TextOfVersion(read), expected));
    return impl::CannotPaste();
}

htl::status DeserializeFromTransaction(GID const& id, GGID const& source, GGID const& target,
                                       htl::handle<ZOTransaction> const& transaction, std::vector<std::wstring>& names,
                                       std::string const&, std::vector<htl::status>* reasons) {
    Reasons failures(reasons);
    if (!transaction) return impl::CannotPaste();
    if (auto* const lockable = dynamic_cast<impl::ZOTransactionLockable*>(transaction.get())) lockable->locked = true;
    impl::Merge(*transaction, names, *failures).Run(id, source, target);
    return failures->empty() ? htl::status() : failures->front();
}

} // namespace zo::clip
