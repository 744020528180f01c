#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "machine/registry.h"
#include "regf/hive.h"

namespace machine {

/// Takes values from a hive's UTF-16 to the program's ANSI bytes and back.
///
/// What the code page cannot spell reads as a question mark, and is remembered: the same text written again,
/// with other blanks and NULs at its ends perhaps, becomes what it was. So a text that the program reads,
/// deletes and writes anew is not mangled.
class Spelling {
  public:
    RawValue to_ansi(const regf::Value& stored);
    /// None where a question mark may stand for different letters.
    std::optional<regf::Value> to_stored(const RawValue& value) const;

  private:
    struct Original {
        std::string spelled;
        std::u16string text;
        bool ambiguous = false;
    };
    std::map<std::string, Original> originals_;  ///< by the lower-cased spelling without its ends
};

}  // namespace machine
