#include "examples/slope/Audit.h"

#include "examples/slope/Text.h"

#include <support/xml/XmlFile.h>

#include <charconv>
#include <optional>
#include <set>

namespace slope {

namespace {

using sys::file::XmlElemReader;

struct Findings {
    std::vector<std::string>& lost;
    std::vector<std::string>& absent;
};

/// Reads one element. What it found is settled when the parser lets go of it, at the element's end.
class Auditor final : public XmlElemReader {
public:
    Auditor(std::string elementPath, Findings& findings) : path(std::move(elementPath)), findings(findings) {}
    ~Auditor() override {
        if (!length || children == *length) return;
        bool const more = children > *length;
        (more ? findings.lost : findings.absent)
            .push_back(path + ": has " + Count(children, "element", "elements") + ", but its Len is " + Count(*length) +
                       (more ? ", so the rest is not read" : ""));
    }

    void Attribute(sys::file::XmlAttribute const& item) override {
        if (item.first != L"Len") return;
        std::string const text = Narrow(item.second);
        std::size_t number = 0;
        auto const [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number);
        // The load itself complains about what is no number.
        if (error == std::errc() && stop == text.data() + text.size()) length = number;
    }

    htl::handle<XmlElemReader> Element(std::wstring const& tag) override {
        ++children;
        std::string below;
        if (length) {
            below = path + "[" + std::to_string(children) + "]";
        } else {
            below = path.empty() ? Narrow(tag) : path + "." + Narrow(tag);
            if (!tags.insert(tag).second && repeated.insert(tag).second)
                findings.lost.push_back(below + ": stands there more than once, and only one of them is kept");
        }
        return htl::handle<XmlElemReader>(new Auditor(std::move(below), findings));
    }

private:
    std::string path;
    Findings& findings;
    std::optional<std::size_t> length; // of an array
    std::size_t children = 0;
    std::set<std::wstring> tags, repeated; // of what is no array
};

} // namespace

htl::status AuditElements(std::string const& path, std::vector<std::string>& lost, std::vector<std::string>& absent) {
    Findings findings{lost, absent};
    return sys::file::XmlFileRead(Wide(path), htl::handle<XmlElemReader>(new Auditor("", findings)));
}

} // namespace slope
