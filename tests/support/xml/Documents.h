// A document as a tree of plain structures, and the readers and writers between the two.
#pragma once

#include "support/xml/XmlFile.h"

#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

namespace documents {

using sys::file::XmlAttribute;
using sys::file::XmlElemReader;
using sys::file::XmlElemWriter;
using Bytes = std::vector<unsigned char>;

inline Bytes AsBytes(std::string_view text) { return Bytes(text.begin(), text.end()); }
inline std::string AsText(Bytes const& bytes) { return std::string(bytes.begin(), bytes.end()); }

struct Node {
    std::wstring tag;
    std::vector<XmlAttribute> attributes;
    std::wstring text;
    std::vector<Node> children;

    bool operator==(Node const&) const = default;
};

/// Fills a node with what comes.
class TreeReader final : public XmlElemReader {
public:
    explicit TreeReader(Node& target) : node(target) {}

    htl::handle<XmlElemReader> Element(std::wstring const& tag) override {
        node.children.push_back({tag, {}, {}, {}});
        return htl::handle<XmlElemReader>(new TreeReader(node.children.back()));
    }
    void Attribute(XmlAttribute const& item) override { node.attributes.push_back(item); }
    void Text(std::wstring const& text) override { node.text = text; }

private:
    Node& node;
};

/// Walks sibling nodes in place, noting each call if asked to.
class TreeWriter final : public XmlElemWriter {
public:
    TreeWriter(Node const* first, Node const* last, std::vector<std::string>* calls = nullptr)
        : current(first), end(last), log(calls) {}

    std::wstring Tag() override {
        Note_("Tag");
        return current->tag;
    }
    std::wstring Text() override {
        Note_("Text");
        return current->text;
    }
    std::pair<XmlAttribute const*, XmlAttribute const*> Attributes() override {
        Note_("Attributes");
        auto const& all = current->attributes;
        if (all.empty()) return {nullptr, nullptr};
        return {all.data(), all.data() + all.size()};
    }
    htl::handle<XmlElemWriter> Next() override {
        Note_("Next");
        if (++current == end) return {};
        return htl::handle<XmlElemWriter>(this);
    }
    htl::handle<XmlElemWriter> FirstChild() override {
        Note_("FirstChild");
        auto const& children = current->children;
        if (children.empty()) return {};
        return htl::handle<XmlElemWriter>(new TreeWriter(children.data(), children.data() + children.size(), log));
    }

private:
    void Note_(char const* call) {
        if (log) log->push_back(std::string(current->tag.begin(), current->tag.end()) + "." + call);
    }

    Node const* current;
    Node const* end;
    std::vector<std::string>* log;
};

inline htl::handle<XmlElemWriter> WriterOf(Node const& root, std::vector<std::string>* calls = nullptr) {
    return htl::handle<XmlElemWriter>(new TreeWriter(&root, &root + 1, calls));
}

/// Reads into `root`, whose tag stays, since no reader learns the name of the document element.
inline htl::status Read(Bytes const& document, Node& root) {
    return sys::file::XmlStringRead(document, htl::handle<XmlElemReader>(new TreeReader(root)));
}

/// The tree of a document that has to be read without failure.
inline Node Tree(Bytes const& document) {
    Node root;
    htl::status const failure = Read(document, root);
    EXPECT_FALSE(failure.IsError()) << testing::PrintToString(failure.AsWString());
    return root;
}
inline Node Tree(std::string_view document) { return Tree(AsBytes(document)); }

inline htl::status FailureOf(Bytes const& document) {
    Node root;
    return Read(document, root);
}
inline htl::status FailureOf(std::string_view document) { return FailureOf(AsBytes(document)); }

/// The document of a tree that has to be written without failure.
inline std::string Document(Node const& root) {
    Bytes document;
    htl::status const failure = sys::file::XmlStringWrite(document, WriterOf(root));
    EXPECT_FALSE(failure.IsError()) << testing::PrintToString(failure.AsWString());
    return AsText(document);
}

inline std::string FileText(std::string const& path) {
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

inline void MakeFile(std::string const& path, std::string_view content) {
    std::ofstream(path, std::ios::binary) << content;
}

/// Whether `status` is message `id` with these arguments.
template <class... A>
testing::AssertionResult FailsAs(htl::status const& status, unsigned id, A const&... arguments) {
    std::wstring const expected = htl::status(id, arguments...).AsWString();
    if (status.IsError() && status.AsWString() == expected) return testing::AssertionSuccess();
    return testing::AssertionFailure() << "got " << testing::PrintToString(status.AsWString()) << ", expected "
                                       << testing::PrintToString(expected);
}

} // namespace documents
