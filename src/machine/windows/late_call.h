#pragma once

#include <string>

namespace machine {

/// The address of a function in a library of Windows; null where this Windows has none of them.
void* find_call(const char* library, const char* name);

/// A function that not every Windows has, looked up at the first use: a program that imports it would not
/// start there.
template <class Pointer>
class LateCall {
  public:
    LateCall(const char* library, const char* name)
        : pointer_(reinterpret_cast<Pointer>(find_call(library, name))) {}
    explicit operator bool() const { return pointer_ != nullptr; }
    Pointer operator*() const { return pointer_; }

  private:
    Pointer pointer_;
};

}  // namespace machine
