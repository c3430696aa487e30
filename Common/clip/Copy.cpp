// From nodes to the text of what they and their links lead to.
#include "Common/clip/Clipboard.h"
#include "Common/clip/Rows.h"
#include "Common/model/ZOArray.h"
#include "Common/redirect/Identity.h"
#include "Common/registry/ZORedirect.h"
#include "Common/xml/Write.h"

#include "support/text.h"

#include <map>
#include <optional>
#include <set>
#include <unordered_set>
#include <utility>

namespace zo::clip {
namespace {

/// The records around some nodes and behind their links.
///
/// Links lead in chains and circles of any length, so nodes wait in a list of their own and not on the stack.
class Closure {
public:
    void Add(H const& node) {
        pending.push_back({node, {}});
        while (!pending.empty()) {
            Step const step = std::move(pending.back());
            pending.pop_back();
            Visit_(step);
        }
    }

    /// The containers of the records: their groups as text, sorted, each once.
    std::vector<std::wstring> Containers() const {
        std::set<std::wstring> texts;
        for (auto const& [record, text] : records) texts.insert(std::to_wstring(record.group));
        return {texts.begin(), texts.end()};
    }
    /// What selects the records in a document.
    std::vector<std::wstring> Filter() const {
        std::vector<std::wstring> texts;
        texts.reserve(records.size() + 1);
        for (auto const& [record, text] : records)
            if (text) texts.push_back(*text);
        return texts;
    }

private:
    struct Step {
        H node;
        GGID record; // that the node is known to be, or empty
    };

    static bool IsWritten(IZO const& node) {
        ZORegistryImpl const& tables = zo::impl::Current();
        std::size_t const row = node.RegID();
        // An alias answers with the traits of what it stands for now.
        auto const type = tables.HasRow(row) && !tables.redirects[row] ? tables.persistTraits[row].Type
                                                                       : node.GetPersistTraits().Type;
        return type != meta::MetaPersistTraits::No;
    }

    void Visit_(Step const& step) {
        H const& node = step.node;
        if (!node || !IsWritten(*node)) return;
        AddRecord_(node, step.record);
        if (IsLinkField(node)) return Follow_(node);
        // Aliases may lead back to where the walk came from.
        if (dynamic_cast<ZORedirect const*>(node.get()) && !entered.insert(GetSource(node)->Name()).second) return;
        AddChildren_(node);
    }

    void AddRecord_(H const& node, GGID const& known) {
        GGID const record = GetRecordID(node, Link::Packed);
        if (!hzn::gid::IsValid(record)) return;
        auto const [place, isNew] = records.try_emplace(record);
        if (!isNew && walked.contains(record)) return;
        H const source = record == known ? node : GetSource(record);
        if (isNew && source) place->second = xml::TransformForWriteFilterList(source);
        if (source && source->RegID() == node->RegID() && source->Name() == node->Name()) walked.insert(record);
    }

    void Follow_(H const& field) {
        GGID const link = GetLink(field, Link::Packed);
        // A field of a record may have been copied before: only its own walk tells all links of a record.
        if (hzn::gid::IsValid(link) && walked.insert(link).second) pending.push_back({GetSource(link), link});
    }

    void AddChildren_(H const& node) {
        auto const* const array = dynamic_cast<ZOArray const*>(node.get());
        if (!array) return impl::ForEachReference(node, [this](H const& child) { AddPart_(child); });
        if (!HasRecords(*array) && impl::HasPlainElements(*node)) return;
        for (ZOFwrdIterator at = node->begin(); at.current; ++at) pending.push_back({at.current, {}});
    }

    /// A part of a structure. A link field lies in the record that the structure lies in.
    void AddPart_(H const& part) {
        auto const* const redirect = dynamic_cast<ZORedirect const*>(part.get());
        if (redirect && !redirect->IsAlias() && IsLinkField(part)) {
            if (IsWritten(*part)) Follow_(part);
        } else {
            pending.push_back({part, {}});
        }
    }

    static bool HasRecords(ZOArray const& array) {
        meta::MetaDataTraits const traits = array.GetDataTraits();
        auto const* const record = traits.AsArray();
        return record && record->recordGroup;
    }

    std::vector<Step> pending;
    std::map<GGID, std::optional<std::wstring>> records; // with what selects each one; none for one without a node
    std::set<GGID> walked;                               // whole, or about to be
    std::unordered_set<std::string> entered;             // sources of aliases
};

} // namespace

// NOLINTNEXTLINE(performance-unnecessary-value-param): clients link against this signature
htl::status Serialize(ClipboardContents& contents, std::vector<H> nodes, hzn::version::NumberKind<0> const& version,
                      std::string const& path) {
    contents = {};
    Closure closure;
    for (H const& node : nodes) closure.Add(node);
    str::join(contents.objects, closure.Containers(), L",");
    contents.version = str::as_wstring(version);
    std::vector<std::wstring> filter = closure.Filter();
    if (H const included = Find(path)) filter.push_back(xml::TransformForWriteFilterList(included));
    return xml::StringWrite(contents.document, version, 1024, &filter);
}

} // namespace zo::clip
