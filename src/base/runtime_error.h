#pragma once

#include <exception>
#include <string>

#include "base/twin.h"

/// A run-time error of the program, by its number: 6 overflow, 9 subscript, 13 type mismatch, 52 to 76 files,
/// 380 a property's value, 481 a picture. Caught at the edge where an event enters the program: it shows its
/// box and the process ends. Nothing else is thrown across procedures.
class RuntimeError : public std::exception {
  public:
    explicit RuntimeError(int number);
    int number() const { return number_; }
    /// What it means, as the box at the end shows it; ANSI bytes.
    std::string text(int language) const { return pick(text_, language); }
    const char* what() const noexcept override { return text_.english; }

  private:
    int number_;
    Twin text_;
};

/// "Errors are ignored statement by statement": hand every statement over on its own. What stands inside a
/// statement is abandoned at its first error.
template <class... Statements>
void ignoring_errors(Statements&&... statements) {
    auto run = [](auto& statement) {
        try {
            statement();
        } catch (const RuntimeError&) {  // passed over, as told
        }
    };
    (run(statements), ...);
}
