#pragma once

#include <string>
#include <string_view>

namespace britlock {

/// The key of the stored password.
constexpr const char* password_key = "7392";

/// Each character combined with the key's digit at its place by exclusive or; blanks at both ends are
/// stripped. Not a hash: encoding twice gives the text back. A character equal to its digit becomes a byte 0,
/// which is kept.
std::string encode_password(std::string_view text, std::string_view key);

}  // namespace britlock
