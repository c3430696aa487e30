// Copying objects as text, and pasting them.
//
// An object is a record with a field of the tag "ID", which holds its number in its container, and one of the tag
// "Name". What is copied is a document of the chosen objects and of everything that they link to. The system's
// clipboard itself is the application's affair. All of it works on the calling thread's current registry.
#pragma once

#include "Common/registry/ZOTransaction.h"

#include "support/gid.h"
#include "support/version.h"

#include <string>
#include <vector>

namespace zo::clip {

/// What an application puts on the clipboard.
struct ClipboardContents {
    std::wstring document; ///< as `zo::xml::StringWrite` gives it
    std::wstring objects;  ///< the containers of the objects: their groups in decimal, sorted as texts, with ","
    std::wstring version;  ///< of the document's format, as text
};

/// Replaces `contents` by a document of `nodes` and everything that they link to, over any number of links.
///
/// Whole records are written: one that a node lies in counts with all of its fields. `path` names one more node that is
/// always included; a name without a node adds nothing. Nodes that don't persist, aliases among them, and empty handles
/// are passed over.
/// An array with a copied record keeps its length in the document, and the other records are empty elements there.
/// Failure: those of `zo::xml::StringWrite`, among them that nothing is to be written; the document is then empty.
/// Cost: in proportion to what is written and to the length of the arrays that it lies in.
[[nodiscard]] ZO_API htl::status Serialize(ClipboardContents& contents, std::vector<H> nodes,
                                           hzn::version::NumberKind<0> const& version, std::string const& path);

/// Whether `contents` were written under `version` and hold the container `id`: a group, or a packed container number.
/// One that was copied without objects in it counts. The document isn't looked at.
[[nodiscard]] ZO_API bool Contains(GID const& id, ClipboardContents& contents,
                                   hzn::version::NumberKind<0> const& version);

/// Pastes the objects of the container `id`. For a packed container number it is the container inside the record that
/// the number names, from the record of the same number; for any other one a container that stands by itself.
[[nodiscard]] ZO_API htl::status Deserialize(GID const& id, ClipboardContents& contents,
                                             hzn::version::NumberKind<0> const& version,
                                             std::vector<std::wstring>& names, std::string const& path,
                                             std::vector<htl::status>* reasons = nullptr);

/// Pastes the objects of the container `id` inside the record `source` of the document into the one inside the record
/// `target` of the registry. An empty record means the container that stands by itself.
///
/// Each object of the container becomes a new one, at the end, under a name of its own. An object that it links to, in
/// another container, is one with the object of its name there, whatever the case of letters: if they differ in what is
/// saved, the present one is replaced and its name is appended to `names`; if there is none, a new one is made. Links
/// are rewritten to the new numbers; one to what the document doesn't hold becomes a link to nothing.
///
/// Failure: 26502 if the document can't be read as one of this application and version, or if the target container
/// isn't there; nothing has changed then. A failure of a single object doesn't stop the others; the first one is
/// returned, and what was merged stays. `reasons`, if given, receives what the returned failure hides: what the parser
/// says, each value that doesn't fit (11 at most), the versions; of a merge all failures in their order. It is emptied
/// first. `path` is not used.
[[nodiscard]] ZO_API htl::status Deserialize(GID const& id, GGID const& source, GGID const& target,
                                             ClipboardContents& contents, hzn::version::NumberKind<0> const& version,
                                             std::vector<std::wstring>& names, std::string const& path,
                                             std::vector<htl::status>* reasons = nullptr);

/// A new `ZOClipImportTransaction`, to paste in two steps.
[[nodiscard]] ZO_API htl::handle<ZOTransaction> MakeClipImportTransaction();

/// The first step: reads the document into the transaction. The registry stays as it is. Failure: 26502, as above, also
/// without a transaction.
[[nodiscard]] ZO_API htl::status DeserializeToTransaction(htl::handle<ZOTransaction> const& transaction,
                                                          std::wstring const& document,
                                                          hzn::version::NumberKind<0> const& version,
                                                          std::vector<htl::status>* reasons = nullptr);

/// The second step: merges the transaction's objects of the container `id` into the set that the transaction commits
/// to. From here on the transaction finds only what was read into it. Success, with nothing done, if it holds no such
/// container. Cost: in proportion to the document and to the containers that it merges with.
[[nodiscard]] ZO_API htl::status DeserializeFromTransaction(GID const& id, GGID const& source, GGID const& target,
                                                            htl::handle<ZOTransaction> const& transaction,
                                                            std::vector<std::wstring>& names, std::string const& path,
                                                            std::vector<htl::status>* reasons = nullptr);

} // namespace zo::clip
