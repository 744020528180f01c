#pragma once

namespace britlock {

/// Shows the help in a window of its own, beside those of the program: a topic by the number that a page
/// gives to it, or the contents. `language` is that of the edition.
void show_help(int topic, int language);

}  // namespace britlock
