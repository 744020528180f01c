#include "startup/password.h"

#include "base/text.h"

namespace britlock {

std::string encode_password(std::string_view text, std::string_view key) {
    std::string out;
    size_t at = 0;
    for (char c : text) {
        out.push_back(static_cast<char>(c ^ key[at]));
        at = (at + 1) % key.size();
    }
    return std::string(text::trim_blanks(out));
}

}  // namespace britlock
