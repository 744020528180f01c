#include "toolkit/win32/picture_format.h"

#include <cstdint>
#include <cstdlib>

namespace toolkit::win32 {

namespace {

constexpr uint64_t most_dots = uint64_t{8192} * 8192;
constexpr unsigned longest_side = 16384;  // four times the widest desktop of Windows XP's time

/// Numbers at places of a text that may be too short for them: 0 then, and it is remembered.
class Head {
  public:
    explicit Head(std::string_view bytes) : bytes_(bytes) {}

    unsigned byte(size_t at) {
        if (at >= bytes_.size()) whole_ = false;
        return at < bytes_.size() ? static_cast<unsigned char>(bytes_[at]) : 0;
    }
    unsigned little16(size_t at) { return byte(at) | byte(at + 1) << 8; }
    unsigned little32(size_t at) { return little16(at) | little16(at + 2) << 16; }
    unsigned big16(size_t at) { return byte(at) << 8 | byte(at + 1); }
    size_t length() const { return bytes_.size(); }

    std::optional<PictureSize> checked(PictureSize size) const {
        return whole_ ? std::optional(size) : std::nullopt;
    }

  private:
    std::string_view bytes_;
    bool whole_ = true;
};

unsigned magnitude(unsigned number) {
    const auto signed_number = static_cast<int32_t>(number);
    return signed_number < 0 ? 0 - number : number;
}

std::optional<PictureSize> bmp_size(Head head) {
    if (head.little32(14) == 12) return head.checked({head.little16(18), head.little16(20)});
    const unsigned height = magnitude(head.little32(22));  // negative: from the top
    return head.checked({magnitude(head.little32(18)), height});
}

std::optional<PictureSize> gif_size(Head head) { return head.checked({head.little16(6), head.little16(8)}); }

/// The frame header is the first segment C0 to CF that is none of a table (C4, C8, CC).
std::optional<PictureSize> jpeg_size(Head head) {
    size_t at = 2;
    while (at + 4 <= head.length() && head.byte(at) == 0xff) {
        const unsigned kind = head.byte(at + 1);
        const bool is_frame = kind >= 0xc0 && kind <= 0xcf && kind != 0xc4 && kind != 0xc8 && kind != 0xcc;
        if (is_frame) return head.checked({head.big16(at + 7), head.big16(at + 5)});
        const unsigned length = kind == 0xff ? 0 : head.big16(at + 2);  // FF before a marker only fills
        at += kind == 0xff ? 1 : length + 2;
    }
    return {};
}

}  // namespace

std::optional<PictureSize> picture_size(std::string_view bytes) {
    const Head head(bytes);
    const auto begins = [bytes](std::string_view magic) { return bytes.starts_with(magic); };
    if (begins("BM")) return bmp_size(head);
    if (begins("GIF87a") || begins("GIF89a")) return gif_size(head);
    if (begins("\xff\xd8\xff")) return jpeg_size(head);
    const bool is_icon = begins({"\0\0\1\0", 4}) || begins({"\0\0\2\0", 4});
    const bool is_wmf = begins("\xd7\xcd\xc6\x9a") || begins({"\1\0\11\0", 4});
    const bool is_emf = begins({"\1\0\0\0", 4}) && bytes.size() >= 44 && bytes.substr(40, 4) == " EMF";
    if (is_icon || is_wmf || is_emf) return PictureSize{};
    return {};
}

bool is_sane_picture(std::string_view bytes) {
    const auto size = picture_size(bytes);
    return size && size->width <= longest_side && size->height <= longest_side &&
           uint64_t{size->width} * size->height <= most_dots;
}

}  // namespace toolkit::win32
