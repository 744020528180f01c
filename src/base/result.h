#pragma once

#include <cassert>
#include <string>
#include <utility>
#include <variant>

/// Either a value or the reason why there is none. Never dropped unread: write `(void)` and why.
template <class T, class E>
class [[nodiscard]] BasicResult {
  public:
    BasicResult(T value) : state_(std::in_place_index<0>, std::move(value)) {}
    BasicResult(E error) : state_(std::in_place_index<1>, std::move(error)) {}

    bool ok() const { return state_.index() == 0; }
    explicit operator bool() const { return ok(); }

    T& operator*() & { return value(); }
    T&& operator*() && { return std::move(value()); }
    const T& operator*() const& { return value(); }
    T* operator->() { return &value(); }
    const T* operator->() const { return &value(); }

    const E& error() const {
        assert(!ok());
        return *std::get_if<1>(&state_);
    }

  private:
    T& value() {
        assert(ok());
        return *std::get_if<0>(&state_);
    }
    const T& value() const {
        assert(ok());
        return *std::get_if<0>(&state_);
    }

    std::variant<T, E> state_;
};

/// The value of a result that has nothing to tell but success.
struct Done {};
