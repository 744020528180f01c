#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "engine/restriction_set.h"

/// Restriction files (.brl) keep one set of restrictions as lines of comma-separated text. They name no user.
namespace britlock {

/// The bytes of a file. Of a set they lack box 39 and the icon folder.
std::string brl_text(const RestrictionSet& set);

/// The set that a file makes of the one on show: what files do not carry stays as it is. None for the bytes
/// of some other file. RuntimeError 62 for a file that ends early, 6 for too large a number, 380 for a drive
/// that is neither shown, hidden nor grey, and for a text of more than 65535 bytes.
///
/// Not the inverse of brl_text: box 96 comes out clear, and its number and the texts of the machine each land
/// in the text after their own; the folder of the profiles is lost.
std::optional<RestrictionSet> read_brl(std::string_view bytes, RestrictionSet shown);

}  // namespace britlock
