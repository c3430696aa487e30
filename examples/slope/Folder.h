// Where the files of a job go.
#pragma once

#include <string>

namespace slope {

/// A folder that the user named, or a temporary one that goes when the work is done.
class Folder {
public:
    /// Makes the folder. Temporary if `named` is empty.
    explicit Folder(std::string const& named);
    Folder(Folder const&) = delete;
    Folder& operator=(Folder const&) = delete;
    ~Folder();

    /// Whether there is such a folder now.
    bool IsThere() const;

    std::string File(std::string const& name) const { return path + "/" + name; }
    /// The file as reports show it: a temporary folder is called differently each time.
    std::string Shown(std::string const& name) const { return temporary ? name : File(name); }
    bool IsTemporary() const { return temporary; }

private:
    std::string path;
    bool temporary;
};

} // namespace slope
