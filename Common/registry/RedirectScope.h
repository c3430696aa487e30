// How far one question follows nodes that answer for others.
#pragma once

namespace zo::impl {

/// Bounds the redirects that are followed inside one another. A redirect is found by a lookup, which may come across
/// further ones; aliases that lead in a circle would never end, and each level takes room on the stack.
///
/// A redirect that finds its scope closed gives an empty handle. The bound on all redirects of one outermost question
/// keeps the time linear where lookups try a second way after a first one failed.
class RedirectScope {
public:
    static constexpr int mostNested = 250;
    static constexpr int mostOfOneQuestion = 1000;

    RedirectScope() noexcept {
        if (depth++ == 0) steps = 0;
        open = depth <= mostNested && ++steps <= mostOfOneQuestion;
    }
    RedirectScope(RedirectScope const&) = delete;
    RedirectScope& operator=(RedirectScope const&) = delete;
    ~RedirectScope() { --depth; }

    explicit operator bool() const noexcept { return open; }

private:
    static thread_local constinit int depth;
    static thread_local constinit int steps;
    bool open;
};

} // namespace zo::impl
