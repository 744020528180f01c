#include <gtest/gtest.h>

#include "program/random_marks.h"
#include "program/world.h"

namespace britlock {
namespace {

using namespace machine;

/// 1200 sets of marks over the families, each saved, and loaded by a program started anew.
TEST(RoundTrip, WhatWasMarkedComesBack) {
    const std::pair<const char*, Version> families[] = {
        {"WinNT", versions::winnt}, {"Win2K", versions::win2k}, {"WinXP", versions::winxp},
        {"Win95", versions::win95}, {"Win98", versions::win98}, {"WinME", versions::winme}};
    constexpr int cases_each = 200;
    uint32_t seed = 20010;
    for (const auto& [name, version] : families) {
        World w(version);
        w.windows.system.drives = 0b10000000000000000001011101;
        auto& user = w.nt() ? w.windows.add_profile("Anna") : w.windows.registry.at(HKEY_CURRENT_USER);
        user[key::desktop];
        auto reread = [&] {
            w.enter();
            if (w.nt()) w.choose("Anna");
        };
        reread();
        for (int i = 0; i < cases_each; ++i, ++seed) {
            SCOPED_TRACE(std::string(name) + ", seed " + std::to_string(seed));
            const Marks before = Marks::of(w.window());
            RandomPerson(w, seed).mark();
            const Marks marked = Marks::of(w.window());
            w.apply();
            reread();
            ASSERT_EQ(Marks::of(w.window()).lines, after_a_round_trip(marked, before).lines);
        }
    }
    std::cout << "  seeds 20010 to " << seed - 1 << "\n";
}

}  // namespace
}  // namespace britlock
