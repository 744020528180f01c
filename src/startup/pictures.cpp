#include "startup/pictures.h"

namespace britlock::pictures {

using toolkit::Drawing;
using toolkit::Shape;

namespace {

constexpr uint32_t black = 0x202020, white = 0xFFFFFF, grey = 0x808080, silver = 0xC8CCD0, steel = 0x9AA4B0;
constexpr uint32_t gold = 0xE8B830, brass = 0xB88A18, blue = 0x2860B0, sky = 0x70B0E8, green = 0x38984C,
                   red = 0xC83C30;
constexpr uint32_t sand = 0xF4E6B8, navy = 0x183868;

// Shapes with their points, a picture after the other. Boxes and ellipses: left, top, right, bottom.

constexpr float lock_bow[] = {9, 3, 23, 21}, lock_gap[] = {12, 6, 20, 22}, lock_body[] = {6, 14, 26, 29},
                lock_shine[] = {6, 14, 26, 17}, lock_hole[] = {14, 18, 18, 22},
                lock_slot[] = {15, 21, 17, 26};
constexpr Shape lock_shapes[] = {
    {Shape::Kind::ellipse, steel, lock_bow},  {Shape::Kind::ellipse, white, lock_gap},
    {Shape::Kind::box, gold, lock_body},      {Shape::Kind::box, sand, lock_shine},
    {Shape::Kind::ellipse, black, lock_hole}, {Shape::Kind::box, black, lock_slot},
};

constexpr float key_ring[] = {3, 9, 17, 23}, key_eye[] = {7, 13, 12, 18}, key_shaft[] = {15, 14, 29, 18},
                key_tooth_1[] = {22, 18, 25, 23}, key_tooth_2[] = {27, 18, 29, 22};
constexpr Shape key_shapes[] = {
    {Shape::Kind::ellipse, gold, key_ring}, {Shape::Kind::box, brass, key_shaft},
    {Shape::Kind::box, brass, key_tooth_1}, {Shape::Kind::box, brass, key_tooth_2},
    {Shape::Kind::ellipse, white, key_eye},
};

constexpr float start_panel[] = {5, 3, 22, 25}, start_side[] = {5, 3, 9, 25}, start_line_1[] = {11, 6, 20, 8},
                start_line_2[] = {11, 11, 20, 13}, start_line_3[] = {11, 16, 20, 18},
                start_bar[] = {2, 25, 30, 30}, start_button[] = {4, 26, 12, 29};
constexpr Shape start_shapes[] = {
    {Shape::Kind::box, silver, start_panel}, {Shape::Kind::box, navy, start_side},
    {Shape::Kind::box, grey, start_line_1},  {Shape::Kind::box, blue, start_line_2},
    {Shape::Kind::box, grey, start_line_3},  {Shape::Kind::box, steel, start_bar},
    {Shape::Kind::box, green, start_button},
};

constexpr float panel_back[] = {4, 5, 28, 27}, panel_rail_1[] = {9, 8, 11, 24},
                panel_rail_2[] = {15, 8, 17, 24}, panel_rail_3[] = {21, 8, 23, 24},
                panel_knob_1[] = {7, 11, 13, 15}, panel_knob_2[] = {13, 18, 19, 22},
                panel_knob_3[] = {19, 9, 25, 13};
constexpr Shape panel_shapes[] = {
    {Shape::Kind::box, silver, panel_back}, {Shape::Kind::box, grey, panel_rail_1},
    {Shape::Kind::box, grey, panel_rail_2}, {Shape::Kind::box, grey, panel_rail_3},
    {Shape::Kind::box, red, panel_knob_1},  {Shape::Kind::box, green, panel_knob_2},
    {Shape::Kind::box, blue, panel_knob_3},
};

constexpr float screen_case[] = {3, 4, 29, 23}, screen_glass[] = {5, 6, 27, 21},
                screen_hill[] = {5, 21, 13, 12, 19, 18, 23, 15, 27, 21}, screen_sun[] = {20, 8, 24, 12},
                screen_foot[] = {13, 23, 19, 26}, screen_base[] = {9, 26, 23, 28};
constexpr Shape screen_shapes[] = {
    {Shape::Kind::box, grey, screen_case},      {Shape::Kind::box, sky, screen_glass},
    {Shape::Kind::polygon, green, screen_hill}, {Shape::Kind::ellipse, gold, screen_sun},
    {Shape::Kind::box, grey, screen_foot},      {Shape::Kind::box, steel, screen_base},
};

constexpr float window_frame[] = {3, 5, 29, 27}, window_title[] = {3, 5, 29, 10},
                window_inside[] = {5, 11, 27, 25}, window_bar[] = {8, 16, 24, 20},
                window_disc[] = {9, 11, 23, 25};
constexpr Shape program_shapes[] = {
    {Shape::Kind::box, silver, window_frame}, {Shape::Kind::box, blue, window_title},
    {Shape::Kind::box, white, window_inside}, {Shape::Kind::ellipse, red, window_disc},
    {Shape::Kind::box, white, window_bar},
};

constexpr float drive_top[] = {7, 8, 25, 8, 29, 17, 3, 17}, drive_front[] = {3, 17, 29, 26},
                drive_slot[] = {6, 20, 20, 22}, drive_light[] = {23, 20, 26, 23};
constexpr Shape drive_shapes[] = {
    {Shape::Kind::polygon, silver, drive_top},
    {Shape::Kind::box, steel, drive_front},
    {Shape::Kind::box, black, drive_slot},
    {Shape::Kind::ellipse, green, drive_light},
};

constexpr float net_line_v[] = {15, 13, 17, 20}, net_line_h[] = {7, 18, 25, 20},
                net_line_l[] = {7, 18, 9, 23}, net_line_r[] = {23, 18, 25, 23}, net_top[] = {10, 3, 22, 13},
                net_top_glass[] = {12, 5, 20, 11}, net_left[] = {2, 21, 14, 30},
                net_left_glass[] = {4, 23, 12, 28}, net_right[] = {18, 21, 30, 30},
                net_right_glass[] = {20, 23, 28, 28};
constexpr Shape network_shapes[] = {
    {Shape::Kind::box, grey, net_line_v}, {Shape::Kind::box, grey, net_line_h},
    {Shape::Kind::box, grey, net_line_l}, {Shape::Kind::box, grey, net_line_r},
    {Shape::Kind::box, steel, net_top},   {Shape::Kind::box, sky, net_top_glass},
    {Shape::Kind::box, steel, net_left},  {Shape::Kind::box, sky, net_left_glass},
    {Shape::Kind::box, steel, net_right}, {Shape::Kind::box, sky, net_right_glass},
};

constexpr float globe[] = {3, 3, 29, 29}, globe_land_1[] = {7, 9, 14, 6, 17, 11, 13, 17, 8, 15},
                globe_land_2[] = {17, 16, 25, 13, 26, 20, 20, 26, 17, 21},
                globe_land_3[] = {20, 6, 25, 9, 21, 11};
constexpr Shape globe_shapes[] = {
    {Shape::Kind::ellipse, blue, globe},
    {Shape::Kind::polygon, green, globe_land_1},
    {Shape::Kind::polygon, green, globe_land_2},
    {Shape::Kind::polygon, green, globe_land_3},
};

constexpr float shield[] = {16, 3, 27, 7, 26, 18, 16, 29, 6, 18, 5, 7},
                shield_in[] = {16, 6, 24, 9, 23, 17, 16, 25, 9, 17, 8, 9},
                shield_tick[] = {11, 14, 15, 18, 21, 11, 23, 13, 15, 22, 9, 16};
constexpr Shape shield_shapes[] = {
    {Shape::Kind::polygon, navy, shield},
    {Shape::Kind::polygon, sky, shield_in},
    {Shape::Kind::polygon, white, shield_tick},
};

constexpr float gear_h[] = {3, 13, 29, 19}, gear_v[] = {13, 3, 19, 29},
                gear_d1[] = {6, 9, 9, 6, 26, 23, 23, 26}, gear_d2[] = {23, 6, 26, 9, 9, 26, 6, 23},
                gear_disc[] = {7, 7, 25, 25}, gear_hole[] = {12, 12, 20, 20};
constexpr Shape gear_shapes[] = {
    {Shape::Kind::box, steel, gear_h},         {Shape::Kind::box, steel, gear_v},
    {Shape::Kind::polygon, steel, gear_d1},    {Shape::Kind::polygon, steel, gear_d2},
    {Shape::Kind::ellipse, silver, gear_disc}, {Shape::Kind::ellipse, navy, gear_hole},
};

constexpr float help_left[] = {16, 8, 4, 5, 4, 25, 16, 28}, help_right[] = {16, 8, 28, 5, 28, 25, 16, 28},
                help_fold[] = {15, 8, 17, 28}, help_line_1[] = {7, 11, 13, 13},
                help_line_2[] = {7, 16, 13, 18}, help_mark[] = {20, 10, 25, 15},
                help_stem[] = {22, 14, 24, 19}, help_dot[] = {22, 21, 24, 23};
constexpr Shape help_shapes[] = {
    {Shape::Kind::polygon, sand, help_left}, {Shape::Kind::polygon, sand, help_right},
    {Shape::Kind::box, brass, help_fold},    {Shape::Kind::box, grey, help_line_1},
    {Shape::Kind::box, grey, help_line_2},   {Shape::Kind::ellipse, blue, help_mark},
    {Shape::Kind::box, blue, help_stem},     {Shape::Kind::box, blue, help_dot},
};

}  // namespace

const Drawing lock{lock_shapes};
const Drawing key{key_shapes};
const Drawing start_menu{start_shapes};
const Drawing control_panel{panel_shapes};
const Drawing desktop{screen_shapes};
const Drawing programs{program_shapes};
const Drawing drives{drive_shapes};
const Drawing network{network_shapes};
const Drawing internet{globe_shapes};
const Drawing miscellaneous{shield_shapes};
const Drawing settings{gear_shapes};
const Drawing help{help_shapes};

}  // namespace britlock::pictures
