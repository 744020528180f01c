#pragma once

#include <string_view>

namespace text {

/// Basic's Like, exact in case: * any run, ? one character, # a digit, [a-z] and [!a-z] classes. RuntimeError
/// 93 for a class that is not closed. No pattern takes for ever.
bool like(std::string_view name, std::string_view pattern);

}  // namespace text
