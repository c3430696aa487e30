// The data stores that point at client objects.
#pragma once

#include "Common/registry/IODS.h"

#include <cstddef>
#include <string>

namespace zo {

/// A store over one client object. Persisted branches want this one, with `active` on.
class ZO_API ODS : public IODS {
public:
    /// `object` is the client's, or null.
    ODS(std::string name, bool active, bool available, void* object = nullptr);

    bool IsActiveDataStore() const override;
    /// The flag, or an object that is set.
    bool IsAvailable() const override;
    void* GetPtrType() const override;

    /// Whether the branch is cleared, written and read.
    void SetActive(bool on) noexcept { active = on; }
    /// Whether the branch is there without an object.
    void SetAvailable(bool on) noexcept { available = on; }
    /// Points at another object, or at none. Call `ZORegistry::InvalidateMemory` of the branch, too.
    void SetObject(void* client) noexcept { object = client; }

private:
    bool active;
    bool available;
    void* object;
};

/// A store whose object is asked for at each use. Always available and never active: neither written nor read.
class ZO_API ODSAccessor : public IODS {
public:
    /// Gives the object, or null.
    using Accessor = void* (*)(ODSAccessor const&);
    /// `offset` in bytes is added to what the accessor gives, unless that is null.
    ODSAccessor(std::string name, Accessor accessor, std::size_t offset = 0);

    bool IsActiveDataStore() const override;
    bool IsAvailable() const override;
    void* GetPtrType() const override;

private:
    Accessor accessor;
    std::size_t offset;
};

/// A store over an object that holds a function. Always available and never active: neither written nor read.
class ZO_API ODSFnAccessor : public IODS {
public:
    /// `object` stays the client's.
    ODSFnAccessor(std::string name, void* object);

    bool IsActiveDataStore() const override;
    bool IsAvailable() const override;
    void* GetPtrType() const override;

private:
    void* object;
};

} // namespace zo
