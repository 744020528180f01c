#include <algorithm>

#include "regf/commit_check.h"
#include "regf/hive_check.h"

using namespace fuzz;

namespace {

/// An input is a script of edits, four bytes each, and then a hive.
constexpr size_t script_size = 32 * 4;

regf::Key pick(const regf::Hive& hive, uint8_t choice) {
    regf::Key key = hive.root();
    for (int level = 0; level < 4 && choice != 0; ++level, choice /= 4) {
        const auto children = hive.subkeys(key);
        if (children.empty() || choice % 4 == 0) break;
        key = children[(choice % 4 - 1u) * (children.size() - 1) / 2];
    }
    return key;
}

std::u16string name_of(const regf::Hive& hive, regf::Key key, uint8_t choice) {
    const auto values = hive.values(key);
    if (choice % 2 != 0 && !values.empty()) return values[choice / 2 % values.size()].name;
    return choice < 8 ? std::u16string() : std::u16string(choice % 16, static_cast<char16_t>(u'A' + choice));
}

/// The four bytes choose what is done, to which key, under which name and with how much data.
void edit(regf::Hive& hive, ByteView script) {
    const regf::Key key = pick(hive, script[1]);
    const std::u16string name = name_of(hive, key, script[2]);
    const size_t sizes[] = {0, 3, 4, 5, size_t{script[3]}, 4000, 16344, 16345};
    switch (script[0] % 5) {
        case 0:
            (void)hive.create_subkey(key, name, 5);
            break;
        case 1:
            for (char16_t i = 0; i < script[3]; ++i)
                (void)hive.create_subkey(key, name + std::u16string(1, static_cast<char16_t>(u'0' + i)), 5);
            break;
        case 2:
            (void)hive.set_value(key, name, {script[3], Bytes(sizes[script[3] % 8], script[2])}, 5);
            break;
        case 3:
            (void)hive.delete_value(key, name, 5);
            break;
        default:
            (void)hive.delete_key(key, 5);
            break;
    }
}

/// Damage in the new image, and in no more than one page of it: what the judge of commits passes the slow one
/// passes.
void require_judges_agree(regf::Hive& hive, ByteView script) {
    const auto sealed = hive.seal(6);
    Bytes wrong(sealed->image.begin(), sealed->image.end());
    const size_t at = regf::get32(script, 0) % wrong.size();
    wrong[at] = static_cast<uint8_t>(wrong[at] ^ script[at % 4]);
    repair_checksum(wrong);
    std::vector<uint32_t> pages = sealed->changed_pages;
    pages.push_back(static_cast<uint32_t>(at / regf::bin_unit));
    std::sort(pages.begin(), pages.end());
    pages.erase(std::unique(pages.begin(), pages.end()), pages.end());
    const auto verdict =
        regf::judge({regf::image_of(sealed->opened), regf::image_of(wrong), pages, hive.changes(), {}});
    require(!verdict.fault.empty() || regf::whole_check(sealed->opened, wrong, hive.changes()).empty());
}

}  // namespace

// What the fuzzer calls is named by it.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < script_size) return 0;
    const ByteView script(data, script_size);
    Bytes bytes(data + script_size, data + size);
    repair_checksum(bytes);
    (void)regf::validate(bytes);
    auto opened = regf::Hive::open(std::move(bytes));
    if (!opened) return 0;
    regf::Hive& hive = *opened;
    (void)walk(hive, hive.root());
    const bool writable = hive.read_only_reason().empty();
    for (size_t at = 0; at < script.size(); at += 4)
        edit(hive, script.subspan(at, 4));
    require(writable || hive.changes().empty());
    if (!writable) return 0;
    require_sound_commit(hive);
    require_judges_agree(hive, script);
    return 0;
}
