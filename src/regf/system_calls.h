#pragma once

#include <functional>

namespace regf {

/// Asked before every call that can fail for a reason outside the program; another number than 0 makes the
/// call fail with that errno. For tests that let the n-th call fail.
extern std::function<int(const char* call)> fail_system_call;

}  // namespace regf
