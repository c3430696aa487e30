#include "support/xml/Utf16Check.h"
#include "support/xml/XmlParser.h"

#include <expat.h>

#include <algorithm>
#include <exception>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace sys::file {
namespace {

constexpr unsigned notWellFormed = 90002;
constexpr unsigned doctypeRefused = 90008;
constexpr unsigned tooDeep = 90009;

constexpr bool IsXmlBlank(char c) noexcept { return c == ' ' || c == '\n' || c == '\t' || c == '\r'; }

bool BeginsWithMark(std::string_view document) noexcept {
    return document.starts_with("\xEF\xBB\xBF") || document.starts_with("\xFE\xFF") || document.starts_with("\xFF\xFE");
}

// Whether the name of an encoding fits text that is parsed as UTF-16, low byte first. Case doesn't count.
bool IsUtf16(std::string_view name) {
    std::string upper(name);
    std::ranges::transform(upper, upper.begin(), [](char c) { return c >= 'a' && c <= 'z' ? char(c - 'a' + 'A') : c; });
    return upper == "UTF-16" || upper == "UTF-16LE";
}

struct ParserDeleter {
    void operator()(XML_Parser parser) const noexcept { XML_ParserFree(parser); }
};

} // namespace

class XmlParser::Impl {
public:
    Impl(XmlEvents& target, XmlSource source)
        : events(target), source(source), parser(XML_ParserCreate(source == XmlSource::wideText ? "UTF-8" : nullptr)) {
        if (!parser) throw std::bad_alloc();
        XML_SetUserData(parser.get(), this);
        XML_SetElementHandler(parser.get(), OnStart, OnEnd);
        XML_SetCharacterDataHandler(parser.get(), OnCharacters);
        XML_SetCdataSectionHandler(parser.get(), OnCdataStart, OnCdataEnd);
        XML_SetStartDoctypeDeclHandler(parser.get(), OnDoctype);
        XML_SetUnknownEncodingHandler(parser.get(), OnUnknownEncoding, this);
        if (source == XmlSource::wideText) XML_SetXmlDeclHandler(parser.get(), OnDeclaration);
    }

    htl::status Block(std::span<char>& place) {
        void* const start = XML_GetBuffer(parser.get(), static_cast<int>(blockSize));
        if (!start) return Error_();
        place = block = {static_cast<char*>(start), blockSize};
        return {};
    }

    htl::status Parse(std::size_t used, bool last) {
        if (!std::exchange(begun, true)) {
            marked = BeginsWithMark({block.data(), used});
            // Among the first two bytes a zero makes 16 bits of a document, whatever its encoding is said to be. A text
            // with another control character there is refused for the same reason in the same place.
            if (source == XmlSource::wideText && used >= 2) std::replace(block.data(), block.data() + 2, '\0', '\1');
        }
        // What stands before a fault is parsed all the same: an earlier error is the one to report.
        auto const fault = source == XmlSource::bytes ? check.Check(block.first(used), last) : std::nullopt;
        XML_Index const before = XML_GetCurrentByteIndex(parser.get());
        auto const result =
            XML_ParseBuffer(parser.get(), static_cast<int>(fault ? fault->offset : used), last && !fault);
        if (thrown) std::rethrow_exception(std::exchange(thrown, nullptr));
        if (refusal.IsError()) return refusal;
        if (result != XML_STATUS_OK) return Error_();
        if (fault) return htl::status(notWellFormed, fault->line, fault->column, "unpaired surrogate");

        // A token that is longer than a block is scanned from its start with every block, so blocks grow with it.
        constexpr std::size_t limit = std::size_t(1) << 28;
        bool const stuck = XML_GetCurrentByteIndex(parser.get()) == before;
        blockSize = stuck ? std::min(2 * blockSize, limit) : xmlBlockSize;
        return {};
    }

private:
    static Impl& From(void* self) { return *static_cast<Impl*>(self); }

    static void XMLCALL OnStart(void* self, char const* name, char const** attributes) {
        From(self).Start_(name, attributes);
    }
    static void XMLCALL OnEnd(void* self, char const*) { From(self).End_(); }
    static void XMLCALL OnCharacters(void* self, char const* text, int length) {
        From(self).Characters_(text, static_cast<std::size_t>(length));
    }
    static void XMLCALL OnCdataStart(void* self) {
        From(self).inCdata = true;
        From(self).Characters_("", 0);
    }
    static void XMLCALL OnCdataEnd(void* self) { From(self).inCdata = false; }
    static void XMLCALL OnDoctype(void* self, char const*, char const*, char const*, int) {
        Impl& impl = From(self);
        impl.Refuse_(htl::status(doctypeRefused, impl.Line_(), impl.Column_()));
    }
    static void XMLCALL OnDeclaration(void* self, char const*, char const* named, int) {
        if (named && !IsUtf16(named))
            From(self).Refuse_(htl::status(notWellFormed, From(self).Line_(), From(self).Column_(),
                                           XML_ErrorString(XML_ERROR_INCORRECT_ENCODING)));
    }
    static int XMLCALL OnUnknownEncoding(void* self, char const* name, XML_Encoding*) {
        From(self).encoding = name;
        return XML_STATUS_ERROR;
    }

    void Start_(char const* name, char const* const* attributes) {
        if (stopped) return;
        if (++depth > xmlDepthLimit) {
            Refuse_(htl::status(tooDeep, Line_(), Column_(), xmlDepthLimit));
            return;
        }
        if (skipFrom != 0) return;
        bool wanted = false;
        Guard_([&] { wanted = events.StartElement(name, attributes); });
        if (wanted) return;
        skipFrom = depth;
        XML_SetCharacterDataHandler(parser.get(), nullptr);
    }

    void End_() {
        if (stopped) return;
        std::size_t const ended = depth--;
        if (skipFrom == 0) {
            Guard_([&] { events.EndElement(); });
        } else if (skipFrom == ended) {
            skipFrom = 0;
            XML_SetCharacterDataHandler(parser.get(), OnCharacters);
        }
    }

    void Characters_(char const* text, std::size_t length) {
        if (stopped || skipFrom != 0) return;
        bool const layout = !inCdata && std::all_of(text, text + length, IsXmlBlank) && !IsReference_(length);
        Guard_([&] { events.Characters(text, length, layout); });
    }

    // Whether the white space handed over stems from a reference, which always comes as one character by itself.
    bool IsReference_(std::size_t length) {
        if (length != 1) return false;
        int offset = 0;
        int size = 0;
        char const* const context = XML_GetInputContext(parser.get(), &offset, &size);
        if (!context || offset >= size) return false;
        // In a 16-bit document the other byte of "&" is zero and may come first.
        return context[offset] == '&' || (context[offset] == 0 && offset + 1 < size && context[offset + 1] == '&');
    }

    // Exceptions must not travel through the parser's frames, which are C.
    template <class F>
    void Guard_(F&& call) noexcept {
        try {
            call();
        } catch (...) {
            thrown = std::current_exception();
            Stop_();
        }
    }

    void Refuse_(htl::status failure) {
        if (stopped) return;
        refusal = std::move(failure);
        Stop_();
    }

    // The parser may still report what it has already seen, the end of an empty element for one.
    void Stop_() {
        stopped = true;
        XML_StopParser(parser.get(), XML_FALSE);
    }

    htl::status Error_() const {
        XML_Error const code = XML_GetErrorCode(parser.get());
        std::string reason = XML_ErrorString(code);
        if (code == XML_ERROR_UNKNOWN_ENCODING) reason += " \"" + encoding + "\"";
        return htl::status(notWellFormed, Line_(), Column_(), reason);
    }

    std::size_t Line_() const { return XML_GetCurrentLineNumber(parser.get()); }
    std::size_t Column_() const {
        std::size_t const before = XML_GetCurrentColumnNumber(parser.get());
        // The parser counts a mark as a column, people don't see it.
        return marked && Line_() == 1 && before != 0 ? before : before + 1;
    }

    XmlEvents& events;
    XmlSource source;
    std::unique_ptr<XML_ParserStruct, ParserDeleter> parser;
    Utf16Check check;
    std::span<char> block;
    std::size_t blockSize = xmlBlockSize;
    std::size_t depth = 0;
    std::size_t skipFrom = 0; // depth of the outermost skipped element, 0 outside of one
    bool begun = false;
    bool marked = false; // the document begins with a byte order mark
    bool inCdata = false;
    bool stopped = false;
    std::string encoding; // the declared one that is not known
    htl::status refusal;
    std::exception_ptr thrown;
};

XmlParser::XmlParser(XmlEvents& events, XmlSource source) : impl(std::make_unique<Impl>(events, source)) {}

XmlParser::~XmlParser() = default;

htl::status XmlParser::Block(std::span<char>& place) { return impl->Block(place); }

htl::status XmlParser::Parse(std::size_t used, bool last) { return impl->Parse(used, last); }

} // namespace sys::file
