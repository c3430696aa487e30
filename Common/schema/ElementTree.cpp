#include "Common/schema/ElementTree.h"

namespace zo::schema::impl {
namespace {

class Cursor final : public sys::file::XmlElemWriter {
public:
    Cursor(Element const* first, Element const* end) : current(first), end(end) {}

    std::wstring Tag() override { return current->tag; }
    std::wstring Text() override { return current->text; }
    std::pair<sys::file::XmlAttribute const*, sys::file::XmlAttribute const*> Attributes() override {
        auto const& all = current->attributes;
        if (all.empty()) return {nullptr, nullptr};
        return {all.data(), all.data() + all.size()};
    }
    htl::handle<XmlElemWriter> Next() override {
        return ++current == end ? htl::handle<XmlElemWriter>() : htl::handle<XmlElemWriter>(this);
    }
    htl::handle<XmlElemWriter> FirstChild() override {
        auto const& all = current->children;
        if (all.empty()) return {};
        return htl::handle<XmlElemWriter>(new Cursor(all.data(), all.data() + all.size()));
    }

private:
    Element const* current;
    Element const* end;
};

} // namespace

htl::handle<sys::file::XmlElemWriter> WriterOf(Element const& root) {
    return htl::handle<sys::file::XmlElemWriter>(new Cursor(&root, &root + 1));
}

} // namespace zo::schema::impl
