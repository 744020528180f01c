#include <algorithm>
#include <cstdlib>

#include "machine/profile_text.h"

namespace {

constexpr auto section = "Options";
constexpr auto key = "BootMenu";

void demand(bool holds) {
    if (!holds) std::abort();
}

std::string set(const std::string& text, std::optional<std::string_view> value) {
    return machine::with_profile_value(text, section, key, value);
}

std::string get(const std::string& text) { return machine::profile_value(text, section, key); }

}  // namespace

/// An input is an .ini file, as it lies on the disk of a stranger.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    demand(get(text).size() < 255);
    const std::string changed = set(text, "17");
    demand(get(changed) == "17");
    demand(set(changed, "17") == changed);
    demand(get(set(changed, "0")) == "0");
    // Of what was there at most one line is another one.
    const auto lines = [](const std::string& of) { return std::count(of.begin(), of.end(), '\n'); };
    demand(lines(changed) >= lines(text) && lines(changed) <= lines(text) + 3);
    demand(set(text, std::nullopt).size() <= size);
    return 0;
}
