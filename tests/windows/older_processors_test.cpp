// The instructions that tools/windows-for-486 replaces, each under every condition. This program goes through
// it as well: run unconverted it shows what the processor does, run converted what stands in for it.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>

namespace {

constexpr uint32_t numbers[] = {0, 1, 2, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF};
constexpr uint32_t old_value = 0x11111111, new_value = 0x2222ABCD;

struct Moved {
    uint32_t from_register, from_memory, half;
    uint8_t condition;
};

// Between the comparison and the moves nothing touches the flags.
// clang-format off
#define CONDITION(cc)                                                                                                  \
    {cc, [](uint32_t a, uint32_t b) {                                                                                  \
        Moved moved{old_value, old_value, old_value, 0};                                                               \
        const uint32_t source = new_value;                                                                             \
        asm("cmpl %[b], %[a]\n\tcmov" cc " %[r], %[one]\n\tcmov" cc " %[m], %[two]\n\tcmov" cc " %w[r], %w[three]\n\t"   \
            "set" cc " %[flag]"                                                                                        \
            : [one] "+&r"(moved.from_register), [two] "+&r"(moved.from_memory), [three] "+&r"(moved.half),             \
              [flag] "=m"(moved.condition)                                                                             \
            : [a] "r"(a), [b] "m"(b), [r] "r"(source), [m] "m"(source)                                                 \
            : "cc");                                                                                                   \
        return moved;                                                                                                  \
    }}

struct Condition {
    const char* name;
    Moved (*run)(uint32_t, uint32_t);
};
const Condition conditions[] = {
    CONDITION("o"), CONDITION("no"), CONDITION("b"), CONDITION("ae"), CONDITION("e"), CONDITION("ne"), CONDITION("be"),
    CONDITION("a"), CONDITION("s"), CONDITION("ns"), CONDITION("p"), CONDITION("np"), CONDITION("l"), CONDITION("ge"),
    CONDITION("le"), CONDITION("g")};
// clang-format on

TEST(OlderProcessors, ConditionalMovesFollowTheFlags) {
    for (const Condition& condition : conditions) {
        for (const uint32_t a : numbers) {
            for (const uint32_t b : numbers) {
                SCOPED_TRACE(testing::Message() << condition.name << " " << a << " " << b);
                const Moved moved = condition.run(a, b);
                EXPECT_EQ(moved.from_register, moved.condition ? new_value : old_value);
                EXPECT_EQ(moved.from_memory, moved.condition ? new_value : old_value);
                EXPECT_EQ(moved.half, moved.condition ? 0x1111ABCD : old_value);
            }
        }
    }
}

/// The three flags of a comparison: less, equal, not to be compared.
struct Flags {
    uint8_t carry, zero, parity;
    bool operator==(const Flags&) const = default;
};

// clang-format off
#define COMPARE(instruction, pop)                                                                                      \
    [](double a, double b) {                                                                                           \
        Flags flags{};                                                                                                 \
        asm volatile("fldl %[b]\n\tfldl %[a]\n\t" instruction " %%st(1), %%st\n\tsetb %[c]\n\tsete %[z]\n\tsetp %[p]\n\t" pop \
                     : [c] "=m"(flags.carry), [z] "=m"(flags.zero), [p] "=m"(flags.parity)                             \
                     : [a] "m"(a), [b] "m"(b)                                                                          \
                     : "cc", "st", "st(1)");                                                                           \
        return flags;                                                                                                  \
    }
// clang-format on

TEST(OlderProcessors, ComparisonsOfFractionsSetTheFlags) {
    const std::tuple<double, double, Flags> rows[] = {
        {1.5, 2.5, {1, 0, 0}}, {2.5, 1.5, {0, 0, 0}}, {1.5, 1.5, {0, 1, 0}}, {NAN, 1.5, {1, 1, 1}}};
    Flags (*const kinds[])(double, double) = {
        COMPARE("fcomi", "fstp %%st\n\tfstp %%st"), COMPARE("fucomi", "fstp %%st\n\tfstp %%st"),
        COMPARE("fcomip", "fstp %%st"), COMPARE("fucomip", "fstp %%st")};
    for (const auto& [a, b, flags] : rows) {
        for (const auto& kind : kinds)
            EXPECT_TRUE(kind(a, b) == flags) << a << " " << b << " " << (&kind - kinds);
    }
}

// clang-format off
#define FRACTION_MOVE(cc, set)                                                                                         \
    [](uint32_t a, uint32_t b) {                                                                                       \
        double result = 1.5;                                                                                           \
        const double source = 2.5;                                                                                     \
        uint8_t condition = 0;                                                                                         \
        asm volatile("fldl %[s]\n\tfldl %[d]\n\tcmpl %[b], %[a]\n\tfcmov" cc " %%st(1), %%st\n\t" set " %[c]\n\t"           \
                     "fstpl %[d]\n\tfstp %%st"                                                                         \
                     : [d] "+m"(result), [c] "=m"(condition)                                                           \
                     : [s] "m"(source), [a] "r"(a), [b] "m"(b)                                                         \
                     : "cc", "st", "st(1)");                                                                           \
        return result == (condition ? 2.5 : 1.5);                                                                      \
    }
// clang-format on

TEST(OlderProcessors, FractionsMoveByTheFlags) {
    bool (*const kinds[])(uint32_t, uint32_t) = {FRACTION_MOVE("b", "setb"),   FRACTION_MOVE("e", "sete"),
                                                 FRACTION_MOVE("be", "setbe"), FRACTION_MOVE("u", "setp"),
                                                 FRACTION_MOVE("nb", "setae"), FRACTION_MOVE("ne", "setne"),
                                                 FRACTION_MOVE("nbe", "seta"), FRACTION_MOVE("nu", "setnp")};
    for (const auto& kind : kinds) {
        for (const uint32_t a : numbers) {
            for (const uint32_t b : numbers)
                EXPECT_TRUE(kind(a, b)) << (&kind - kinds) << " " << a << " " << b;
        }
    }
}

}  // namespace
