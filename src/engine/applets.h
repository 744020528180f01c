#pragma once

#include "base/twin.h"

namespace britlock {

/// One applet of the Control Panel: what the system knows it by, and what the list shows.
struct Applet {
    const char* file;  ///< the last nine are display names of a German Windows, and work only there
    Twin label;        ///< unique in each language
};

constexpr int applet_count = 39;
extern const Applet applets[applet_count];

}  // namespace britlock
