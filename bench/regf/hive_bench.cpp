#include <benchmark/benchmark.h>

#include <cstdlib>
#include <fstream>
#include <iterator>

#include "regf/hive.h"

// A real hive takes the place of the made one: regf_bench with HIVE=/path/to/NTUSER.DAT
namespace regf {
namespace {

std::u16string numbered(const char16_t* stem, int number) {
    std::u16string out = stem;
    for (char digit : std::to_string(number))
        out += static_cast<char16_t>(digit);
    return out;
}

/// `keys` keys with two values each, a hundred in one part, a hundred parts in one group.
Bytes made_hive(int keys) {
    Hive hive = Hive::create({.file_name = u"bench", .now = 1});
    for (int i = 0; i < keys; ++i) {
        const std::u16string path = numbered(u"Group ", i / 10000) + numbered(u"\\Part ", i / 100 % 100);
        const Key key = *hive.create(path + numbered(u"\\Key ", i), 1);
        (void)hive.set_value(key, u"Text", {REG_SZ, Bytes(static_cast<size_t>(20 + i % 200), 'x')}, 1);
        (void)hive.set_value(key, u"Number", {REG_DWORD, {1, 0, 0, 0}}, 1);
    }
    const ByteView image = hive.seal(1)->image;
    return {image.begin(), image.end()};
}

Bytes small_hive() {
    if (const char* path = std::getenv("HIVE")) {
        std::ifstream in(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }
    return made_hive(2400);
}

void open_and_validate(benchmark::State& state, const Bytes& image) {
    for (auto unused : state)
        benchmark::DoNotOptimize(Hive::open(image));
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * image.size()));
    state.counters["size"] = static_cast<double>(image.size());
}

void open_small(benchmark::State& state) { open_and_validate(state, small_hive()); }
void open_with_100000_keys(benchmark::State& state) { open_and_validate(state, made_hive(100000)); }

void write_200_values_and_seal(benchmark::State& state) {
    const Bytes image = small_hive();
    for (auto unused : state) {
        state.PauseTiming();
        Hive hive = std::move(*Hive::open(image));
        state.ResumeTiming();
        for (int i = 0; i < 200; ++i) {
            const Key key = *hive.create(numbered(u"Software\\Policies\\Part ", i % 10), 2);
            (void)hive.set_value(key, numbered(u"Value ", i), {REG_DWORD, {2, 0, 0, 0}}, 2);
        }
        benchmark::DoNotOptimize(hive.seal(3));
    }
}

void create_and_delete_5000_subkeys_of_one_key(benchmark::State& state) {
    for (auto unused : state) {
        Hive hive = Hive::create({.minor_version = 5, .file_name = u"bench", .now = 1});
        const Key parent = *hive.create(u"Parent", 1);
        for (int i = 0; i < 5000; ++i)
            (void)hive.create_subkey(parent, numbered(u"Key ", i * 7919 % 10007), 1);
        (void)hive.delete_key(parent, 2);
    }
}

BENCHMARK(open_small)->Unit(benchmark::kMillisecond);
BENCHMARK(open_with_100000_keys)->Unit(benchmark::kMillisecond);
BENCHMARK(write_200_values_and_seal)->Unit(benchmark::kMillisecond);
BENCHMARK(create_and_delete_5000_subkeys_of_one_key)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace regf

BENCHMARK_MAIN();
