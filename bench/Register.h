// Registration by hand, a line a row, for the models that the benchmarks scale.
#pragma once

#include <zo/zo.h>

#include <string>
#include <utility>

namespace bench {

using meta::MetaPersistTraits;

inline void Row(std::string name, zo::H const& node, MetaPersistTraits const& persist,
                meta::MetaDataTraits const& traits, void* object = nullptr) {
    htl::handle<zo::IODS> const store(new zo::ODS(std::move(name), true, object == nullptr, object));
    zo::ZORegistry::Instance()->RegisterZO(store, node, persist, traits);
}

// A prototype whose memory is an offset in its parent, 0 for elements and top-level objects.
template <class T>
zo::H Value(std::size_t offset, meta::MetaDataTraits const& traits = meta::AtomicTraits<T>()) {
    return zo::H(new zo::ZOWrapperAtomic<T>(zo::IZO::npos, nullptr, traits, reinterpret_cast<void*>(offset), {}));
}
inline zo::H Structure(std::size_t offset, meta::MetaDataTraits const& traits) {
    return zo::H(new zo::ZOWrapperStruct(zo::IZO::npos, nullptr, traits, reinterpret_cast<void*>(offset), {}));
}
inline zo::H Array(std::size_t offset, meta::MetaDataTraits const& traits) {
    htl::handle<zo::ZOMemMgr> const manager(new zo::ZOArrayMemMgr(reinterpret_cast<void*>(offset), traits));
    return zo::H(new zo::ZOArrayWrapper(zo::IZO::npos, nullptr, {}, manager));
}

/// Makes a registry current for as long as it lives, or until another one is. The registry itself stays: persist trees
/// keep it.
class CurrentRegistry {
public:
    CurrentRegistry() : registry(new zo::ZORegistry), before(zo::ZORegistry::SetInstance(registry.get())) {}
    CurrentRegistry(CurrentRegistry const&) = delete;
    CurrentRegistry& operator=(CurrentRegistry const&) = delete;
    ~CurrentRegistry() { zo::ZORegistry::SetInstance(before); }

    /// Makes it current again, after others.
    void Select() { zo::ZORegistry::SetInstance(registry.get()); }

private:
    htl::handle<zo::ZORegistry> registry;
    zo::ZORegistry* before;
};

} // namespace bench
