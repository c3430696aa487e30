#include "support/handle.h"

namespace htl {

handle_ref_counter::~handle_ref_counter() = default;

void handle_mgmt_refcounted::Delete(handle_ref_counter const* object) noexcept { delete object; }

} // namespace htl
