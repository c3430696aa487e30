#include "Common/registry/Find.h"
#include "tests/fixtures/Embankment.h"
namespace {
using namespace embankment;
TEST_F(EmbankmentTest, Smoke) { EXPECT_EQ(TextOf(zo::Find("Soils[0].Cohesion")), L"25"); }
} // namespace
