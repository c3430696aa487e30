// The cursor behind the schema of a registry: it walks rows and the words of enumerations, all at one level.
#pragma once

#include "support/units.h"
#include "support/xml/XmlElemWriter.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace zo::schema {

/// Stands on the document element first, then on one entry after the other. It reads the current registry and is used
/// while that stays as it is.
class ZO_API XmlZOSchemaWriter final : public sys::file::XmlElemWriter {
public:
    /// `flat`: all rows by number; else the rows of the view, depth first and without the root.
    explicit XmlZOSchemaWriter(bool flat);
    ~XmlZOSchemaWriter() override;

    std::wstring Tag() override;
    std::wstring Text() override;
    std::pair<sys::file::XmlAttribute const*, sys::file::XmlAttribute const*> Attributes() override;
    htl::handle<sys::file::XmlElemWriter> Next() override;
    htl::handle<sys::file::XmlElemWriter> FirstChild() override;

private:
    /// The words of the enumeration whose row was written last.
    struct Enumerators {
        std::size_t regID;
        std::uint32_t index;
        std::uint32_t count;
        std::wstring name; // of the row
        std::vector<hzn::units::Kind::Type> unitKinds;
        std::vector<std::wstring> values;
        std::vector<std::wstring> abbreviations;
        std::vector<std::wstring> prettyTexts;
    };

    void Step_();
    void StepInView_();
    void Prepare_();
    void PrepareRow_();
    void PrepareEnumerator_();
    void AddExtendedInfo_();
    void AddUnits_(hzn::units::Kind::Type kind);
    void Add_(std::wstring_view name, std::wstring value);
    /// The words of the current row's enumeration, null if it is none.
    std::unique_ptr<Enumerators> GatherEnumerators_() const;

    std::vector<std::size_t> stack; // the rows on the path, in the view
    std::vector<sys::file::XmlAttribute> attributes;
    std::size_t regID; // npos at the end
    bool flat;
    bool atEnvelope = true; // until the first child is asked for
    std::unique_ptr<Enumerators> enumerators;
    // Each row stands in the view once, so more steps than rows mean a view that leads in a circle.
    std::size_t stepsLeft;
};

} // namespace zo::schema
