// Data stores: whether a registered branch has data now, and where it is.
#pragma once

#include "support/handle.h"

#include <string>

namespace zo {

/// What the registry asks of the store of a row. Clients may derive their own.
class ZO_API IODS : public htl::handle_ref_counter {
public:
    ~IODS() override;
    /// Whether the store holds data of its own: such branches are cleared, written and read.
    virtual bool IsActiveDataStore() const = 0;
    /// Whether the branch is there now. Walks step over a branch that is not; a name whose first component is such a
    /// branch leads nowhere.
    virtual bool IsAvailable() const = 0;
    /// The client object behind the branch, or null. Owned by the client.
    virtual void* GetPtrType() const = 0;

    /// The name under which the branch is registered, in normal form.
    std::string const& Name() const noexcept { return name; }

protected:
    /// Of the branch with this name.
    explicit IODS(std::string name);

private:
    std::string name;
};

/// A store that only names a branch.
class ZO_API ODSName : public IODS {
public:
    /// `available` is what the store answers.
    explicit ODSName(std::string name, bool available = true);
    /// Never.
    bool IsActiveDataStore() const override;
    bool IsAvailable() const override;
    void* GetPtrType() const override;

private:
    bool available;
};

} // namespace zo
