// Replacing a file in one step.
//
// Whoever opens the file meanwhile, or after a crash, finds the old content or the new one, never a part of either.
#pragma once

#include "support/export.h"
#include "support/status.h"

#include <sys/types.h>

#include <cstddef>
#include <string>

namespace sys::file {

/// A file under construction. It takes its place on `Commit`; without one nothing has happened.
///
/// The bytes go into a temporary file in the target's directory, which has the mode of the old file, or of any new file
/// if there is none. Symbolic links are followed, so the link stays and its target is replaced. A target that exists
/// and is no regular file (a pipe, a device) is written directly.
/// Failure of every operation: message 90003 with the system's reason. The temporary is gone then, or at the latest
/// with the object, and the old file is as it was.
class ZO_API AtomicFile {
public:
    AtomicFile() = default;
    ~AtomicFile();
    AtomicFile(AtomicFile const&) = delete;
    AtomicFile& operator=(AtomicFile const&) = delete;

    /// Begins to replace `name`. Called once. Failure: also message 90011 if `name` is no file name.
    htl::status Open(std::wstring const& name);
    /// Appends bytes.
    htl::status Write(void const* data, std::size_t size);
    /// Brings the bytes to disk and puts the file in place.
    htl::status Commit();

private:
    htl::status Follow_(std::string& path) const;
    htl::status OpenTemporary_(std::string const& path, mode_t mode);
    htl::status Failure_(int reason) const;
    void Discard_() noexcept;

    std::wstring shownName;
    std::string target;
    std::string temporary; // empty when there is none: not made yet, moved, or the target is written directly
    int descriptor = -1;
};

} // namespace sys::file
