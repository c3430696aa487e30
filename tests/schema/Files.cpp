#include "tests/schema/Files.h"

#include "support/text.h"
#include "support/xml/XmlFile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <unistd.h>

namespace files {
namespace {

struct Folder {
    Folder() { std::filesystem::create_directories(path); }
    ~Folder() {
        std::error_code ignored; // a directory that stays behind does no harm
        std::filesystem::remove_all(path, ignored);
    }

    std::filesystem::path path = std::filesystem::temp_directory_path() / ("schema." + std::to_string(getpid()));
};

Folder const& TheFolder() {
    static Folder const folder;
    return folder;
}

class EntryReader final : public sys::file::XmlElemReader {
public:
    htl::handle<XmlElemReader> Element(std::wstring const& tag) override {
        ADD_FAILURE() << "below an entry: " << str::as_cstring(tag);
        return {};
    }
    void Attribute(sys::file::XmlAttribute const& item) override { attributes.push_back(item); }
    void Text(std::wstring const& text) override { ADD_FAILURE() << "text: " << str::as_cstring(text); }

    Attributes attributes;
};

class SchemaReader final : public sys::file::XmlElemReader {
public:
    htl::handle<XmlElemReader> Element(std::wstring const& tag) override {
        EXPECT_EQ(tag, L"Entry");
        readers.emplace_back(new EntryReader);
        return readers.back();
    }
    void Attribute(sys::file::XmlAttribute const& item) override {
        ADD_FAILURE() << "attribute of the document element: " << str::as_cstring(item.first);
    }
    void Text(std::wstring const& text) override { ADD_FAILURE() << "text: " << str::as_cstring(text); }

    std::vector<htl::handle<EntryReader>> readers;
};

} // namespace

std::string Path(std::string const& name) { return (TheFolder().path / name).string(); }

std::wstring WidePath(std::string const& name) { return str::as_wstring(Path(name)); }

std::string Bytes(std::string const& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void Store(std::string const& path, std::string const& bytes) { std::ofstream(path, std::ios::binary) << bytes; }

std::vector<std::string> Names() {
    std::vector<std::string> names;
    for (auto const& entry : std::filesystem::directory_iterator(TheFolder().path))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

std::vector<Attributes> Entries(std::string const& path) {
    htl::handle<SchemaReader> const reader(new SchemaReader);
    htl::status const result = sys::file::XmlFileRead(str::as_wstring(path), reader);
    EXPECT_FALSE(result.IsError()) << str::as_cstring(result.AsWString());
    std::vector<Attributes> entries;
    for (auto const& entry : reader->readers) entries.push_back(entry->attributes);
    return entries;
}

std::wstring Value(Attributes const& entry, std::wstring const& name) {
    auto const found = std::find_if(entry.begin(), entry.end(), [&](auto const& item) { return item.first == name; });
    return found == entry.end() ? L"<none>" : found->second;
}

std::wstring NamesOf(Attributes const& entry) {
    std::wstring names;
    for (auto const& [name, value] : entry) {
        if (!names.empty()) names += L' ';
        names += name;
    }
    return names;
}

} // namespace files
