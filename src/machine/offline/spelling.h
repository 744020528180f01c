#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "machine/registry.h"
#include "regf/hive.h"

namespace machine {

/// Takes values from a hive's UTF-16 to the program's ANSI bytes and back.
///
/// What the code page cannot spell reads as a question mark. The original is remembered with its hive, key
/// and value: the same text written into that key again, with other blanks and NULs at its ends perhaps,
/// becomes what it was, even where the program deletes a list and writes its lines under other numbers.
/// Elsewhere, and where it was changed, a text is written as it stands.
class Spelling {
  public:
    static RawValue to_ansi(const regf::Value& stored);

    /// `key` names a key of one hive. To be told of its values before the first of them is read or changed in
    /// a session; later calls for the same key are passed over.
    bool knows(const std::string& key) const { return seen_.contains(key); }
    void remember(const std::string& key, const std::vector<regf::Hive::NamedValue>& values);
    /// The hives may have other content now. What was remembered still helps where they have not.
    void end_session();

    regf::Value to_stored(const std::string& key, std::string_view name, const RawValue& value);
    /// The key is to be written anew.
    void forget_uses(const std::string& key);

  private:
    struct Original {
        std::string name;  ///< of the value, lower-cased
        std::string spelled;
        std::u16string text;
        std::optional<std::string> used_by;  ///< the value that has been given it
    };
    Original* find(const std::string& key, const std::string& name, std::string_view spelled);

    std::map<std::string, std::vector<Original>> originals_;  ///< by key
    std::set<std::string> seen_;
};

}  // namespace machine
