#include "regf/dump.h"

#include <hivex.h>

#include "base/text.h"
#include "regf/whole_check.h"

namespace regf {

std::string escaped(std::u16string_view name) {
    std::string out;
    for (const char16_t unit : name) {
        char text[8];
        const bool plain = unit > 0x20 && unit < 0x7F && unit != '\\';
        (void)std::snprintf(text, sizeof text, plain ? "%c" : "\\u%04x", static_cast<unsigned>(unit));
        out += text;
    }
    return out;
}

std::string hex(ByteView bytes) {
    std::string out;
    for (uint8_t b : bytes)
        out.append({"0123456789abcdef"[b >> 4], "0123456789abcdef"[b & 15]});
    return out;
}

namespace {

std::string value_line(const std::string& path, std::u16string_view name, uint32_t type, bool readable,
                       ByteView data) {
    return "V " + path + " " + escaped(name) + " " + std::to_string(type) + " " +
           (readable ? hex(data) : "unreadable") + "\n";
}

void dump_key(const Hive& hive, Key key, const std::string& path, bool everything, std::string& out) {
    out += "K " + path;
    if (everything) {
        out += " t" + std::to_string(hive.last_written(key)) + " f" + std::to_string(hive.flags(key)) + " c" +
               escaped(hive.class_name(key)) + " s" + hex(hive.security(key));
    }
    out += "\n";
    for (const auto& value : hive.values(key))
        out += value_line(path, value.name, value.type, value.readable, value.data);
    for (Key child : hive.subkeys(key))
        dump_key(hive, child, path + "/" + escaped(hive.name(child)), everything, out);
}

std::string dump_of(const Hive& hive, bool everything) {
    std::string out;
    dump_key(hive, hive.root(), "", everything, out);
    return out;
}

template <class Pointer>
auto owned(Pointer* pointer) {
    return std::unique_ptr<Pointer, decltype(&std::free)>(pointer, &std::free);
}

std::u16string name_of(char* utf8, size_t length) {
    return text::utf16_from_utf8({owned(utf8).get(), length}).value_or(u"no UTF-8");
}

void dump_node(hive_h* hive, hive_node_h node, const std::string& path, std::string& out) {
    out += "K " + path + "\n";
    const auto values = owned(hivex_node_values(hive, node));
    for (const auto* value = values.get(); value && *value != 0; ++value) {
        uint32_t type = 0;  // drivers make up their own
        size_t size = 0;
        const auto data = owned(hivex_value_value(hive, *value, reinterpret_cast<hive_type*>(&type), &size));
        out += value_line(path, name_of(hivex_value_key(hive, *value), hivex_value_key_len(hive, *value)),
                          type, data != nullptr, {reinterpret_cast<const uint8_t*>(data.get()), size});
    }
    const auto children = owned(hivex_node_children(hive, node));
    for (const auto* child = children.get(); child && *child != 0; ++child) {
        const auto name = name_of(hivex_node_name(hive, *child), hivex_node_name_len(hive, *child));
        dump_node(hive, *child, path + "/" + escaped(name), out);
    }
}

}  // namespace

std::string dump(const Hive& hive) { return dump_of(hive, false); }

std::string full_dump(const Hive& hive) { return dump_of(hive, true); }

Result<Bytes> sealed_image(Hive& hive, FileTime now) {
    const auto sealed = hive.seal(now);
    if (!sealed) return sealed.error();
    EXPECT_EQ(whole_check(sealed->opened, sealed->image, hive.changes()), "");
    return Bytes(sealed->image.begin(), sealed->image.end());
}

std::string foreign_dump(const fs::path& file) {
    const std::unique_ptr<hive_h, decltype(&hivex_close)> hive(hivex_open(file.c_str(), 0), &hivex_close);
    std::string out;
    if (hive) dump_node(hive.get(), hivex_root(hive.get()), "", out);
    return out;
}

void expect_same(const std::string& ours, const std::string& theirs, const std::string& what) {
    const auto differ = std::mismatch(ours.begin(), ours.end(), theirs.begin(), theirs.end());
    if (differ.first == ours.end() && differ.second == theirs.end()) return;
    const size_t start = static_cast<size_t>(std::max<std::ptrdiff_t>(60, differ.first - ours.begin())) - 60;
    ADD_FAILURE() << what << "\n ours:   ..." << ours.substr(start, 160) << "\n theirs: ..."
                  << theirs.substr(start, 160);
}

}  // namespace regf
