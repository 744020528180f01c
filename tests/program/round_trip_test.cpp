#include "program/random_marks.h"
#include "program/world.h"

namespace britlock {

/// 1200 sets of marks over the families, each saved, and loaded by a program started anew.
TEST(RoundTrip, WhatWasMarkedComesBack) {
    using namespace machine::versions;
    uint32_t seed = 20010;
    for (const auto& version : {winnt, win2k, winxp, win95, win98, winme}) {
        WithAnna w(version);
        w.windows.system.drives = 0b10000000000000000001011101;
        w.anna()[key::desktop];
        w.read();
        for (const uint32_t end = seed + 200; seed < end; ++seed) {
            const RestrictionSet before = w.window().marks();
            mark_at_random(w, seed);
            const RestrictionSet marked = w.window().marks();
            w.apply();
            ASSERT_EQ(w.read().marks(), after_a_round_trip(marked, before))
                << w.program->reg.get_os_name() << seed;
        }
    }
}

}  // namespace britlock
