#include "toolkit/page_printer.h"

namespace toolkit {

namespace {

/// Lines end above this; a text with a place of its own may stand below.
constexpr double bottom = 15480;

}  // namespace

void PagePrinter::make_room() {
    if (!placed_ && y_ + metrics().line_height > bottom) new_page();
}

void PagePrinter::print(std::string_view ansi) {
    make_room();
    x_ += draw(left_ + x_, y_, ansi);
}

void PagePrinter::tab(int column) {
    const double place = (column - 1) * metrics().character_width;
    if (x_ > place) end_line();
    x_ = place;
}

void PagePrinter::end_line() {
    make_room();
    x_ = 0;
    y_ += metrics().line_height;
    placed_ = false;
}

void PagePrinter::set_position(int x, int y) {
    x_ = x;
    y_ = y;
    placed_ = true;
}

void PagePrinter::new_page() {
    turn_page();
    x_ = y_ = 0;
}

}  // namespace toolkit
