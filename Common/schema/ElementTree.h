// A small document in memory, for what can't be written from top to bottom.
#pragma once

#include "support/xml/XmlElemWriter.h"

#include <string>
#include <string_view>
#include <vector>

namespace zo::schema::impl {

/// An element with its attributes and children. A value.
struct Element {
    explicit Element(std::wstring_view tag) : tag(tag) {}

    /// Appends a child. Valid until the next one is added.
    Element& Add(std::wstring_view childTag) { return children.emplace_back(childTag); }
    /// Appends an attribute.
    Element& With(std::wstring_view name, std::wstring_view value) {
        attributes.emplace_back(name, value);
        return *this;
    }

    std::wstring tag;
    std::wstring text;
    std::vector<sys::file::XmlAttribute> attributes;
    std::vector<Element> children;
};

/// A cursor on `root`, which has to outlive it.
htl::handle<sys::file::XmlElemWriter> WriterOf(Element const& root);

} // namespace zo::schema::impl
