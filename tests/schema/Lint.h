// The judgement of another program on documents and schemas.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace lint {

/// The schema of the current registry; a failed expectation if there is none.
std::string Schema();
/// The current registry as a document in bytes, a filtered one too.
std::string Document(std::vector<std::wstring> const* filter = nullptr);

/// Whether a document is valid by a schema.
testing::AssertionResult IsValid(std::string const& document, std::string const& schema);
/// Whether a schema is in order and a well-formed document not valid by it.
testing::AssertionResult IsRefused(std::string const& document, std::string const& schema);
/// Whether the current registry's document is valid by its schema.
testing::AssertionResult SavesWhatItsSchemaTells(std::vector<std::wstring> const* filter = nullptr);

/// `text` with the first `from` replaced by `to`; a failed expectation where it has none.
std::string With(std::string text, std::string const& from, std::string const& to);

} // namespace lint
