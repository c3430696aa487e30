#include "support/typename.h"

#include "support/int64.h"

#include <cstddef>
#include <cstdlib>
#include <functional>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <string_view>
#include <unordered_map>
#include <utility>

#if defined(__GNUG__)
#include <cxxabi.h>
#endif

namespace meta {
namespace {

std::string MakeName(std::type_info const& type) {
    struct Known {
        std::type_info const& type;
        char const* name;
    };
    // The types whose names compilers spell apart, or spell with what they stand for.
    Known const known[] = {
        {typeid(htl::Int64), "__int64"},
        {typeid(htl::UInt64), "unsigned __int64"},
        {typeid(std::string), "std::string"},
        {typeid(std::wstring), "std::wstring"},
    };
    for (Known const& row : known) {
        if (row.type == type) return row.name;
    }
#if defined(__GNUG__)
    int failure = 0;
    std::unique_ptr<char, void (*)(void*)> const readable(abi::__cxa_demangle(type.name(), nullptr, nullptr, &failure),
                                                          &std::free);
    std::string name = readable ? readable.get() : type.name();
    for (std::size_t at = 0; (at = name.find("std::__cxx11::", at)) != std::string::npos;)
        name.replace(at, 14, "std::");
#else
    std::string name = type.name();
    for (std::string_view word : {"struct ", "class ", "enum ", "union "}) {
        for (std::size_t at = 0; (at = name.find(word, at)) != std::string::npos;) name.erase(at, word.size());
    }
#endif
    return name;
}

// Lets a table of strings be asked with a view.
struct HashOfText {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const noexcept { return std::hash<std::string_view>()(text); }
};

struct Cache {
    std::shared_mutex access;
    // By the compiler's name and not by the type itself, which goes away with the module that it belongs to.
    // Each text has a node of its own, so references stay good while the table grows.
    std::unordered_map<std::string, std::string, HashOfText, std::equal_to<>> names;
};

} // namespace

std::string const& TypeName(std::type_info const& type) {
    // Never freed: statics of client modules may still ask while the process ends.
    static Cache& cache = *new Cache;
    std::string_view const key = type.name();
    {
        std::shared_lock const reading(cache.access);
        if (auto const row = cache.names.find(key); row != cache.names.end()) return row->second;
    }
    std::string name = MakeName(type);
    std::unique_lock const writing(cache.access);
    return cache.names.try_emplace(std::string(key), std::move(name)).first->second;
}

} // namespace meta
