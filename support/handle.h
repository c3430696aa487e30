// Counted handles: how nodes, sets, stores and readers are owned.
//
// The count lives in the object and is plain, since a registry belongs to one thread at a time. An object starts at 0
// and only handles change the count.
#pragma once

#include "support/export.h"

#include <concepts>
#include <cstdint>
#include <functional>
#include <utility>

namespace sys::thread {

/// Marks a class whose objects belong to one thread at a time. Holds no state.
class Affinity {};

} // namespace sys::thread

namespace htl {

struct handle_mgmt_refcounted;

/// Base of everything that `handle` can own: a plain 32-bit count that starts at 0, in copies too.
///
/// Threads: the count is not atomic; an object and its handles stay on one thread at a time.
class ZO_API handle_ref_counter : public sys::thread::Affinity {
public:
    handle_ref_counter() noexcept = default;
    /// A copy begins with a count of 0.
    handle_ref_counter(handle_ref_counter const&) noexcept : Affinity() {}
    /// Leaves the count of the left side alone.
    handle_ref_counter& operator=(handle_ref_counter const&) noexcept { return *this; }

    /// How many handles refer to the object now. For diagnostics and tests.
    std::int32_t RefCount() const noexcept { return references; }

protected:
    virtual ~handle_ref_counter();

private:
    friend struct handle_mgmt_refcounted;
    mutable std::int32_t references = 0;
};

/// The one way of managing a handle's target: counting in the object itself.
struct handle_mgmt_refcounted {
    /// Takes a share in an object, which may be null.
    static void AddRef(handle_ref_counter const* object) noexcept {
        if (object) ++object->references;
    }
    /// Deletes the object when the count read was below 2, so an object that was never counted goes too.
    static void Release(handle_ref_counter const* object) noexcept {
        if (object && object->references-- < 2) Delete(object);
    }

private:
    ZO_API static void Delete(handle_ref_counter const* object) noexcept;
};

/// A counted pointer to T, which derives from `handle_ref_counter`, or null.
///
/// Copying counts, moving steals and leaves the source null. Wrap a fresh object in a lasting handle before anything
/// else is done with it: a temporary handle to an object with count 0 deletes the object.
template <class T, class M = handle_mgmt_refcounted>
class handle {
public:
    /// What it refers to.
    using element_type = T;

    handle() noexcept = default;
    /// Null.
    handle(std::nullptr_t) noexcept {}
    /// Takes a share in `object`, which may be null.
    explicit handle(T* object) noexcept : pointer(object) { M::AddRef(pointer); }
    handle(handle const& other) noexcept : pointer(other.pointer) { M::AddRef(pointer); }
    handle(handle&& other) noexcept : pointer(std::exchange(other.pointer, nullptr)) {}
    template <class U>
    requires std::convertible_to<U*, T*> handle(handle<U, M> const& other)
    noexcept : pointer(other.get()) { M::AddRef(pointer); }
    template <class U>
    requires std::convertible_to<U*, T*> handle(handle<U, M>&& other)
    noexcept : pointer(other.detach_()) {}
    ~handle() { M::Release(pointer); }

    // NOLINTNEXTLINE(bugprone-unhandled-self-assignment): copied and swapped
    handle& operator=(handle const& other) noexcept {
        handle(other).swap(*this);
        return *this;
    }
    handle& operator=(handle&& other) noexcept {
        handle(std::move(other)).swap(*this);
        return *this;
    }

    /// The object, not counted; null for none.
    T* get() const noexcept { return pointer; }
    /// The object, which must be there.
    T* operator->() const noexcept { return pointer; }
    T& operator*() const noexcept { return *pointer; }
    /// Whether there is an object.
    explicit operator bool() const noexcept { return pointer != nullptr; }

    /// Gives up the share and leaves the handle null.
    void release() noexcept { M::Release(std::exchange(pointer, nullptr)); }
    void swap(handle& other) noexcept { std::swap(pointer, other.pointer); }

    friend bool operator==(handle const& a, handle const& b) noexcept { return a.pointer == b.pointer; }
    friend bool operator==(handle const& a, std::nullptr_t) noexcept { return a.pointer == nullptr; }

private:
    template <class, class>
    friend class handle;
    T* detach_() noexcept { return std::exchange(pointer, nullptr); }

    T* pointer = nullptr;
};

/// The same object seen as T, or an empty handle.
template <class T, class U, class M>
handle<T, M> dynamic_handle_cast(handle<U, M> const& from) {
    return handle<T, M>(dynamic_cast<T*>(from.get()));
}

/// Base that forbids copying.
class not_copyable {
public:
    not_copyable(not_copyable const&) = delete;
    not_copyable& operator=(not_copyable const&) = delete;

protected:
    not_copyable() = default;
    ~not_copyable() = default;
};

} // namespace htl

/// Hashes the object's address.
template <class T, class M>
struct std::hash<htl::handle<T, M>> {
    /// Equal for handles to one object.
    std::size_t operator()(htl::handle<T, M> const& value) const noexcept { return std::hash<T*>()(value.get()); }
};
