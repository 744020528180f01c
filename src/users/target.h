#pragma once

#include <string>

#include "platform/registry_mod.h"

namespace britlock {

/// Whose registry is meant: every key path of a user is the prefix followed by a path of the catalogue.
struct Target {
    Root root;
    std::string prefix;  ///< empty, or the user's name and a backslash
    const WindowsFamily& family;
};

/// On Windows NT the hive that is mounted under the user's name; elsewhere the running account.
Target target_of_reading(REGISTRY_MOD& reg, const std::string& user);
/// The same, but for the logged-on user (case-sensitive): that is the running account. Nobody comes here for
/// that user but the uninstall.
Target target_of_writing(REGISTRY_MOD& reg, const std::string& user);

/// Makes the product's keys, and all keys below the target that values are written into: writers never create
/// one. Failures are not told; a write into a key that is missing does nothing.
void make_regpaths(REGISTRY_MOD& reg, Root root, const std::string& rootuser);

}  // namespace britlock
