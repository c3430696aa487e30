#include "support/handle.h"

#include <gtest/gtest.h>

#include <type_traits>
#include <utility>

namespace {

class Sounding : public htl::handle_ref_counter {
public:
    explicit Sounding(int& counter) : deaths(&counter) {}
    Sounding(Sounding const&) = default;
    ~Sounding() override { ++*deaths; }
    Sounding& operator=(Sounding const&) = default;

private:
    int* deaths;
};

class LoggedSounding : public Sounding {
public:
    using Sounding::Sounding;
};

/// A base in front of the counter, so that the counter's address differs from the object's.
struct Label {
    virtual ~Label() = default;
    int number = 0;
};
class LabelledSounding : public Label, public Sounding {
public:
    using Sounding::Sounding;
};

using SoundingHandle = htl::handle<Sounding>;

struct HandleTest : testing::Test {
    int deaths = 0;
};

TEST_F(HandleTest, CountStartsAtZeroAndFollowsHandles) {
    auto* const sounding = new Sounding(deaths);
    EXPECT_EQ(sounding->RefCount(), 0);
    SoundingHandle first(sounding);
    EXPECT_EQ(sounding->RefCount(), 1);
    {
        SoundingHandle second = first;
        EXPECT_EQ(sounding->RefCount(), 2);
    }
    EXPECT_EQ(sounding->RefCount(), 1);
    EXPECT_EQ(deaths, 0);
}

TEST_F(HandleTest, LastReleaseDeletesOnceAndLeavesNull) {
    SoundingHandle handle(new Sounding(deaths));
    handle.release();
    EXPECT_EQ(deaths, 1);
    EXPECT_FALSE(handle);
    handle.release();
    EXPECT_EQ(deaths, 1);
}

TEST_F(HandleTest, ReleaseAtCountZeroDeletesOnce) {
    htl::handle_mgmt_refcounted::Release(new Sounding(deaths));
    EXPECT_EQ(deaths, 1);
}

TEST_F(HandleTest, NullIsNoObject) {
    SoundingHandle const empty;
    SoundingHandle const copy = empty;
    SoundingHandle const wrapped(static_cast<Sounding*>(nullptr));
    EXPECT_FALSE(copy);
    EXPECT_EQ(wrapped, nullptr);
    EXPECT_EQ(empty.get(), nullptr);
    htl::handle_mgmt_refcounted::AddRef(nullptr);
    htl::handle_mgmt_refcounted::Release(nullptr);
}

TEST_F(HandleTest, NullStaysNullWhenTheCounterIsNoFirstBase) {
    htl::handle<LabelledSounding> const empty;
    SoundingHandle const asBase = empty;
    EXPECT_EQ(asBase.get(), nullptr);
}

TEST_F(HandleTest, CopiedObjectStartsAtZeroAndAssignedObjectKeepsItsCount) {
    SoundingHandle const first(new Sounding(deaths));
    SoundingHandle const shared = first;
    SoundingHandle const second(new Sounding(*first));
    EXPECT_EQ(second->RefCount(), 1);
    *second = *first;
    EXPECT_EQ(second->RefCount(), 1);
    EXPECT_EQ(first->RefCount(), 2);
}

TEST_F(HandleTest, MoveStealsAndLeavesTheSourceNull) {
    SoundingHandle first(new Sounding(deaths));
    SoundingHandle second = std::move(first);
    EXPECT_FALSE(first); // NOLINT(bugprone-use-after-move): the state after a move is the point
    EXPECT_EQ(second->RefCount(), 1);
    SoundingHandle third(new Sounding(deaths));
    third = std::move(second);
    EXPECT_EQ(deaths, 1);
    EXPECT_FALSE(second); // NOLINT(bugprone-use-after-move)
    EXPECT_EQ(third->RefCount(), 1);
}

TEST_F(HandleTest, SelfAssignmentKeepsTheObject) {
    SoundingHandle handle(new Sounding(deaths));
    SoundingHandle& alias = handle;
    handle = alias;
    EXPECT_EQ(deaths, 0);
    EXPECT_EQ(handle->RefCount(), 1);
}

TEST_F(HandleTest, ConvertsToABaseAndBackAndDeletesThroughIt) {
    {
        htl::handle<LoggedSounding> const logged(new LoggedSounding(deaths));
        SoundingHandle const base = logged;
        EXPECT_EQ(base->RefCount(), 2);
        EXPECT_EQ(htl::dynamic_handle_cast<LoggedSounding>(base), logged);
        EXPECT_FALSE(htl::dynamic_handle_cast<LabelledSounding>(base));
    }
    EXPECT_EQ(deaths, 1);
    { SoundingHandle const labelled(htl::handle<LabelledSounding>(new LabelledSounding(deaths))); }
    EXPECT_EQ(deaths, 2);
}

TEST_F(HandleTest, SwapExchangesWithoutCounting) {
    SoundingHandle first(new Sounding(deaths));
    SoundingHandle second;
    first.swap(second);
    EXPECT_FALSE(first);
    EXPECT_EQ(second->RefCount(), 1);
}

static_assert(!std::is_convertible_v<Sounding*, SoundingHandle>, "a temporary handle would delete a fresh object");
static_assert(!std::is_convertible_v<SoundingHandle, htl::handle<LoggedSounding>>);
static_assert(std::is_empty_v<sys::thread::Affinity>);

class Ruler : htl::not_copyable {};
static_assert(!std::is_copy_constructible_v<Ruler> && !std::is_copy_assignable_v<Ruler>);

} // namespace
