#include "report/report.h"

#include <algorithm>
#include <vector>

#include "base/product.h"
#include "base/text.h"
#include "engine/catalogue.h"

namespace britlock {

using namespace text::literals;
using Font = toolkit::Printer::Font;

namespace {

constexpr const char* typeface = "Arial";
constexpr int left_of_the_page = -1000;
constexpr int value_column = 50;
constexpr int footer_x = 1, footer_y = 15500;

constexpr Twin ticked_text{"AKTIVIERT", "YES"};
constexpr Twin clear_text{"nicht aktiviert", "No"};
constexpr Twin list_heading{"Dateiliste:", "Filelist:"};
constexpr Twin drives_heading{"Folgende Laufwerksbuchstaben sind ausgeblendet:",
                              "The following drives are hidden:"};
constexpr Twin no_drives{"[KEINE]", "[NONE]"};
constexpr Twin footer{
    U"                                Brightlock Suite - Einschränkungen für gemeinsam genutzte PCs"_ansi,
    "                                Brightlock Suite - restrictions for shared PCs"};

/// The caption that a box goes under: two go under that of their neighbour.
int captioned_as(int box) { return box == 18 || box == 19 ? 17 : box; }

/// The rows of a page; one is missing, and one of another page comes here again.
std::vector<int> rows_of_page(int page) {
    std::vector<int> boxes = boxes_of_page(page);
    std::erase(boxes, 39);
    if (page == 8) boxes.insert(std::find(boxes.begin(), boxes.end(), 90), 65);
    return boxes;
}

class Report {
  public:
    Report(toolkit::Printer& printer, const RestrictionSet& set, const CaptionOf& caption_of, int language)
        : printer_(printer), set_(set), caption_of_(caption_of), language_(language) {}
    void print();

  private:
    const char* pick(const Twin& twin) const { return ::pick(twin, language_); }
    void style(int points, bool bold) { printer_.set_font({typeface, points, bold}); }
    void body() { style(10, false); }
    void empty_line() { printer_.end_line(); }
    void line(std::string_view text);
    void row(std::string_view caption, std::string_view value);
    void tick_row(std::string_view caption, bool ticked) {
        row(caption, pick(ticked ? ticked_text : clear_text));
    }
    void section(const char* frame);
    void boxes(int page);
    void title();
    void applet_rows();
    void wallpaper();
    void programs();
    void drives();
    void owner();
    void print_footer();

    toolkit::Printer& printer_;
    const RestrictionSet& set_;
    const CaptionOf& caption_of_;
    int language_;
};

void Report::print() {
    title();
    section("f1");
    boxes(1);
    section("f2");
    applet_rows();
    print_footer();
    printer_.new_page();

    section("f3");
    boxes(3);
    wallpaper();
    section("f4");
    boxes(4);
    programs();
    section("f5");
    drives();
    print_footer();
    printer_.new_page();

    section("f6");
    boxes(6);
    section("f7");
    boxes(7);
    section("f8");
    boxes(8);
    section("f9");
    owner();
    print_footer();
    printer_.end_document();
}

void Report::line(std::string_view text) {
    printer_.print(text);
    printer_.end_line();
}

void Report::row(std::string_view caption, std::string_view value) {
    printer_.print(std::string(caption) + ": ");
    printer_.tab(value_column);
    line(value);
}

void Report::section(const char* frame) {
    style(12, true);
    empty_line();
    line(caption_of_(frame));
    body();
    empty_line();
}

void Report::boxes(int page) {
    for (const int box : rows_of_page(page))
        tick_row(caption_of_("c" + std::to_string(captioned_as(box))), set_.ticked(box));
}

void Report::title() {
    printer_.set_left(left_of_the_page);
    style(14, true);
    empty_line();
    line(product::title);
    body();
    empty_line();
}

void Report::applet_rows() {
    for (int i = 0; i < applet_count; ++i)
        tick_row(pick(applets[i].label), set_.hidden_applets[i]);
}

void Report::wallpaper() { row(caption_of_("c37"), set_.wallpaper); }

void Report::programs() {
    empty_line();
    line(pick(list_heading));
    for (const std::string& program : set_.programs)
        line(program);
}

/// T is told as Z.
void Report::drives() {
    empty_line();
    line(pick(drives_heading));
    std::string letters;
    for (int k = 0; k < drive_count; ++k) {
        const char letter = static_cast<char>('A' + k);
        if (set_.drives[k] == 1) letters += std::string{' ', letter == 'T' ? 'Z' : letter, ':', '\\', ' '};
    }
    line(letters.empty() ? pick(no_drives) : letters);
}

void Report::owner() {
    row(caption_of_("l81"), set_.machine.organisation);
    row(caption_of_("l82"), set_.machine.owner);
}

void Report::print_footer() {
    printer_.set_position(footer_x, footer_y);
    line(pick(footer));
}

}  // namespace

void print_report(toolkit::Printer& printer, const RestrictionSet& set, const CaptionOf& caption_of,
                  int language) {
    Report(printer, set, caption_of, language).print();
}

}  // namespace britlock
