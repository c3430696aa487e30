// Nodes that answer for other nodes, as far as lookup has to know them.
#pragma once

#include "Common/model/IZO.h"

#include <string>

namespace zo {

/// Says which node to go on at.
class ZO_API IZORedirector {
public:
    virtual ~IZORedirector();
    /// The full name of the other node; empty for none.
    virtual std::string RedirectName() const = 0;
};

/// The part of a node that leads to another one.
class ZO_API ZORedirect : public IZORedirector {
public:
    /// The node under `RedirectName()`, found through the redirector's owner, or through the current registry if it has
    /// none. Empty without a name or a redirector.
    virtual H Redirect() const;
    /// The node whose owner is asked; not owned, usually the node itself.
    void SetRedirector(IZO* node) noexcept { redirector = node; }

    /// Whether the node is an alias: it stands in no list of tags and has no place of its own in the tree.
    virtual bool IsAlias() const noexcept;

private:
    IZO* redirector = nullptr;
};

} // namespace zo
