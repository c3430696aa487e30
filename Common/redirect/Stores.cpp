#include "Common/redirect/Stores.h"

#include <utility>

namespace zo {

ODS::ODS(std::string branch, bool isActive, bool isAvailable, void* client)
    : IODS(std::move(branch)), active(isActive), available(isAvailable), object(client) {}
bool ODS::IsActiveDataStore() const { return active; }
bool ODS::IsAvailable() const { return available || object != nullptr; }
void* ODS::GetPtrType() const { return object; }

ODSAccessor::ODSAccessor(std::string branch, Accessor function, std::size_t bytes)
    : IODS(std::move(branch)), accessor(function), offset(bytes) {}
bool ODSAccessor::IsActiveDataStore() const { return false; }
bool ODSAccessor::IsAvailable() const { return true; }
void* ODSAccessor::GetPtrType() const {
    void* const base = accessor(*this);
    return base ? static_cast<std::byte*>(base) + offset : nullptr;
}

ODSFnAccessor::ODSFnAccessor(std::string branch, void* client) : IODS(std::move(branch)), object(client) {}
bool ODSFnAccessor::IsActiveDataStore() const { return false; }
bool ODSFnAccessor::IsAvailable() const { return true; }
void* ODSFnAccessor::GetPtrType() const { return object; }

} // namespace zo
