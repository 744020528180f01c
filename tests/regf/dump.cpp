#include "regf/dump.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace regf {

namespace {

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

Bytes read_file(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void write_file(const std::string& path, const Bytes& bytes) {
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

TemporaryFolder::TemporaryFolder() {
    std::string pattern = std::filesystem::temp_directory_path() / "hive-XXXXXX";
    if (!mkdtemp(pattern.data())) std::abort();
    path_ = pattern;
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

}  // namespace regf
