#include "Common/model/IZO.h"

#include "support/messages.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace zo;

struct Factory {
    unsigned id;
    htl::status failure;
    std::vector<std::wstring> arguments;
};

std::vector<Factory> Factories() {
    htl::status const cause = ZOError::not_found("Soils[7]");
    return {
        {21654, ZOError::array_memory_conflict(), {}},
        {21655, ZOError::duplicate_name(), {}},
        {21656, ZOError::file_assign(L"Soils", L"x", cause), {L"Soils", L"x", cause.AsWString()}},
        {21658, ZOError::file_invalid_element_attribute(L"Soils", L"Len", L"x"), {L"Soils", L"Len", L"x"}},
        {21659, ZOError::invalid_name("a b\xC3\xA9"), {L"a b\u00e9"}},
        {21660, ZOError::not_found("Soils[7]"), {L"Soils[7]"}},
        {21661, ZOError::not_supported("int"), {L"int"}},
        {21662, ZOError::out_of_bounds(-7, 0, 3), {L"-7", L"0", L"3"}},
        {21663, ZOError::not_recognized(L"wet"), {L"wet"}},
        {29130, ZOError::not_visible(L"Cohesion"), {L"Cohesion"}},
    };
}

TEST(Errors, CarryTheTextOfTheirIdentifierAndNoOther) {
    for (Factory const& factory : Factories()) {
        EXPECT_TRUE(factory.failure.IsError());
        for (str::Message const& message : str::Messages())
            EXPECT_EQ(factory.failure.Is(message.id), message.id == factory.id) << factory.id << " " << message.id;
    }
}

TEST(Errors, CarryTheirArgumentsInOrder) {
    for (Factory const& factory : Factories()) {
        SCOPED_TRACE(factory.id);
        auto const* const detail = factory.failure.Detail();
        for (std::size_t i = 0; i < detail->arguments.size(); ++i)
            EXPECT_EQ(detail->arguments[i], i < factory.arguments.size() ? factory.arguments[i] : L"");
        EXPECT_EQ(detail->source, "");
        EXPECT_EQ(detail->position, -1);
    }
}

TEST(Errors, NestTheCauseAsText) {
    EXPECT_EQ(ZOError::file_assign(L"Soils", L"x", ZOError::duplicate_name()).AsWString(),
              L"Unable to assign \"x\" to Soils: Duplicate name.");
}

} // namespace
