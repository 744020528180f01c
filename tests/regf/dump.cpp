#include "regf/dump.h"

#include <gtest/gtest.h>
#include <hivex.h>

#include <algorithm>
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

namespace {

template <class Pointer>
auto owned(Pointer* pointer) {
    return std::unique_ptr<Pointer, decltype(&std::free)>(pointer, &std::free);
}

/// The other reader tells names in UTF-8.
std::string escaped_utf8(char* name, size_t length) {
    std::u16string out;
    for (const char *next = name, *end = name + length; next != end;) {
        uint32_t letter = static_cast<uint8_t>(*next++);
        const int more = letter < 0x80 ? 0 : letter < 0xE0 ? 1 : letter < 0xF0 ? 2 : 3;
        if (more > 0) letter &= 0x3Fu >> more;
        for (int i = 0; i < more && next != end; ++i)
            letter = letter << 6 | (static_cast<uint8_t>(*next++) & 0x3Fu);
        if (letter > 0xFFFF) out += static_cast<char16_t>(0xD7C0 + (letter >> 10));
        out += static_cast<char16_t>(letter > 0xFFFF ? 0xDC00 + (letter & 0x3FF) : letter);
    }
    std::free(name);
    return escaped(out);
}

void dump_node(hive_h* hive, hive_node_h node, const std::string& path, std::string& out) {
    out += "K " + path + "\n";
    const auto values = owned(hivex_node_values(hive, node));
    for (const auto* value = values.get(); value && *value != 0; ++value) {
        uint32_t type = 0;  // drivers make up their own
        size_t size = 0;
        const auto data = owned(hivex_value_value(hive, *value, reinterpret_cast<hive_type*>(&type), &size));
        const auto* bytes = reinterpret_cast<const uint8_t*>(data.get());
        out += "V " + path + " " +
               escaped_utf8(hivex_value_key(hive, *value), hivex_value_key_len(hive, *value)) + " " +
               std::to_string(type) + " " + (data ? hex({bytes, size}) : "unreadable") + "\n";
    }
    const auto children = owned(hivex_node_children(hive, node));
    for (const auto* child = children.get(); child && *child != 0; ++child)
        dump_node(hive, *child,
                  path + "/" + escaped_utf8(hivex_node_name(hive, *child), hivex_node_name_len(hive, *child)),
                  out);
}

}  // namespace

std::string foreign_dump(const std::string& file) {
    const std::unique_ptr<hive_h, decltype(&hivex_close)> hive(hivex_open(file.c_str(), 0), &hivex_close);
    std::string out;
    if (hive) dump_node(hive.get(), hivex_root(hive.get()), "", out);
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
