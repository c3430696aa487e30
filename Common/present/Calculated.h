// Nodes that belong to the application's calculations: values that are worked out, the functions that do it, and the
// parameter that governs a value.
#pragma once

#include "Common/model/IZO.h"

#include "support/meta.h"

#include <string>

/// A function object of the application. This library only passes it on.
///
/// Derive from it what a node is to run, and register the template of the type: a row whose prototype is a wrapper,
/// entered with `zo::ZOTypeTemplate::Register(typeid(IFn), prototype)`.
class ZO_API IFn {
public:
    virtual ~IFn();
};

namespace zo {

/// Asks an object to bring the values that it works out up to date: writes 1 to its child with the tag
/// "UpdateCalculatedValues", to whose writing the application has tied its calculation. The child has to read as
/// something else, 0 say, or nothing would change and nothing be written.
///
/// Success without such a child, and for an empty handle. Failure: that of the write.
ZO_API htl::status UpdateCalculatedValues(H const& object);

/// A view of an object of the application's, for types that have one.
template <class T>
H GetAtomicWrapper(T* object) = delete;
/// A node over `function`, made by the wrapper of the type's template in the current registry: without owner, entry and
/// memory manager. The caller keeps the function alive as long as the node. Empty without a template that is a wrapper.
template <>
ZO_API H GetAtomicWrapper<IFn>(IFn* function);

/// The parameter that governs a node: the value of the nearest field `name`, looked for beside the node, then beside
/// each of its parents. The first level that has the field decides, whatever it holds: a field that can't be read, or
/// holds no number of 32 bits, gives 0. So does a name that no level has. Children of the root have nothing beside
/// them.
ZO_API DataParamType LookupParam(H const& node, std::string const& name);

/// Whether the node is the registered one of its row in the current registry. A clone or view of that row is not.
ZO_API bool IsTemplate(H const& node);
ZO_API bool IsTemplate(IZO const* node);

} // namespace zo
