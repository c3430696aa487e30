#include "Common/registry/IODS.h"

#include <utility>

namespace zo {

IODS::IODS(std::string branch) : name(std::move(branch)) {}
IODS::~IODS() = default;

ODSName::ODSName(std::string branch, bool isAvailable) : IODS(std::move(branch)), available(isAvailable) {}
bool ODSName::IsActiveDataStore() const { return false; }
bool ODSName::IsAvailable() const { return available; }
void* ODSName::GetPtrType() const { return nullptr; }

} // namespace zo
