// What the tests of schemas share: files that go with the process, and documents taken apart.
#pragma once

#include "support/status.h"

#include <string>
#include <utility>
#include <vector>

#include <csignal>
#include <sys/resource.h>

namespace files {

/// A path in a directory of this process.
std::string Path(std::string const& name);
std::wstring WidePath(std::string const& name);
std::string Bytes(std::string const& path);
void Store(std::string const& path, std::string const& bytes);
/// Names in the directory of this process, sorted.
std::vector<std::string> Names();

/// Files of this process can't grow beyond a size while this lives: the next best thing to a disk that is full.
class SizeLimit {
public:
    explicit SizeLimit(rlim_t size) : handler(std::signal(SIGXFSZ, SIG_IGN)) {
        ::getrlimit(RLIMIT_FSIZE, &old);
        rlimit limit = old;
        limit.rlim_cur = size;
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    SizeLimit(SizeLimit const&) = delete;
    SizeLimit& operator=(SizeLimit const&) = delete;
    ~SizeLimit() {
        ::setrlimit(RLIMIT_FSIZE, &old);
        std::signal(SIGXFSZ, handler);
    }

private:
    void (*handler)(int);
    rlimit old = {};
};

using Attributes = std::vector<std::pair<std::wstring, std::wstring>>;
/// The attributes of each child of the document element; a failed expectation for anything else in the document.
std::vector<Attributes> Entries(std::string const& path);
/// The value of an attribute, "<none>" without it.
std::wstring Value(Attributes const& entry, std::wstring const& name);
/// The names of the attributes with a blank between each two.
std::wstring NamesOf(Attributes const& entry);

} // namespace files
