#include "examples/slope/Exchange.h"

#include "examples/slope/Modules.h"
#include "examples/slope/Text.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace slope {

namespace {

using zo::clip::ClipboardContents;

constexpr std::string_view declaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
constexpr std::string_view wideDeclaration = "<?xml version=\"1.0\" encoding=\"UTF-16\"?>\n";
constexpr std::string_view lineBegin = "<?slope-clipboard objects=\"", lineMiddle = "\" version=\"", lineEnd = "\"?>\n";

constexpr char units[] = "Project.Units"; // goes with every text, so that numbers aren't mistaken

/// A list whose elements can be copied. Later ones refer to earlier ones.
struct Kind {
    GID group;
    char const* list;
};
constexpr std::array kinds{Kind{materialRecords, "Materials"}, Kind{regionRecords, "Regions"},
                           Kind{analysisRecords, "Analyses"}};

/// The library knows what it copies by numbers in the things themselves. They have them while this lives.
class Numbers {
public:
    explicit Numbers(Project& project) : project(project) { Give_(true); }
    Numbers(Numbers const&) = delete;
    Numbers& operator=(Numbers const&) = delete;
    ~Numbers() { Give_(false); }

private:
    void Give_(bool wanted) {
        auto const give = [wanted](auto& list) {
            for (std::size_t i = 0; i < list.size(); ++i) list[i].id = wanted ? static_cast<int>(i + 1) : 0;
        };
        give(project.materials);
        give(project.regions);
        give(project.analyses);
    }

    Project& project;
};

/// The kind that a node is a list or an element of, null for any other node.
Kind const* KindOf(zo::H const& node) {
    std::string const name = node->Name();
    for (Kind const& kind : kinds) {
        if (!name.starts_with(kind.list)) continue;
        std::string_view const rest = std::string_view(name).substr(std::string_view(kind.list).size());
        if (rest.empty() || (rest.starts_with('[') && rest.find(']') + 1 == rest.size())) return &kind;
    }
    return nullptr;
}

/// The text for people of what an element of a list is called.
std::string Called(zo::H const& element) {
    for (char const* const field : {"Name", "Method"})
        if (zo::H const node = zo::Find(element, field)) {
            std::wstring text;
            if (!node->Get(text).IsError() && !text.empty()) return " (" + Narrow(text) + ")";
        }
    return {};
}

/// Takes a text apart; none if it isn't what `CopyText` makes.
std::optional<ClipboardContents> ContentsOf(std::string const& text) {
    std::string_view rest = text;
    auto const skip = [&rest](std::string_view part) {
        bool const isThere = rest.starts_with(part);
        if (isThere) rest.remove_prefix(part.size());
        return isThere;
    };
    auto const upTo = [&rest](std::string_view end) {
        std::string_view const part = rest.substr(0, rest.find(end));
        rest.remove_prefix(part.size());
        return std::string(part);
    };
    if (!skip(declaration)) return {};
    std::string_view const body = rest; // with the line, so that places in messages are those in the text
    if (!skip(lineBegin)) return {};
    ClipboardContents contents;
    contents.objects = Wide(upTo("\""));
    if (!skip(lineMiddle)) return {};
    contents.version = Wide(upTo("\""));
    if (!skip(lineEnd)) return {};
    contents.document = Wide(std::string(wideDeclaration) + std::string(body));
    return contents;
}

std::string UnitsOf(zo::H const& node) {
    std::wstring text;
    if (node) (void)node->Get(text); // a text without units fits to none
    return Narrow(text);
}

/// One paste into one document.
class Paste {
public:
    Paste(Document& document, ClipboardContents contents) : document(document), contents(std::move(contents)) {}

    Pasted Run() {
        document.MakeCurrent();
        Kind const* const kind = Copied_();
        if (!kind) return Refused_("The text holds nothing that this application could paste.");
        Numbers const numbers(document.Content());
        std::array<std::size_t, kinds.size()> const before = Lengths_();
        {
            htl::handle<zo::ZOTransaction> const transaction = zo::clip::MakeClipImportTransaction();
            htl::status const unread =
                zo::clip::DeserializeToTransaction(transaction, contents.document, documentVersion, &reasons);
            if (unread.IsError()) return Refused_(Message(unread));
            std::string const theirs = UnitsOf(transaction->Find(units)), ours = UnitsOf(document.Find(units));
            if (theirs != ours)
                return Refused_("The text is in the units " + theirs + ", and the project in " + ours + ".");
            std::vector<std::wstring> names;
            htl::status const failure =
                zo::clip::DeserializeFromTransaction(kind->group, {}, {}, transaction, names, units, &reasons);
            if (failure.IsError()) return Refused_(Message(failure));
            for (std::wstring const& name : names) pasted.replaced.push_back(Narrow(name));
        }
        document.UpdateCalculated();
        for (std::size_t i = 0; i < kinds.size(); ++i) Added_(kinds[i], before[i]);
        if (pasted.added.empty()) return Refused_("The text holds nothing that this application could paste.");
        return std::move(pasted);
    }

private:
    /// What was copied refers to what came along, so it is the last kind.
    Kind const* Copied_() {
        Kind const* copied = nullptr;
        for (Kind const& kind : kinds)
            if (zo::clip::Contains(kind.group, contents, documentVersion)) copied = &kind;
        return copied;
    }

    std::array<std::size_t, kinds.size()> Lengths_() {
        std::array<std::size_t, kinds.size()> lengths{};
        for (std::size_t i = 0; i < kinds.size(); ++i) lengths[i] = document.Find(kinds[i].list)->Length();
        return lengths;
    }

    void Added_(Kind const& kind, std::size_t before) {
        zo::H const list = document.Find(kind.list);
        for (std::size_t i = before; i < list->Length(); ++i) {
            zo::H const element = zo::Find(list, std::to_string(i));
            pasted.added.push_back(element->Name() + Called(element));
        }
    }

    Pasted Refused_(std::string const& otherwise) {
        for (htl::status const& reason : reasons) pasted.problems.push_back(Message(reason));
        if (reasons.empty()) pasted.problems.push_back(otherwise);
        return std::move(pasted);
    }

    Document& document;
    ClipboardContents contents;
    std::vector<htl::status> reasons;
    Pasted pasted;
};

} // namespace

std::vector<std::string> CopyText(Document& document, std::vector<std::string> const& names, bool tags,
                                  std::string& text) {
    text.clear();
    std::vector<std::string> problems;
    std::vector<zo::H> nodes;
    Kind const* first = nullptr;
    for (std::string const& name : names) {
        zo::H const node = zo::GetSource(tags ? document.FindTag(name) : document.Find(name));
        Kind const* const kind = node ? KindOf(node) : nullptr;
        if (!node)
            problems.push_back(std::string("There is no ") + (tags ? "tag " : "name ") + name + ".");
        else if (!kind)
            problems.push_back(name + " is no material, region or analysis, and no list of them.");
        else if (first && first != kind)
            problems.push_back(name + " goes with " + kind->list + ", and what stands before it with " + first->list +
                               ": copy one after the other.");
        else if (node->Length() == 0)
            problems.push_back("There is nothing in " + name + ".");
        else
            first = kind;
        nodes.push_back(node);
    }
    if (!problems.empty()) return problems;

    ClipboardContents contents;
    Numbers const numbers(document.Content());
    document.MakeCurrent();
    if (htl::status const failure = zo::clip::Serialize(contents, nodes, documentVersion, units); failure.IsError())
        return {Message(failure)};
    std::string const body = Narrow(contents.document);
    text = std::string(declaration) + std::string(lineBegin) + Narrow(contents.objects) + std::string(lineMiddle) +
           Narrow(contents.version) + std::string(lineEnd) + body.substr(body.find('\n') + 1);
    return {};
}

Pasted PasteText(Document& document, std::string const& text) {
    std::optional<ClipboardContents> contents = ContentsOf(text);
    if (!contents) return {{"The text is none that `slope copy` makes."}, {}, {}};
    return Paste(document, std::move(*contents)).Run();
}

} // namespace slope
