#include "e2e/installed.h"
#include "program/random_marks.h"
#include "program/world.h"

/// Sets of marks, each saved, and loaded by a program started anew, which `reread` does.
template <class Reread>
void expect_round_trips(Person& person, uint32_t seed, uint32_t count, const Reread& reread) {
    for (const uint32_t end = seed + count; seed < end; ++seed) {
        const RestrictionSet before = person.window().marks();
        mark_at_random(person, seed);
        const RestrictionSet marked = person.window().marks();
        person.apply();
        ASSERT_EQ(reread().marks(), after_a_round_trip(marked, before)) << seed;
    }
}

TEST(RoundTrip, OnEachFamilyInMemory) {
    using namespace machine::versions;
    uint32_t seed = 20000;
    for (const auto& version : {winnt, win2k, winxp, win95, win98, winme}) {
        WithAnna w(version);
        w.anna()[key::desktop];
        w.read();
        expect_round_trips(w, seed += 1000, 200, [&]() -> MainForm& { return w.read(); });
    }
}

/// BRITLOCK_CASES sets how many sets of marks each family gets.
TEST(RoundTrip, OnRealHives) {
    const char* wanted = std::getenv("BRITLOCK_CASES");
    uint32_t seed = 5000;
    for (const auto family : {SampleFamily::winnt, SampleFamily::win2k, SampleFamily::winxp}) {
        Installed w(family);
        w.enter();
        w.choose("Anna");
        expect_round_trips(w, seed += 1000, wanted ? std::atoi(wanted) : 340,
                           [&]() -> MainForm& { return w.enter_again("Anna"); });
        EXPECT_TRUE(regf::validate(regf::read_file(w.hive())).empty());
    }
}
