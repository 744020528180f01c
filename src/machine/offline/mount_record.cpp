#include "machine/offline/mount_record.h"

#include <array>
#include <type_traits>
#include <utility>

namespace machine {

namespace {

enum class Frame : uint8_t { mount = 'M', change = 'C', seal = 'S', failure = 'F' };

/// One table for each place that a byte has among four.
constexpr auto crc_tables = [] {
    std::array<std::array<uint32_t, 256>, 4> tables{};
    for (uint32_t byte = 0; byte < 256; ++byte) {
        uint32_t crc = byte;
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> 1) ^ ((crc & 1) != 0 ? 0xEDB88320 : 0);
        tables[0][byte] = crc;
    }
    for (size_t place = 1; place < tables.size(); ++place) {
        for (size_t byte = 0; byte < 256; ++byte) {
            const uint32_t before = tables[place - 1][byte];
            tables[place][byte] = (before >> 8) ^ tables[0][before & 0xFF];
        }
    }
    return tables;
}();

/// Four bytes at a time: a record is read and written by each process that has to do with the hive.
uint32_t crc32(std::string_view bytes) {
    uint32_t crc = 0xFFFFFFFF;
    const auto byte = [&](size_t at) { return static_cast<uint32_t>(static_cast<unsigned char>(bytes[at])); };
    size_t at = 0;
    for (; at + 4 <= bytes.size(); at += 4) {
        crc ^= byte(at) | byte(at + 1) << 8 | byte(at + 2) << 16 | byte(at + 3) << 24;
        crc = crc_tables[3][crc & 0xFF] ^ crc_tables[2][crc >> 8 & 0xFF] ^ crc_tables[1][crc >> 16 & 0xFF] ^
              crc_tables[0][crc >> 24];
    }
    for (; at < bytes.size(); ++at)
        crc = (crc >> 8) ^ crc_tables[0][(crc ^ byte(at)) & 0xFF];
    return ~crc;
}

class Writer {
  public:
    explicit Writer(Frame kind) { number(static_cast<uint8_t>(kind)); }

    template <class Number>
    void number(Number value) {
        put(add(sizeof value), value);
    }
    template <class Text>
    void counted(const Text& text) {
        number(static_cast<uint32_t>(text.size()));
        char* at = add(text.size() * sizeof(typename Text::value_type));
        for (auto unit : text)
            at = put(at, unit);
    }
    std::string frame() {
        const std::string_view content = std::string_view(out_).substr(head);
        put(put(out_.data(), static_cast<uint32_t>(content.size())), crc32(content));
        return std::move(out_);
    }

  private:
    static constexpr size_t head = 8;  ///< length and check sum

    char* add(size_t size) {
        out_.resize(out_.size() + size);
        return out_.data() + out_.size() - size;
    }
    template <class Number>
    static char* put(char* at, Number value) {
        for (size_t i = 0; i < sizeof value; ++i)
            *at++ = static_cast<char>((static_cast<std::make_unsigned_t<Number>>(value) >> (8 * i)) & 0xFF);
        return at;
    }

    std::string out_ = std::string(head, '\0');
};

/// Once it has run past the end it stays failed and yields zeros.
class Reader {
  public:
    explicit Reader(std::string_view bytes) : bytes_(bytes) {}

    template <class Number>
    void number(Number& value) {
        uint64_t sum = 0;
        const std::string_view taken = take(sizeof value);
        for (size_t i = 0; i < taken.size(); ++i)
            sum |= uint64_t{static_cast<unsigned char>(taken[i])} << (8 * i);
        value = static_cast<Number>(sum);
    }
    template <class Text>
    void counted(Text& text) {
        uint32_t size = 0;
        number(size);
        failed_ = failed_ || size > bytes_.size() / sizeof(typename Text::value_type);
        text.resize(failed_ ? 0 : size);
        for (auto& unit : text)
            number(unit);
    }
    std::string_view take(size_t size) {
        failed_ = failed_ || size > bytes_.size();
        if (failed_) return {};
        const std::string_view taken = bytes_.substr(0, size);
        bytes_.remove_prefix(size);
        return taken;
    }
    bool ok() const { return !failed_; }
    size_t left() const { return bytes_.size(); }

  private:
    std::string_view bytes_;
    bool failed_ = false;
};

// The fields in their order, once for the writer and for the reader.

template <class Stream, class AnyMount>
void mount_fields(Stream& stream, AnyMount& mount) {
    stream.counted(mount.name);
    stream.counted(mount.file);
    stream.number(mount.stamp.size);
    stream.number(mount.stamp.primary_sequence);
    stream.number(mount.stamp.secondary_sequence);
    stream.number(mount.stamp.checksum);
}

template <class Stream, class AnyChange, class AnyKind>
void change_fields(Stream& stream, AnyChange& change, AnyKind& kind) {
    stream.number(kind);
    stream.counted(change.path);
    stream.counted(change.name);
    stream.number(change.value.type);
    stream.counted(change.value.data);
    stream.number(change.when);
}

regf::Change parse_change(Reader& in) {
    regf::Change change{};
    uint8_t kind = 0;
    change_fields(in, change, kind);
    change.kind = static_cast<regf::Change::Kind>(kind);
    return change;
}

/// The content of the next frame; none at the end and at the first frame that is not whole.
std::optional<std::string_view> next_frame(Reader& in) {
    uint32_t size = 0;
    uint32_t crc = 0;
    in.number(size);
    in.number(crc);
    const std::string_view content = in.take(size);
    if (!in.ok() || content.empty() || crc32(content) != crc) return std::nullopt;
    return content;
}

std::optional<Mount> parse_mount(Reader& in) {
    const auto content = next_frame(in);
    if (!content || static_cast<Frame>(content->front()) != Frame::mount) return std::nullopt;
    Reader frame(content->substr(1));
    Mount mount;
    mount_fields(frame, mount);
    if (!frame.ok()) return std::nullopt;
    return mount;
}

}  // namespace

std::string mount_frame(const Mount& mount) {
    Writer out(Frame::mount);
    mount_fields(out, mount);
    return out.frame();
}

std::string change_frame(const regf::Change& change) {
    Writer out(Frame::change);
    const auto kind = static_cast<uint8_t>(change.kind);
    change_fields(out, change, kind);
    return out.frame();
}

std::string seal_frame() { return Writer(Frame::seal).frame(); }

std::string failure_frame() { return Writer(Frame::failure).frame(); }

std::optional<Mount> parse_mount(std::string_view bytes) {
    Reader in(bytes);
    return parse_mount(in);
}

std::optional<MountRecord> parse_record(std::string_view bytes) {
    Reader in(bytes);
    auto mount = parse_mount(in);
    if (!mount) return std::nullopt;
    MountRecord record;
    record.mount = std::move(*mount);
    record.sealed_bytes = bytes.size() - in.left();
    std::vector<regf::Change> pending;
    while (const auto content = next_frame(in)) {
        Reader frame(content->substr(1));
        const auto kind = static_cast<Frame>(content->front());
        if (kind == Frame::change) {
            pending.push_back(parse_change(frame));
        } else if (kind == Frame::seal) {
            record.sealed.insert(record.sealed.end(), pending.begin(), pending.end());
            pending.clear();
        } else if (kind == Frame::failure) {
            record.failed_before = true;
        } else {
            break;
        }
        if (!frame.ok()) break;
        if (kind != Frame::change) record.sealed_bytes = bytes.size() - in.left();
    }
    record.unsealed = record.sealed_bytes != bytes.size();
    return record;
}

}  // namespace machine
