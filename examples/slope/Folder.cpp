#include "examples/slope/Folder.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace slope {

Folder::Folder(std::string const& named) : path(named), temporary(named.empty()) {
    std::error_code error;
    if (temporary) {
        path = std::filesystem::temp_directory_path(error).string() + "/slope-XXXXXX";
        if (!mkdtemp(path.data())) path.clear();
    } else {
        std::filesystem::create_directories(path, error);
    }
}

bool Folder::IsThere() const {
    std::error_code error;
    return std::filesystem::is_directory(path, error);
}

Folder::~Folder() {
    std::error_code ignored; // what can't be removed stays among the temporary files
    if (temporary && !path.empty()) std::filesystem::remove_all(path, ignored);
}

} // namespace slope
