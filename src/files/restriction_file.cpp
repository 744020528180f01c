#include "files/restriction_file.h"

#include <limits>
#include <vector>

#include "base/runtime_error.h"
#include "base/text.h"
#include "engine/catalogue.h"
#include "platform/field_reader.h"
#include "platform/numbers.h"

namespace britlock {

namespace {

constexpr const char* magic_word = "BRLCK";
constexpr const char* warning = "NEVER EDIT THIS FILE!";
constexpr int icons_box = 39;
constexpr int programs_box = 41;
constexpr int command_line_box = 96;
/// What a text box holds at most: a longer field is no text of this program.
constexpr size_t longest_text = std::numeric_limits<uint16_t>::max();
/// What a list box holds at most.
constexpr int longest_list = std::numeric_limits<int16_t>::max();

enum Page { start_menu = 1, desktop = 3, network = 6, internet_explorer = 7, miscellaneous = 8 };

std::vector<int> carried_boxes(Page page) {
    std::vector<int> boxes = boxes_of_page(page);
    std::erase(boxes, icons_box);
    return boxes;
}

class Writer {
  public:
    void number(int value) { field(std::to_string(value)); }
    /// A quote inside is not escaped: reading, it ends the text.
    void text(const std::string& value) { field('"' + value + '"'); }
    void end_line() {
        bytes_ += "\r\n";
        in_line_ = false;
    }
    std::string take() { return std::move(bytes_); }

  private:
    void field(const std::string& content) {
        if (in_line_) bytes_ += ',';
        bytes_ += content;
        in_line_ = true;
    }

    std::string bytes_;
    bool in_line_ = false;
};

void write_boxes(Writer& out, const RestrictionSet& set, Page page) {
    for (const int box : carried_boxes(page))
        out.number(set.boxes[box]);
    out.end_line();
}

/// A line of its own.
void write_number(Writer& out, int number) {
    out.number(number);
    out.end_line();
}
void write_text(Writer& out, const std::string& text) {
    out.text(text);
    out.end_line();
}

class Reader {
  public:
    explicit Reader(std::string_view bytes) : fields_(bytes) {}
    std::string text() { return std::string(text::up_to_nul(field())); }
    int number() { return to_long(leading_number(field())); }
    bool tick() { return leading_number(field()) == 1; }

  private:
    std::string field() {
        std::string field = fields_.next();
        if (field.size() > longest_text) throw RuntimeError(380);
        return field;
    }

    FieldReader fields_;
};

void read_boxes(Reader& in, RestrictionSet& set, const std::vector<int>& boxes) {
    for (const int box : boxes)
        set.boxes.set(box, in.tick());
}

void read_programs(Reader& in, RestrictionSet& set) {
    const int count = in.number();
    if (count > longest_list) throw RuntimeError(6);
    set.programs.clear();
    for (int i = 0; i < count; ++i)
        set.programs.push_back(in.text());
}

/// The number itself, as the check box takes it.
void read_drives(Reader& in, RestrictionSet& set) {
    for (int& drive : set.drives) {
        drive = in.number();
        if (drive < 0 || drive > 2) throw RuntimeError(380);
    }
}

}  // namespace

std::string brl_text(const RestrictionSet& set) {
    Writer out;
    write_text(out, magic_word);
    write_text(out, warning);
    write_boxes(out, set, start_menu);
    for (const bool hidden : set.hidden_applets)
        write_number(out, hidden);
    write_boxes(out, set, internet_explorer);
    write_boxes(out, set, desktop);
    write_text(out, set.wallpaper);
    write_number(out, set.boxes[programs_box]);
    write_number(out, static_cast<int>(set.programs.size()));
    for (const std::string& program : set.programs)
        write_text(out, program);
    for (const int drive : set.drives)
        out.number(drive);
    out.end_line();
    write_boxes(out, set, network);
    write_boxes(out, set, miscellaneous);
    out.text(set.machine.organisation);
    out.text(set.machine.owner);
    out.end_line();
    write_text(out, set.machine.profiles_path);
    return out.take();
}

std::optional<RestrictionSet> read_brl(std::string_view bytes, RestrictionSet shown) {
    Reader in(bytes);
    RestrictionSet& set = shown;
    const std::string first = in.text();
    (void)in.text();  // the warning: whoever edits the file may change it
    if (first != magic_word) return std::nullopt;
    read_boxes(in, set, carried_boxes(start_menu));
    for (bool& hidden : set.hidden_applets)
        hidden = in.tick();
    read_boxes(in, set, carried_boxes(internet_explorer));
    read_boxes(in, set, carried_boxes(desktop));
    set.wallpaper = in.text();
    set.boxes.set(programs_box, in.tick());
    read_programs(in, set);
    read_drives(in, set);
    read_boxes(in, set, carried_boxes(network));
    // One box less than a file holds. What comes after is therefore read one field too early, and the last
    // field never: files of all versions are read so.
    std::vector<int> boxes = carried_boxes(miscellaneous);
    std::erase(boxes, command_line_box);
    read_boxes(in, set, boxes);
    set.boxes.set(command_line_box, 0);
    set.machine.organisation = in.text();
    set.machine.owner = in.text();
    set.machine.profiles_path = in.text();
    return set;
}

}  // namespace britlock
