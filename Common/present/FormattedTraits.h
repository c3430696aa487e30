// Trait objects for texts and units: what is carried to a value that somebody reads, types or measures.
#pragma once

#include "Common/model/ZOAccessTrait.h"

#include "support/meta.h"
#include "support/units.h"

#include <cstddef>
#include <functional>
#include <string>

namespace zo {

/// Finds the unit kind of a value: that of the node's data parameter if it has one with a kind, else what the function
/// says of value and node.
class ZO_API ZOAccessUnitKindTrait : public IZOAccessValueTypeTrait {
public:
    /// What is called.
    using Function = std::function<hzn::units::Kind::Type(void const* value, IZO const* node)>;

    /// `function` may be empty; it is not copied and must live as long as the trait. `regID` is a row whose data
    /// parameter counts where the node's type has none, npos for none.
    ZOAccessUnitKindTrait(Function const& function, H const& node, std::size_t regID)
        : function(&function), node(node), regID(regID) {}

    htl::status CallValueTypeTrait(void* value) override;
    /// `None` until the trait was called.
    hzn::units::Kind::Type Result() const noexcept { return result; }

private:
    Function const* function;
    H node;
    std::size_t regID;
    hzn::units::Kind::Type result = hzn::units::Kind::None;
};

/// Formats a value into a text: calls the function with the value, the text, the format and the node.
class ZO_API ZOAccessReadFormattedOutput : public IZOAccessValueTypeTrait {
public:
    /// What is called.
    using Function = std::function<htl::status(void const* value, std::wstring& text, int format, IZO const* node)>;

    /// All of them must outlive the trait. `format` is that of the type's functions: 1 abbreviated, 2 pretty.
    ZOAccessReadFormattedOutput(Function const& read, int format, IZO const* node, std::wstring& output)
        : read(&read), format(format), node(node), output(&output) {}

    htl::status CallValueTypeTrait(void* value) override;

private:
    Function const* read;
    int format;
    IZO const* node;
    std::wstring* output;
};

/// Parses a text into a value: calls the function with the text, the value, the format and the node.
class ZO_API ZOAcessWriteFormattedOutput : public IZOAccessValueTypeTrait {
public:
    /// What is called.
    using Function = std::function<htl::status(std::wstring const& text, void* value, int format, IZO const* node)>;

    /// All of them must outlive the trait.
    ZOAcessWriteFormattedOutput(Function const& write, IZO const* node, int format, std::wstring const& input)
        : write(&write), node(node), format(format), input(&input) {}

    htl::status CallValueTypeTrait(void* value) override;
    /// Rewrites the numbers of a failure, such as a limit, from stored into visible units, with 8 significant digits:
    /// of nodes of the type `double`, or of the client's structure `FnAttr`, that have a kind and visible units. Any
    /// other failure comes back as it is; so does one that quotes the typed text, whose numbers are visible ones.
    ///
    /// Every number counts, digits in words too. Numbers have the decimal point of `str::locale::native()` or ".".
    htl::status ConvertUnitsInStatusToVisible(htl::status const& failure) override;

private:
    Function const* write;
    IZO const* node;
    int format;
    std::wstring const* input;
    bool quotesInput = false; // the function couldn't read the text
};

} // namespace zo
