#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/engine.h"
#include "users/hiver_mod.h"
#include "users/user_directory.h"

namespace britlock {

/// Why nothing, or not all, came of one user: one line in the edition's language. Empty: all is done.
using Failure = std::string;

/// Restricts users one by one, without a window and without a question. What goes wrong with one of them
/// touches no other.
class Batch {
  public:
    /// What the machine knows of trouble that the hive tool had since it was asked last; empty: none.
    using ToolTrouble = std::function<std::string()>;

    /// RuntimeError 9 where the machine has more users than the program serves.
    Batch(const machine::Machine& machine, int language, ToolTrouble trouble);

    /// The names of all who can be restricted.
    std::vector<std::string> users();

    /// Turns a restriction file into the user's registry, as opening it in the window and Apply do: what
    /// files do not carry stays what it is with this user.
    Failure apply(const std::string& user, std::string_view file);
    /// Reads the restrictions of a user into `set`.
    Failure read(const std::string& user, RestrictionSet& set);

  private:
    /// `name` is spelled as the folder of the profile.
    using Work = std::function<Failure(const std::string& name)>;
    Failure visit(const std::string& user, const Work& work);
    Failure visit_hive(const std::string& name, const Work& work);
    Failure told(const RuntimeError& error) const;
    bool is_logged_on(const std::string& name);
    RestrictionSet stored(const std::string& name);

    REGISTRY_MOD reg_;
    UserDirectory users_;
    HIVER_MOD hiver_;
    Engine engine_;
    ToolTrouble trouble_;
};

}  // namespace britlock
