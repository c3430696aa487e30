// From nodes to the text of what they and their links lead to.
#include "Common/clip/Clipboard.h"
#include "Common/model/ZOArray.h"
#include "Common/redirect/Identity.h"
#include "Common/registry/Find.h"
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
        pending.push_back({node, false});
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
        bool isKnown; // the record that it lies in
    };

    static bool IsWritten(IZO const& node) { return node.GetPersistTraits().Type != meta::MetaPersistTraits::No; }
    static ZORedirect const* AsRedirect(H const& node) { return dynamic_cast<ZORedirect const*>(node.get()); }

    void Visit_(Step const& step) {
        if (!step.node || !IsWritten(*step.node)) return;
        if (!step.isKnown) AddRecord_(step.node);
        if (IsLinkField(step.node)) return Follow_(step.node);
        // Aliases may lead back to where the walk came from.
        if (AsRedirect(step.node) && !entered.insert(GetSource(step.node)->Name()).second) return;
        AddChildren_(step.node);
    }

    void AddRecord_(H const& node) {
        GGID const record = GetRecordID(node, Link::Packed);
        if (!hzn::gid::IsValid(record)) return;
        auto const [place, isNew] = records.try_emplace(record);
        if (!isNew && walked.contains(record)) return;
        H const source = GetSource(record);
        if (isNew && source) place->second = xml::TransformForWriteFilterList(source);
        if (source && source->RegID() == node->RegID() && source->Name() == node->Name()) walked.insert(record);
    }

    void Follow_(H const& field) {
        GGID const link = GetLink(field, Link::Packed);
        // A field of a record may have been copied before: only its own walk tells all links of a record.
        if (hzn::gid::IsValid(link) && walked.insert(link).second) pending.push_back({GetSource(link), false});
    }

    void AddChildren_(H const& node) {
        auto const* const array = dynamic_cast<ZOArray const*>(node.get());
        bool const hasRecords = array && HasRecords(*array);
        for (ZOFwrdIterator at = node->begin(); at.current; ++at) {
            H const& child = at.current;
            // The elements of an array are of one sort; those that are no links have nothing to tell.
            if (array && !hasRecords && IsPlain(child)) return;
            // What is no element lies in the record that its parent lies in.
            bool const isKnown = !array && !AsRedirect(child) && child->IsValueType();
            if (isKnown && !IsLinkField(child)) continue;
            pending.push_back({child, isKnown});
        }
    }

    static bool HasRecords(ZOArray const& array) {
        meta::MetaDataTraits const traits = array.GetDataTraits();
        auto const* const record = traits.AsArray();
        return record && record->recordGroup;
    }
    static bool IsPlain(H const& node) { return node->IsValueType() && !AsRedirect(node) && !IsLinkField(node); }

    std::vector<Step> pending;
    std::map<GGID, std::optional<std::wstring>> records; // with what selects each one; none for one without a node
    std::set<GGID> walked;                               // whole, or about to be
    std::unordered_set<std::string> entered;             // sources of aliases
};

} // namespace

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
