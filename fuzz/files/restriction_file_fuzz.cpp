#include <algorithm>
#include <cstdlib>

#include "base/runtime_error.h"
#include "files/restriction_file.h"

namespace {

void demand(bool holds) {
    if (!holds) std::abort();
}

bool is_plain(const std::string& text) { return text.find('\0') == std::string::npos; }

void judge(const britlock::RestrictionSet& set) {
    for (int box = 0; box <= britlock::RestrictionSet::Boxes::last; ++box)
        demand(set.boxes[box] <= 1);
    for (const int drive : set.drives)
        demand(drive >= 0 && drive <= 2);
    demand(set.programs.size() <= 32767);
    demand(std::all_of(set.programs.begin(), set.programs.end(), is_plain));
    demand(is_plain(set.wallpaper) && is_plain(set.machine.organisation));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    try {
        const auto set = britlock::read_brl({reinterpret_cast<const char*>(data), size}, {});
        if (!set) return 0;
        judge(*set);
        // A set without quotes and ends of text is written so that it can be read again.
        const std::string bytes = britlock::brl_text(*set);
        if (std::count(bytes.begin(), bytes.end(), '\x1A') == 0)
            demand(britlock::read_brl(bytes, *set).has_value());
    } catch (const RuntimeError& error) {
        demand(error.number() == 6 || error.number() == 62 || error.number() == 380);
    }
    return 0;
}
