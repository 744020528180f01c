#pragma once

#include <cstdint>

#include "engine/restriction_set.h"

/// Marks for many boxes at a time.
namespace britlock {

/// Ticks everything but the allowed programs and the icon folder: both need a list of their own first. Of the
/// drives those of the mask are hidden (bit 0 is A), the others stay as they are.
void mark_all(RestrictionSet& set, uint32_t drives);

/// Also the state before another user is shown; unlike mark_all it reaches the allowed programs, and every
/// drive.
void unmark_all(RestrictionSet& set);

/// Ticks what the maker suggests; everything else stays.
void mark_suggested(RestrictionSet& set);

/// Marks the drives of the mask as hidden, or all as shown.
void hide_drives(RestrictionSet& set, uint32_t drives);
void show_all_drives(RestrictionSet& set);

}  // namespace britlock
