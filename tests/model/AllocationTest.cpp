#include "Common/model/ZOArray.h"
#include "Common/registry/Find.h"
#include "Common/registry/RegistryImpl.h"
#include "tests/fixtures/Embankment.h"

#include "support/describe.h"

#include <cstdlib>
#include <limits>
#include <new>
#include <string>

namespace {
thread_local std::size_t allocations = 0;
} // namespace

// Counts what the whole process allocates, the library included. Every form is replaced: a block of one allocator must
// not come back to another.
void* operator new(std::size_t size, std::nothrow_t const&) noexcept {
    ++allocations;
    return std::malloc(size ? size : 1);
}
void* operator new(std::size_t size) {
    if (void* const block = ::operator new(size, std::nothrow)) return block;
    throw std::bad_alloc();
}
void* operator new[](std::size_t size) { return ::operator new(size); }
void* operator new[](std::size_t size, std::nothrow_t const&) noexcept { return ::operator new(size, std::nothrow); }
void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
void operator delete(void* block, std::nothrow_t const&) noexcept { std::free(block); }
void operator delete[](void* block) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t) noexcept { std::free(block); }
void operator delete[](void* block, std::nothrow_t const&) noexcept { std::free(block); }

namespace {

using namespace embankment;
using zo::Find;
using zo::H;

template <class Body>
std::size_t Count(Body const& body) {
    std::size_t const before = allocations;
    body();
    return allocations - before;
}

template <class T>
class NumberRows : public testing::Test {};
using NumberTypes = testing::Types<unsigned char, int, unsigned, long, unsigned long, float, double, htl::Int64,
                                   htl::UInt64, bool, DataParamType>;
TYPED_TEST_SUITE(NumberRows, NumberTypes);

TYPED_TEST(NumberRows, ConvertWithoutAnAllocation) {
    meta::MetaTraitsAtomic const& record = *meta::AtomicTraits<TypeParam>().AsAtomic();
    std::wstring const text = L"1";
    std::wstring out;
    out.reserve(64);
    TypeParam value{};
    TypeParam memory{};
    (void)record.toWide(&value, out, 0, nullptr); // the texts of truth values are made once
    EXPECT_EQ(Count([&] {
                  (void)record.fromWide(text, &value, 0, nullptr);
                  (void)record.toWide(&value, out, 0, nullptr);
                  record.write(&memory, &value);
                  record.read(&memory, &value);
                  (void)record.isDefault(&value);
                  (void)record.isMissing(&value);
                  (void)record.isValid(&value, nullptr, meta::AtomicTraits<TypeParam>());
              }),
              0u);
}

TYPED_TEST(NumberRows, AreCopiedWithoutAnAllocation) {
    meta::MetaTraitsAtomic const& record = *meta::AtomicTraits<TypeParam>().AsAtomic();
    EXPECT_EQ(Count([&] { meta::MetaTraitsAtomic const copy = record; }), 0u) << "every function fits where it is held";
}

class AllocationTest : public EmbankmentTest {};

TEST_F(AllocationTest, AccessThroughAViewAllocatesNothing) {
    H const cohesion = Find("Soils[0].Cohesion");
    double number = 0;
    EXPECT_EQ(Count([&] {
                  (void)cohesion->Get(number);
                  (void)cohesion->Set(number + 1);
                  (void)cohesion->IsDefault();
                  (void)cohesion->Verify();
              }),
              0u);
    EXPECT_EQ(number, 25);
    EXPECT_EQ(embankment.model.soils[0].cohesion, 26);
}

TEST_F(AllocationTest, ALongArrayTextNeedsNoNodeForEachValue) {
    std::wstring text;
    for (int i = 0; i < 2000; ++i) text += L"1,";
    zo::TrackingSuspension const suspended(*embankment.registry->Impl());
    H const points = Find("Regions[0].Points");
    std::size_t const made = Count([&] { (void)points->Set(text); });
    EXPECT_EQ(embankment.model.regions[0].points.size(), 2000u);
    EXPECT_LT(made, 40u) << "places, elements and one view";
}

} // namespace
