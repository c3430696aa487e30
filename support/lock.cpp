#include "support/lock.h"

namespace sys::thread::impl {

ProcessExclusiveAccess::ProcessExclusiveAccess() = default;

ProcessExclusiveAccess::~ProcessExclusiveAccess() = default;

void ProcessExclusiveAccess::Lock() { mutex.lock(); }

void ProcessExclusiveAccess::Unlock() { mutex.unlock(); }

} // namespace sys::thread::impl
