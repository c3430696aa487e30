// Documents into readers: the stack of open elements, their text and where the bytes come from.
#include "support/xml/Widen.h"
#include "support/xml/XmlFile.h"
#include "support/xml/XmlParser.h"

#include "support/text.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <span>
#include <system_error>
#include <vector>

namespace sys::file {
namespace {

constexpr unsigned cannotOpen = 90001;

// Texts longer than this give their memory back when their element ends, so that depth alone holds memory.
constexpr std::size_t keptTextLength = 16'384;

void AssignWide(std::wstring& out, char const* text) {
    out.clear();
    AppendWide(out, text);
}

// The text of one open element.
//
// White space is held back until something shows that it is not layout. Lines of layout repeat, one for each child
// element, so the last line is counted instead of stored again.
class ElementText {
public:
    void Append(char const* data, std::size_t length, bool layout) {
        if (significant) {
            AppendWide(text, {data, length});
        } else if (layout) {
            if (length != 0 && data[0] == '\n') EndLine_();
            line.append(data, length);
        } else {
            significant = true;
            EndLine_();
            EndRepeats_();
            AppendWide(text, {data, length});
        }
    }

    /// The text to hand over, null if there is none.
    std::wstring const* Get() const noexcept { return significant && !text.empty() ? &text : nullptr; }

    void Clear() {
        significant = false;
        Empty_(text);
        Empty_(line);
        Empty_(repeated);
        repeats = 0;
    }

private:
    template <class S>
    static void Empty_(S& string) {
        if (string.capacity() > keptTextLength)
            string = S();
        else
            string.clear();
    }

    void EndLine_() {
        if (line.empty()) return;
        if (repeats == 0 || line != repeated) {
            EndRepeats_();
            repeated.swap(line);
        }
        ++repeats;
        line.clear();
    }

    void EndRepeats_() {
        for (; repeats != 0; --repeats) text.append(repeated.begin(), repeated.end());
    }

    std::wstring text;
    std::string repeated; // follows `text` as often as `repeats` says
    std::size_t repeats = 0;
    std::string line;         // follows these: blanks from the last line feed on
    bool significant = false; // nothing is held back any more
};

class Driver final : public XmlEvents {
public:
    explicit Driver(htl::handle<XmlElemReader> const& reader) : root(reader) {}

    bool StartElement(char const* name, char const* const* attributes) override {
        htl::handle<XmlElemReader> reader;
        if (depth == 0) {
            reader = root;
        } else {
            AssignWide(tag, name);
            reader = open[depth - 1].reader->Element(tag);
        }
        if (!reader) return false;
        if (depth == open.size()) open.emplace_back();
        XmlElemReader& target = *reader;
        open[depth++].reader = std::move(reader);
        for (; *attributes; attributes += 2) {
            AssignWide(item.first, attributes[0]);
            AssignWide(item.second, attributes[1]);
            target.Attribute(item);
        }
        return true;
    }

    void EndElement() override {
        Level& level = open[--depth];
        if (std::wstring const* const text = level.text.Get()) level.reader->Text(*text);
        level.text.Clear();
        level.reader.release();
    }

    void Characters(char const* text, std::size_t length, bool layout) override {
        open[depth - 1].text.Append(text, length, layout);
    }

private:
    struct Level {
        htl::handle<XmlElemReader> reader;
        ElementText text;
    };

    htl::handle<XmlElemReader> root;
    std::vector<Level> open; // by depth; levels that were left keep their memory for the next element
    std::size_t depth = 0;
    std::wstring tag;
    XmlAttribute item;
};

// Owns a file that is open for reading.
class InputFile {
public:
    explicit InputFile(char const* path) noexcept : descriptor(::open(path, O_RDONLY | O_CLOEXEC)) {}
    ~InputFile() {
        if (IsOpen()) ::close(descriptor);
    }
    InputFile(InputFile const&) = delete;
    InputFile& operator=(InputFile const&) = delete;

    bool IsOpen() const noexcept { return descriptor >= 0; }
    /// Fills the block or reaches the end of the file. The number of bytes, -1 for a failure told by errno.
    std::ptrdiff_t Read(std::span<char> block) noexcept {
        std::size_t filled = 0;
        while (filled < block.size()) {
            ssize_t const got = ::read(descriptor, block.data() + filled, block.size() - filled);
            if (got < 0 && errno == EINTR) continue;
            if (got < 0) return -1;
            if (got == 0) break;
            filled += static_cast<std::size_t>(got);
        }
        return static_cast<std::ptrdiff_t>(filled);
    }

private:
    int descriptor;
};

// Parses what `fill` puts into one block after the other: how much it used of the block, and whether that was the last.
template <class Fill>
htl::status ParseBlocks(htl::handle<XmlElemReader> const& reader, XmlSource source, Fill const& fill) {
    Driver driver(reader);
    XmlParser parser(driver, source);
    for (bool last = false; !last;) {
        std::span<char> block;
        std::size_t used = 0;
        if (htl::status failure = parser.Block(block); failure.IsError()) return failure;
        if (htl::status failure = fill(block, used, last); failure.IsError()) return failure;
        if (htl::status failure = parser.Parse(used, last); failure.IsError()) return failure;
    }
    return {};
}

} // namespace

htl::status XmlFileRead(std::wstring const& name, htl::handle<XmlElemReader> const& reader) {
    std::string path;
    if (htl::status failure = native_path(path, name); failure.IsError()) return failure;
    auto const unreadable = [&] { return htl::status(cannotOpen, name, std::generic_category().message(errno)); };
    InputFile file(path.c_str());
    if (!file.IsOpen()) return unreadable();

    return ParseBlocks(reader, XmlSource::bytes, [&](std::span<char> block, std::size_t& used, bool& last) {
        std::ptrdiff_t const got = file.Read(block);
        if (got < 0) return unreadable();
        used = static_cast<std::size_t>(got);
        last = used < block.size();
        return htl::status();
    });
}

htl::status XmlStringRead(std::vector<unsigned char> const& document, htl::handle<XmlElemReader> const& reader) {
    std::span<unsigned char const> rest = document;
    return ParseBlocks(reader, XmlSource::bytes, [&rest](std::span<char> block, std::size_t& used, bool& last) {
        auto const taken = rest.first(std::min(block.size(), rest.size()));
        std::ranges::copy(taken, block.begin());
        rest = rest.subspan(taken.size());
        used = taken.size();
        last = rest.empty();
        return htl::status();
    });
}

htl::status XmlTextRead(std::wstring_view document, htl::handle<XmlElemReader> const& reader) {
    if (htl::status failure = str::CheckCodePoints(document); failure.IsError()) return failure;
    return ParseBlocks(reader, XmlSource::wideText, [&document](std::span<char> block, std::size_t& used, bool& last) {
        used = str::EncodeUtf8(block, document);
        last = document.empty();
        return htl::status();
    });
}

} // namespace sys::file
