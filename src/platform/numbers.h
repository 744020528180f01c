#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace britlock {

/// The number at the front of a text, 0 if there is none. Blanks, tabs and line feeds count nowhere; only a
/// point parts off decimals; E and D begin an exponent; &H and &O lead numbers of 16 or 32 bits with sign
/// ("&HFFFF" is -1).
double leading_number(std::string_view text);

/// Rounds half to even. RuntimeError 6 outside the 32 bits.
int32_t to_long(double number);

/// Digits after one blank for 0 and above (" 0"), after a minus sign below. The value names
/// under RestrictRun and DisallowCpl are made so, by writer and reader.
std::string number_text(int32_t number);

}  // namespace britlock
