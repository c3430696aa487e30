// Writers into documents: the stack of open elements, escaping and layout, and where the bytes go.
#include "support/xml/AtomicFile.h"
#include "support/xml/Widen.h"
#include "support/xml/XmlFile.h"
#include "support/xml/XmlParser.h"

#include "support/text.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <utility>

namespace sys::file {
namespace {

constexpr unsigned cannotBeWritten = 90010;

htl::status Refused(std::wstring const& reason) { return htl::status(cannotBeWritten, reason); }

// Where the bytes of a document go.
class Sink {
public:
    /// Whole characters, `xmlBlockSize` bytes at most.
    virtual htl::status Write(char const* data, std::size_t size) = 0;

protected:
    ~Sink() = default;
};

// How a character of a value is written.
enum class Form : unsigned char { asItIs, reference, replaced };

constexpr std::array<Form, 128> MakeForms(std::string_view referred) {
    std::array<Form, 128> forms = {};
    for (std::size_t c = 0; c < 0x20; ++c) forms[c] = Form::replaced;
    forms['\t'] = forms['\n'] = Form::asItIs;
    for (char const c : referred) forms[static_cast<std::size_t>(c)] = Form::reference;
    return forms;
}

// The quotation mark is a reference in text too, so that encoding="UTF-8" stands nowhere but in the declaration:
// programs that pass documents on replace it as text.
constexpr std::array<Form, 128> textForms = MakeForms("&<>\"\r");
// The parser makes a blank of every literal tab and line feed in an attribute.
constexpr std::array<Form, 128> attributeForms = MakeForms("&<>\"\r\t\n");
// A text of nothing but white space would count as layout.
constexpr std::array<Form, 128> blankForms = MakeForms(" \r\t\n");

constexpr bool IsXmlBlank(wchar_t c) noexcept { return c == L' ' || c == L'\n' || c == L'\t' || c == L'\r'; }

constexpr std::size_t longestForm = 6; // &quot;

template <std::size_t N>
char* Put(char* to, char const (&literal)[N]) noexcept {
    std::memcpy(to, literal, N - 1);
    return to + N - 1;
}

char* PutReference(char* to, unsigned code) noexcept {
    switch (code) {
    case '&': return Put(to, "&amp;");
    case '<': return Put(to, "&lt;");
    case '>': return Put(to, "&gt;");
    case '"': return Put(to, "&quot;");
    case '\t': return Put(to, "&#9;");
    case '\n': return Put(to, "&#10;");
    case '\r': return Put(to, "&#13;");
    default: return Put(to, "&#32;");
    }
}

// Anything but a plain ASCII character.
char* PutSpecial(char* to, char32_t code, std::array<Form, 128> const& forms) noexcept {
    if (code < 0x80 && forms[code] == Form::reference) return PutReference(to, code);
    bool const isCharacter =
        code >= 0x80 && code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF) && code != 0xFFFE && code != 0xFFFF;
    if (!isCharacter) code = 0xFFFD;
    auto const put = [&to](char32_t byte) { *to++ = static_cast<char>(byte); };
    if (code < 0x800) {
        put(0xC0 | (code >> 6));
    } else {
        if (code < 0x10000) {
            put(0xE0 | (code >> 12));
        } else {
            put(0xF0 | (code >> 18));
            put(0x80 | ((code >> 12) & 0x3F));
        }
        put(0x80 | ((code >> 6) & 0x3F));
    }
    put(0x80 | (code & 0x3F));
    return to;
}

// Names that were found valid, with their bytes. A document has few names and many elements.
class NameCache {
public:
    struct Entry {
        std::wstring name;         // empty in a place that was never used
        std::string start;         // "<name"
        std::string end;           // "</name>"
        std::string attribute;     // " name=\""
        std::uint64_t filled = 0;  // counts the names that the place had
        std::uint64_t element = 0; // the last element that had it as the name of an attribute
    };

    /// The entry of `name`, null if that is no XML name. The place stays, and is that of `name` until `filled` changes,
    /// which any next call may do. `evicted` gets the element of the entry that had to make room.
    Entry* Get(std::wstring const& name, std::uint64_t* evicted = nullptr) {
        if (name.empty()) return nullptr;
        std::size_t const place = Place_(name);
        if (IsSame_(entries[place].name, name)) return &entries[place];
        // Two names of one place would make room for each other all the time.
        Entry& neighbour = entries[place ^ 1];
        if (IsSame_(neighbour.name, name)) return &neighbour;
        if (!IsXmlName(name)) return nullptr;
        Entry& entry = !entries[place].name.empty() && neighbour.name.empty() ? neighbour : entries[place];
        if (evicted) *evicted = entry.element;
        entry.name = name;
        entry.start = '<';
        str::AppendUtf8(entry.start, name);
        entry.end.assign("</").append(entry.start, 1).append(1, '>');
        entry.attribute.assign(1, ' ').append(entry.start, 1).append("=\"");
        entry.element = 0;
        ++entry.filled;
        return &entry;
    }

private:
    static constexpr std::size_t size = 256;

    // For short names, calling a function takes longer than comparing them.
    static bool IsSame_(std::wstring const& a, std::wstring const& b) noexcept {
        std::size_t const length = a.size();
        if (length != b.size()) return false;
        if (length > 6) return a == b;
        std::size_t i = 0;
        while (i < length && a[i] == b[i]) ++i;
        return i == length;
    }

    static std::size_t Place_(std::wstring const& name) noexcept {
        std::size_t const length = name.size();
        auto const at = [&](std::size_t i) { return static_cast<std::uint32_t>(name[i]); };
        std::uint32_t const mixed = at(0) + 31 * at(length / 2) + 131 * at(length - 1) + 7 * std::uint32_t(length);
        return (mixed ^ (mixed >> 8)) % size;
    }

    std::array<Entry, size> entries;
};

// How many bytes of `bytes`, `limit` at most, end with a whole character.
std::size_t WholeCharacters(std::string_view bytes, std::size_t limit) noexcept {
    if (bytes.size() <= limit) return bytes.size();
    while (limit != 0 && (bytes[limit] & 0xC0) == 0x80) --limit;
    return limit;
}

// Bytes on their way to a sink, and the characters of values turned into them.
class Output {
public:
    explicit Output(Sink& target) : sink(target), block(std::make_unique<char[]>(xmlBlockSize)) {}

    void Bytes(std::string_view bytes) {
        while (!bytes.empty()) {
            std::size_t const taken = WholeCharacters(bytes, Room_());
            if (taken == 0) {
                Flush();
                continue;
            }
            std::memcpy(block.get() + used, bytes.data(), taken);
            used += taken;
            bytes.remove_prefix(taken);
        }
    }

    void Byte(char byte) {
        if (Room_() == 0) Flush();
        block[used++] = byte;
    }

    void Blanks(std::size_t count) {
        while (count != 0) {
            if (Room_() == 0) Flush();
            std::size_t const taken = std::min(Room_(), count);
            std::memset(block.get() + used, ' ', taken);
            used += taken;
            count -= taken;
        }
    }

    void Value(std::wstring_view value, std::array<Form, 128> const& forms) {
        while (!value.empty()) {
            if (Room_() < 64 * longestForm) Flush();
            std::size_t const taken = std::min(Room_() / longestForm, value.size());
            char* to = block.get() + used;
            for (wchar_t const c : value.substr(0, taken)) {
                auto const code = static_cast<char32_t>(c);
                if (code < 0x80 && forms[code] == Form::asItIs)
                    *to++ = static_cast<char>(code);
                else
                    to = PutSpecial(to, code, forms);
            }
            used = static_cast<std::size_t>(to - block.get());
            value.remove_prefix(taken);
        }
    }

    void Flush() {
        if (used != 0 && !failure.IsError()) failure = sink.Write(block.get(), used);
        used = 0;
    }

    /// The first failure of the sink; what is put after it goes nowhere.
    htl::status const& Failure() const noexcept { return failure; }

private:
    std::size_t Room_() const noexcept { return xmlBlockSize - used; }

    Sink& sink;
    std::unique_ptr<char[]> block;
    std::size_t used = 0;
    htl::status failure;
};

class Driver {
public:
    Driver(Sink& sink, std::string_view encoding) : out(sink), encoding(encoding) {}

    htl::status Write(htl::handle<XmlElemWriter> const& root) {
        std::wstring tag = root ? root->Tag() : std::wstring();
        if (tag.empty()) return Refused(L"its document element has no name.");
        out.Bytes("<?xml version=\"1.0\" encoding=\"");
        out.Bytes(encoding);
        out.Bytes("\"?>\n");
        if (htl::status failure = Start_(*root, std::move(tag)); failure.IsError()) return failure;
        while (!open.empty()) {
            if (out.Failure().IsError()) return out.Failure();
            Level& parent = open.back();
            if (!parent.child) {
                End_();
                if (!open.empty()) Advance_();
                continue;
            }
            // By value: the cursor may be the same object at the next level.
            htl::handle<XmlElemWriter> const child = parent.child;
            tag = child->Tag();
            if (tag.empty())
                Advance_();
            else if (htl::status failure = Start_(*child, std::move(tag)); failure.IsError())
                return failure;
        }
        out.Flush();
        return out.Failure();
    }

private:
    // An element whose end is still to be written.
    struct Level {
        std::wstring tag;
        NameCache::Entry const* name = nullptr; // of the tag, unless it was filled since
        std::uint64_t filled = 0;
        htl::handle<XmlElemWriter> child; // the cursor that walks its children, null behind the last one
        bool hasText = false;             // so nothing may be put around its children, it would become text
        bool hasContent = false;          // the start tag is closed
    };

    htl::status Start_(XmlElemWriter& writer, std::wstring tag) {
        if (open.size() == xmlDepthLimit)
            return Refused(L"its elements are nested deeper than " + std::to_wstring(xmlDepthLimit) + L".");
        NameCache::Entry const* const name = names.Get(tag);
        if (!name) return Refused(L"\"" + tag + L"\" is no name of an element.");

        if (!open.empty()) OpenContent_(open.back());
        if (open.empty() || !open.back().hasText) out.Blanks(2 * open.size());
        out.Bytes(name->start);
        std::uint64_t const filled = name->filled;
        std::wstring const text = writer.Text();
        auto const [begin, end] = writer.Attributes();
        if (htl::status failure = Attributes_(begin, end, tag); failure.IsError()) return failure;

        Level& level = open.emplace_back();
        level.tag = std::move(tag);
        level.name = name;
        level.filled = filled;
        if (!text.empty()) {
            level.hasText = level.hasContent = true;
            out.Byte('>');
            out.Value(text, std::ranges::all_of(text, IsXmlBlank) ? blankForms : textForms);
        }
        level.child = writer.FirstChild();
        return {};
    }

    htl::status Attributes_(XmlAttribute const* begin, XmlAttribute const* end, std::wstring const& tag) {
        ++element;
        bool lostOne = false;
        for (XmlAttribute const* item = begin; item != end; ++item) {
            std::uint64_t evicted = 0;
            NameCache::Entry* const name = names.Get(item->first, &evicted);
            if (!name) return Refused(L"\"" + item->first + L"\" is no name of an attribute, in <" + tag + L">.");
            if (name->element == element) return Repeated_(item->first, tag);
            name->element = element;
            lostOne |= evicted == element;
            out.Bytes(name->attribute);
            out.Value(item->second, attributeForms);
            out.Byte('"');
        }
        return lostOne ? CompareAll_(begin, end, tag) : htl::status();
    }

    // The slow way to find a repeated attribute, for when the cache forgot one of them.
    static htl::status CompareAll_(XmlAttribute const* begin, XmlAttribute const* end, std::wstring const& tag) {
        std::vector<std::wstring_view> sorted;
        for (XmlAttribute const* item = begin; item != end; ++item) sorted.emplace_back(item->first);
        std::ranges::sort(sorted);
        auto const found = std::ranges::adjacent_find(sorted);
        return found == sorted.end() ? htl::status() : Repeated_(std::wstring(*found), tag);
    }

    static htl::status Repeated_(std::wstring const& name, std::wstring const& tag) {
        return Refused(L"<" + tag + L"> has the attribute \"" + name + L"\" twice.");
    }

    void OpenContent_(Level& level) {
        if (level.hasContent) return;
        level.hasContent = true;
        out.Bytes(">\n");
    }

    void End_() {
        Level const& level = open.back();
        if (!level.hasContent) {
            out.Bytes("/>");
        } else {
            if (!level.hasText) out.Blanks(2 * (open.size() - 1));
            NameCache::Entry const* const name = level.name->filled == level.filled ? level.name : names.Get(level.tag);
            out.Bytes(name->end);
        }
        open.pop_back();
        if (open.empty() || !open.back().hasText) out.Byte('\n');
    }

    void Advance_() {
        // The cursor may step in place and return itself, so it has to outlive the call.
        htl::handle<XmlElemWriter> const child = std::move(open.back().child);
        open.back().child = child->Next();
    }

    Output out;
    std::string_view encoding; // the one that the declaration names
    NameCache names;
    std::uint64_t element = 0; // counts elements, so that an attribute given twice shows in the cache
    std::vector<Level> open;
};

class FileSink final : public Sink {
public:
    explicit FileSink(AtomicFile& target) : file(target) {}
    htl::status Write(char const* data, std::size_t size) override { return file.Write(data, size); }

private:
    AtomicFile& file;
};

// Appends to a vector, which shrinks back unless the bytes are to be kept.
class VectorSink final : public Sink {
public:
    explicit VectorSink(std::vector<unsigned char>& target) : bytes(target), before(target.size()) {}
    ~VectorSink() {
        if (!kept) bytes.resize(before);
    }
    VectorSink(VectorSink const&) = delete;
    VectorSink& operator=(VectorSink const&) = delete;

    htl::status Write(char const* data, std::size_t size) override {
        bytes.insert(bytes.end(), data, data + size);
        return {};
    }
    void Keep() noexcept { kept = true; }

private:
    std::vector<unsigned char>& bytes;
    std::size_t before;
    bool kept = false;
};

// Asks for large pages behind memory that is about to be filled. Faults of small ones take longer than filling them.
void PreferLargePages([[maybe_unused]] void* start, [[maybe_unused]] std::size_t size) noexcept {
#ifdef MADV_HUGEPAGE
    constexpr std::size_t worthIt = std::size_t(4) << 20;
    auto const page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    std::size_t room = size;
    if (size < worthIt || !std::align(page, worthIt / 2, start, room)) return;
    (void)::madvise(start, room / page * page, MADV_HUGEPAGE); // a wish: without it all works the same
#endif
}

// Keeps the bytes in pages that go back to the system one by one while the text that is made of them grows. The heap
// would hold them beside it.
class PageSink final : public Sink {
public:
    htl::status Write(char const* data, std::size_t size) override {
        if (pages.empty() || pageSize - pages.back().used < size) pages.emplace_back();
        Page& page = pages.back();
        std::memcpy(page.bytes.get() + page.used, data, size);
        page.used += size;
        length += size;
        return {};
    }

    /// Appends what was written to `text`, and keeps nothing.
    void MoveInto(std::wstring& text) {
        text.reserve(text.size() + length); // no character has fewer bytes than one
        PreferLargePages(text.data(), text.capacity() * sizeof(wchar_t));
        for (Page& page : pages) {
            for (std::string_view rest(page.bytes.get(), page.used); !rest.empty();) {
                std::string_view const piece = rest.substr(0, WholeCharacters(rest, xmlBlockSize));
                AppendWide(text, piece);
                rest.remove_prefix(piece.size());
            }
            page.bytes.reset();
        }
        pages.clear();
        length = 0;
    }

private:
    static constexpr std::size_t pageSize = 16 * xmlBlockSize;

    struct Unmap {
        void operator()(char* page) const noexcept { ::munmap(page, pageSize); }
    };
    struct Page {
        Page() {
            void* const start = ::mmap(nullptr, pageSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
            if (start == MAP_FAILED) throw std::bad_alloc();
            bytes.reset(static_cast<char*>(start));
        }

        std::unique_ptr<char, Unmap> bytes;
        std::size_t used = 0;
    };

    std::vector<Page> pages;
    std::size_t length = 0;
};

} // namespace

htl::status XmlFileWrite(std::wstring const& name, htl::handle<XmlElemWriter> const& writer) {
    AtomicFile file;
    if (htl::status failure = file.Open(name); failure.IsError()) return failure;
    FileSink sink(file);
    if (htl::status failure = Driver(sink, "UTF-8").Write(writer); failure.IsError()) return failure;
    return file.Commit();
}

htl::status XmlStringWrite(std::vector<unsigned char>& document, htl::handle<XmlElemWriter> const& writer) {
    VectorSink sink(document);
    htl::status failure = Driver(sink, "UTF-8").Write(writer);
    if (!failure.IsError()) sink.Keep();
    return failure;
}

htl::status XmlTextWrite(std::wstring& document, htl::handle<XmlElemWriter> const& writer) {
    document.clear();
    PageSink sink;
    htl::status failure = Driver(sink, "UTF-16").Write(writer);
    if (!failure.IsError()) sink.MoveInto(document);
    return failure;
}

} // namespace sys::file
