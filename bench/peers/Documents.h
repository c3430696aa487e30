// The library's side of a comparison: the model as a tree, saved and loaded, and where documents come from.
#pragma once

#include "bench/Register.h"
#include "bench/peers/Model.h"

#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>

namespace peers {

/// Raises std::runtime_error, which ends the program, unless something holds.
inline void Require(bool condition, std::string const& what) {
    if (!condition) throw std::runtime_error(what);
}

/// The value of a variable of the environment; `otherwise` if it isn't set or is empty.
std::string Environment(char const* name, std::string const& otherwise);

/// A file name in the folder for output that is this process's own. What is there in the end is removed.
class OutputFile {
public:
    explicit OutputFile(std::string const& name = "out");
    OutputFile(OutputFile const&) = delete;
    OutputFile& operator=(OutputFile const&) = delete;
    ~OutputFile();

    std::filesystem::path const path;
};

/// What stands in a file.
Model ReadFileByHand(std::filesystem::path const& path);
/// What stands in a text that the library made.
Model ReadTextByHand(std::wstring const& text);

/// The one registry over models. Saves one, or loads it. Failure: std::runtime_error.
///
/// The tree has the form of the document that the programs share: branches in the order of their tags, the fields of a
/// material in the order of theirs. What the library writes differs in form only: two blanks of indentation instead of
/// a tab, "1.00" and a version of four numbers in the attributes of the document element; in memory it is wide text, of
/// four bytes a character, whose declaration says UTF-16. Rates are in bytes of the document that the programs share,
/// so that they compare.
class Tree {
public:
    std::wstring SaveToText(Model& model);
    void SaveToFile(Model& model, std::filesystem::path const& path);
    /// Loads into a model that is as good as new, as the next function does.
    void LoadFromText(Model& model, std::wstring const& text);
    void LoadFromFile(Model& model, std::filesystem::path const& path);

    static Tree& Instance();

private:
    Tree();
    void Select_(Model& other);

    bench::CurrentRegistry registry;
    Model* model = nullptr;
};

/// Whether documents of the library's own making do where there are none from outside.
enum class Samples { refused, taken };

/// The file of the document that the programs share: doc_NMB.xml in PEER_DOC_DIR. Without that variable it is one that
/// the library makes of a sample, and so it is where samples are taken for what isn't there.
class DocumentFile {
public:
    /// Raises std::runtime_error if there is no such document.
    DocumentFile(std::size_t megabytes, Samples samples);

    std::filesystem::path const& Path() const { return path; }
    std::string Content() const;
    bool IsSample() const { return sample.has_value(); }

private:
    std::filesystem::path path;
    std::optional<OutputFile> sample;
};

/// A document, what stands in it, and what it is as wide text.
class Document {
public:
    /// Checks all that is timed: that the library loads from file and text what stands in the document, and that it
    /// saves it again. Raises std::runtime_error otherwise.
    Document(std::size_t megabytes, Samples samples);

    DocumentFile const file;
    Model model;
    std::wstring text;
    std::size_t bytes; ///< of the file

private:
    void Check_();
};

} // namespace peers
