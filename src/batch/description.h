#pragma once

#include <string>

#include "engine/restriction_set.h"

namespace britlock {

/// A user's restrictions in the captions of the window, a line for each that is set. Lines end in a line
/// feed.
std::string description_of(const std::string& user, const RestrictionSet& set, int language);

/// The same for programs: an object of JSON on one line. Check boxes and applets go by the names that are the
/// same in every language.
std::string json_of(const std::string& user, const RestrictionSet& set);

}  // namespace britlock
