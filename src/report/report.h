#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "base/twin.h"
#include "engine/restriction_set.h"
#include "toolkit/printer.h"

namespace britlock {

/// The caption on the window of a control, by its name.
using CaptionOf = std::function<std::string(std::string_view control)>;

/// Prints a set as a report of three pages, more where the list of programs is long. It lacks box 39, the
/// icon folder and the folder of the profiles.
void print_report(toolkit::Printer& printer, const RestrictionSet& set, const CaptionOf& caption_of,
                  int language);

}  // namespace britlock
