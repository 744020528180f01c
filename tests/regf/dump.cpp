#include "regf/dump.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <memory>

#include "regf/whole_check.h"

namespace regf {

std::string escaped(std::u16string_view name) {
    std::string out;
    for (char16_t u : name) {
        if (u > 0x20 && u < 0x7F && u != '\\') {
            out += static_cast<char>(u);
        } else {
            char unit[8];
            (void)std::snprintf(unit, sizeof unit, "\\u%04x", static_cast<unsigned>(u));
            out += unit;
        }
    }
    return out;
}

std::string hex(ByteView bytes) {
    std::string out;
    for (uint8_t b : bytes) {
        out += "0123456789abcdef"[b >> 4];
        out += "0123456789abcdef"[b & 15];
    }
    return out;
}

namespace {

void dump_key(const Hive& hive, Key key, const std::string& path, bool everything, std::string& out) {
    out += "K " + path;
    if (everything) {
        out += " t" + std::to_string(hive.last_written(key)) + " f" + std::to_string(hive.flags(key)) + " c" +
               escaped(hive.class_name(key)) + " s" + hex(hive.security(key));
    }
    out += "\n";
    for (const auto& value : hive.values(key)) {
        out += "V " + path + " " + escaped(value.name) + " " + std::to_string(value.type) + " " +
               (value.readable ? hex(value.data) : "unreadable") + "\n";
    }
    for (Key child : hive.subkeys(key))
        dump_key(hive, child, path + "/" + escaped(hive.name(child)), everything, out);
}

}  // namespace

std::string dump(const Hive& hive) {
    std::string out;
    dump_key(hive, hive.root(), "", false, out);
    return out;
}

std::string full_dump(const Hive& hive) {
    std::string out;
    dump_key(hive, hive.root(), "", true, out);
    return out;
}

Result<Bytes> sealed_image(Hive& hive, FileTime now) {
    const auto sealed = hive.seal(now);
    if (!sealed) return sealed.error();
    EXPECT_EQ(whole_check(sealed->opened, sealed->image, hive.changes()), "");
    return Bytes(sealed->image.begin(), sealed->image.end());
}

Bytes read_file(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void write_file(const std::string& path, const Bytes& bytes) {
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

std::string foreign_dump(const std::string& file) {
    const std::string command =
        std::string("/usr/bin/python3 " TEST_SOURCES "/foreign_dump.py '") + file + "' 2>/dev/null";
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    std::string out;
    std::array<char, 65536> buffer{};
    while (const size_t got = fread(buffer.data(), 1, buffer.size(), pipe.get()))
        out.append(buffer.data(), got);
    return out;
}

void expect_same(const std::string& ours, const std::string& theirs, const std::string& what) {
    if (ours == theirs) return;
    const auto [a, b] = std::mismatch(ours.begin(), ours.end(), theirs.begin(), theirs.end());
    auto around = [](const std::string& s, std::string::const_iterator at) {
        const auto start = std::max<std::ptrdiff_t>(0, at - s.begin() - 60);
        return s.substr(static_cast<size_t>(start), 160);
    };
    ADD_FAILURE() << what << "\n ours:   ..." << around(ours, a) << "\n theirs: ..." << around(theirs, b);
}

}  // namespace regf
