// Windows' own header makes macros of these names. A source that has included it must get the program's
// constants.
#define HKEY_CURRENT_USER (reinterpret_cast<void*>(0x80000001))
#define HKEY_LOCAL_MACHINE (reinterpret_cast<void*>(0x80000002))
#define HKEY_USERS (reinterpret_cast<void*>(0x80000003))

#include <gtest/gtest.h>

#include "base/runtime_error.h"
#include "platform/numbers.h"
#include "platform/registry_mod.h"

using namespace britlock;

static_assert(HKEY_CURRENT_USER == machine::Root::current_user);
static_assert(HKEY_LOCAL_MACHINE == machine::Root::local_machine);
static_assert(HKEY_USERS == machine::Root::users);

TEST(Numbers, OfATextItsFrontCountsAndHalfGoesToTheEvenNumber) {
    // clang-format off
    const std::pair<const char*, int32_t> numbers[] = {
        {"", 0}, {"Yes", 0}, {".", 0}, {"12ab", 12}, {" 3\t5\n AG", 35}, {"-7.", -7}, {"+4", 4}, {"0.5", 0}, {"1.5", 2},
        {"2.5", 2}, {"-2.5", -2}, {"3.7", 4}, {"3,7", 3}, {"1E5 GmbH", 100000}, {"1d2", 100}, {"2E", 2}, {"2e-1", 0},
        {"&HFFFF", -1}, {"&h10000", 65536}, {"&O17", 15}, {"&O8", 0}, {"1e-999", 0}, {"2147483647", 2147483647},
        {"-2147483648", INT32_MIN}};
    // clang-format on
    for (const auto& [text, number] : numbers)
        EXPECT_EQ(to_long(leading_number(text)), number) << text;
    for (const char* large : {"2147483648", "-2147483649", "1E999", "&H100000000"})
        EXPECT_THROW(to_long(leading_number(large)), RuntimeError) << large;
    EXPECT_EQ(number_text(0) + number_text(12) + number_text(-3), " 0 12-3");
}

TEST(WindowsFamily, IsToldByPlatformVersionAndBuild) {
    // clang-format off
    const std::pair<machine::Version, const char*> families[] = {
        {{2, 5, 2, 3790}, "Win2K"}, {{2, 6, 1, 7601}, "Win???"}, {{1, 4, 10, 0x040A07CE}, "Win98"},
        {{1, 4, 10, 0x040A08AE}, "Win98SE"}, {{1, 3, 0, 0}, "Win???"}, {{0, 1, 30, 172}, "Win32S"}, {{3, 4, 0, 0}, "Win???"}};
    // clang-format on
    for (const auto& [version, name] : families) {
        EXPECT_STREQ(family_of(version).name, name);
        EXPECT_EQ(family_of(version).nt, version.platform == 2 && version.major < 6) << name;
    }
}
