#include "engine/catalogue.h"
#include "ui/main_form.h"

namespace britlock {

namespace {

constexpr toolkit::Rect page_place{180, 480, 6600, 4400};

// Inside a page. The information panel covers what lies right of 4255.
constexpr int left = 180;
constexpr int width = 4050;       // of captions
constexpr int list_width = 3945;  // of what has a frame of its own
constexpr int line = 255;
constexpr int field = 315;
constexpr int first_row = 390;
constexpr int row_step = 390;
constexpr int button_height = 375;

}  // namespace

/// In tab order; what comes later lies above.
void MainForm::place_controls() {
    std::vector<LayoutRow> places;
    auto put = [&](toolkit::Control& control, toolkit::Control* parent, toolkit::Rect rect) {
        places.push_back({control, parent, rect});
    };
    int pages = 0;
    auto page = [&](toolkit::Frame& frame) {
        frame.set_parent(&tab, pages++);
        put(frame, &tab, page_place);
    };
    /// A page of nothing but boxes, one below the other.
    auto page_of_boxes = [&](toolkit::Frame& frame) {
        page(frame);
        int top = first_row;
        for (const int number : boxes_of_page(pages)) {
            put(box(number), &frame, {left, top, width, line});
            top += row_step;
        }
    };
    auto pair_of_buttons = [&](toolkit::Button& first, toolkit::Button& second, toolkit::Frame& frame) {
        put(first, &frame, {left, 3870, 1260, button_height});
        put(second, &frame, {left + 1380, 3870, 1260, button_height});
    };

    put(SSListBar1, nullptr, {0, 0, 1872, 5835});
    put(tab, nullptr, {1815, 120, 6930, 5715});

    page_of_boxes(f1);

    page(f2);
    put(l21, &f2, {left, 330, width, 480});
    put(lv1, &f2, {left, 840, list_width, 2880});
    pair_of_buttons(cmd21, cmd22, f2);

    page(f3);
    int top = 330;
    for (toolkit::CheckBox* box : {&c31, &c32, &c33, &c34, &c35, &c36, &c38}) {
        put(*box, &f3, {left, top, width, line});
        top += 330;
    }
    put(c37, &f3, {left, 2730, 2640, line});
    put(t31, &f3, {left + 255, 3015, 2010, field});
    put(cm31, &f3, {left + 2310, 3015, 360, field});
    put(c39, &f3, {left, 3480, 2640, line});
    put(t32, &f3, {left + 255, 3765, 2010, field});
    put(cm32, &f3, {left + 2310, 3765, 360, field});
    put(pic31, &f3, {left + 2790, 2730, 1155, 1350});

    page(f4);
    put(c41, &f4, {left, 330, width, line});
    put(List1, &f4, {left, 690, 2415, 3240});
    top = 690;
    for (toolkit::Button* button : {&cm41, &cm42, &cm43, &cm44, &cm45}) {
        put(*button, &f4, {2715, top, 1410, button_height});
        top += 465;
    }
    put(gesamtfiles, &f4, {left, 4020, 2520, line});

    page(f5);
    put(l51, &f5, {left, 330, width, 690});
    for (int k = 0; k < drive_count; ++k) {  // five columns, read along the lines
        put(drive_boxes[k], &f5, {left + k % 5 * 810, 1110 + k / 5 * 420, 750, line});
    }
    pair_of_buttons(cm51, cm52, f5);

    page_of_boxes(f6);
    page_of_boxes(f7);
    page_of_boxes(f8);

    page(f9);
    put(l83, &f9, {left, 330, width, line});
    put(syslist, &f9, {left, 600, list_width, 2070});
    put(l81, &f9, {left, 2865, 1980, line});
    put(t81, &f9, {left + 1980, 2820, list_width - 1980, field});
    put(l82, &f9, {left, 3255, 1980, line});
    put(t82, &f9, {left + 1980, 3210, list_width - 1980, field});
    put(l810, &f9, {left, 3660, width, line});
    put(t810, &f9, {left, 3915, list_width, field});

    put(f0, nullptr, {6250, 600, 2345, 4400});
    put(Image1, &f0, {180, 330, 600, 600});
    put(l01, &f0, {180, 1080, 2040, 360});
    put(l02, &f0, {180, 1500, 2040, 1260});
    put(L_gen, &f0, {180, 2910, 2040, line});
    put(Label1, &f0, {180, 3210, 2040, 990});
    l01.set_font_size(12);

    put(Combo_user, nullptr, {2040, 5250, 2370, field});
    put(cmd_set, nullptr, {4590, 5220, 1260, button_height});
    put(cm01, nullptr, {5970, 5220, 1260, button_height});
    put(cm02, nullptr, {7350, 5220, 1260, button_height});
    put(StatusBar, nullptr, {0, 5835, 8730, 285});
    lay_out(places);
}

}  // namespace britlock
