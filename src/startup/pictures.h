#pragma once

#include "toolkit/drawing.h"

/// The small pictures of the windows, drawn by the program itself.
namespace britlock::pictures {

extern const toolkit::Drawing lock;
extern const toolkit::Drawing key;
extern const toolkit::Drawing start_menu;
extern const toolkit::Drawing control_panel;
extern const toolkit::Drawing desktop;
extern const toolkit::Drawing programs;
extern const toolkit::Drawing drives;
extern const toolkit::Drawing network;
extern const toolkit::Drawing internet;
extern const toolkit::Drawing miscellaneous;
extern const toolkit::Drawing settings;
extern const toolkit::Drawing help;

}  // namespace britlock::pictures
