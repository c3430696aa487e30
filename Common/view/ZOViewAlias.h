// What stands in the view for a child that is spliced in under another tag.
#pragma once

#include "Common/redirect/ZOAlias.h"

#include <string>

namespace zo::view::impl {

/// An alias by full name with a tag of its own. It has no row and is never saved.
class ZOViewAlias final : public ZOAlias {
public:
    /// `persist` holds the tag and the tag path.
    ZOViewAlias(std::string const& source, meta::MetaPersistTraits persist, ZOSet* owner);
    ZOViewAlias(ZOViewAlias const& other);

    meta::MetaPersistTraits GetPersistTraits() const override;
    IZO* Clone() override;

    /// The alias for `child` below `walked`, with `pattern` before its tag; entered in the child's set for as long as
    /// it is held, unless `walked` has no name. One that is there already serves again. Empty for a child without a
    /// name.
    static H For(H const& child, IZO const& walked, std::wstring const& pattern);

private:
    ~ZOViewAlias() override;

    meta::MetaPersistTraits persist;
};

} // namespace zo::view::impl
