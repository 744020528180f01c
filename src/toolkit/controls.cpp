#include "toolkit/controls.h"

#include <algorithm>
#include <limits>

#include "base/text.h"
#include "toolkit/form.h"
#include "toolkit/toolkit.h"

namespace toolkit {

namespace {

constexpr int longest_list = std::numeric_limits<int16_t>::max();

void check_index(int index, size_t count) {
    if (index < 0 || static_cast<size_t>(index) >= count) throw RuntimeError(9);
}

void fire(const Event& event) {
    if (event) event();
}

}  // namespace

// --- Control

Control::Control(Form& form, Kind kind, std::string_view name) : form_(form), kind_(kind), name_(name) {
    form.controls_.push_back(this);
}

void Control::refresh(Change change) const {
    if (peer) peer->refresh(*this, change);
}

void Control::set_text(std::string_view text) {
    text_ = text::up_to_nul(text);
    refresh();
}

void Control::set_spoken_name(std::string_view name) { own_spoken_name_ = text::up_to_nul(name); }

void Control::set_enabled(bool enabled) {
    enabled_ = enabled;
    refresh(Change::enabled);
}

void Control::set_visible(bool visible) {
    visible_ = visible;
    refresh(Change::visible);
}

void Control::set_place(const Rect& place) {
    place_ = place;
    refresh(Change::place);
}

void Control::set_font_size(int points) {
    font_size_ = points;
    refresh(Change::font);
}

void Control::set_parent(Control* parent, int page) {
    parent_ = parent;
    page_ = page;
}

bool Control::on_show() const {
    for (const Control* c = this; c; c = c->parent_) {
        if (!c->visible_) return false;
        const auto* tab = dynamic_cast<const TabContainer*>(c->parent_);
        if (tab && tab->current() != c->page_) return false;
    }
    return form_.shown();
}

bool Control::usable() const {
    for (const Control* c = this; c; c = c->parent_) {
        if (!c->responsive()) return false;
    }
    return on_show();
}

// --- TextBox

void TextBox::set_text(std::string_view text) {
    std::string whole(text::up_to_nul(text));
    if (max_length_ > 0) whole.resize(std::min<size_t>(whole.size(), max_length_));
    Control::set_text(whole);
}

void TextBox::set_max_length(int length) {
    max_length_ = length;
    set_text(text());
}

void TextBox::set_password_char(char c) {
    password_char_ = c;
    refresh();
}

void TextBox::type(std::string_view text) {
    if (!usable()) return;
    form().toolkit().set_focus(this);
    if (usable()) set_text(text);
}

void TextBox::click() {
    if (!usable()) return;
    form().toolkit().set_focus(this);
    if (usable()) fire(on_click);
}

// --- Button

void Button::click() {
    if (!usable()) return;
    form().toolkit().set_focus(this);
    if (usable()) fire(on_click);
}

void Button::press_by_key() {
    if (usable()) fire(on_click);
}

// --- CheckBox

void CheckBox::set_value(int value) {
    if (value < 0 || value > 2) throw RuntimeError(380);
    if (value == value_) return;
    value_ = value;
    refresh();  // first: the handler may put a box over the form
    fire(on_click);
}

void CheckBox::click() {
    if (!usable()) return;
    form().toolkit().set_focus(this);
    if (usable()) set_value(value_ == 0 ? 1 : 0);
}

// --- ListBox

const std::string& ListBox::item(int index) const {
    check_index(index, items_.size());
    return items_[index];
}

void ListBox::add(std::string_view text) {
    if (count() == longest_list) throw RuntimeError(6);
    items_.emplace_back(text::up_to_nul(text));
    refresh(Change::appended);
}

void ListBox::remove(int index) {
    check_index(index, items_.size());
    items_.erase(items_.begin() + index);
    if (index == selected_) {
        selected_ = -1;
    } else if (index < selected_) {
        --selected_;
    }
    refresh();
}

void ListBox::clear() {
    items_.clear();
    selected_ = -1;
    refresh();
}

void ListBox::set_selected(int index) {
    if (index != -1) check_index(index, items_.size());
    selected_ = index;
    refresh();
}

void ListBox::click_item(int index) {
    if (!usable()) return;
    form().toolkit().set_focus(this);
    if (!usable() || index < 0 || index >= count()) return;
    set_selected(index);
    fire(on_click);
}

// --- ComboBox

void ComboBox::add(std::string_view text) {
    items_.emplace_back(text::up_to_nul(text));
    refresh(Change::appended);
}

void ComboBox::choose(int index) {
    if (!usable()) return;
    form().toolkit().set_focus(this);
    if (!usable() || index < 0 || static_cast<size_t>(index) >= items_.size()) return;
    set_text(items_[index]);
    fire(on_click);
}

// --- ListView

void ListView::add(std::string_view text, std::string_view key) {
    rows_.push_back({std::string(text::up_to_nul(text)), std::string(key), false});
    refresh(Change::appended);
}

void ListView::clear() {
    rows_.clear();
    refresh();
}

void ListView::set_checked(size_t row, bool checked) {
    check_index(static_cast<int>(row), rows_.size());
    if (rows_[row].checked == checked) return;
    rows_[row].checked = checked;
    refresh();
}

void ListView::click_row(size_t row) {
    if (!usable()) return;
    form().toolkit().set_focus(this);
    if (usable() && row < rows_.size()) set_checked(row, !rows_[row].checked);
}

// --- TabContainer

void TabContainer::set_captions(std::vector<std::string> captions) {
    captions_ = std::move(captions);
    refresh();
}

void TabContainer::set_current(int page) {
    if (page < 0 || static_cast<size_t>(page) >= captions_.size()) throw RuntimeError(380);
    if (page == current_) return;
    current_ = page;
    refresh();
    for (const Control* control : form().controls()) {
        if (control->kind() == Kind::list_bar && control->peer)
            control->peer->refresh(*control, Change::content);
    }
    Toolkit& screen = form().toolkit();
    if (screen.focus() && &screen.focus()->form() == &form() && !screen.focus()->on_show()) {
        screen.set_focus(this);  // the page that went took the focus with it
    }
    fire(on_click);
}

void TabContainer::click_tab(int page) {
    if (!usable()) return;
    form().toolkit().set_focus(this);
    if (usable()) set_current(page);
}

// --- ListBar

void ListBar::set_group(std::string_view key, std::string_view caption) {
    group_key_ = key;
    set_text(caption);
}

void ListBar::add(Item item) {
    items_.push_back(std::move(item));
    refresh();
}

int ListBar::marked() const {
    for (const Control* control : form().controls()) {
        if (control->kind() == Kind::tab) return static_cast<const TabContainer*>(control)->current();
    }
    return -1;
}

void ListBar::click_item(int index) {
    if (!usable()) return;
    form().toolkit().set_focus(this);
    if (usable() && on_item_click) on_item_click(index);
}

// --- StatusBar

void StatusBar::add(Panel panel) {
    panel.text = text::up_to_nul(panel.text);
    panels_.push_back(std::move(panel));
    refresh();
}

const std::string& StatusBar::panel_text(int index) const {
    check_index(index - 1, panels_.size());
    return panels_[index - 1].text;
}

void StatusBar::set_panel_text(int index, std::string_view text) {
    check_index(index - 1, panels_.size());
    panels_[index - 1].text = text::up_to_nul(text);
    refresh();
}

void StatusBar::press(MouseButton button, int x) {
    if (usable() && on_mouse_down) on_mouse_down(button, x);
}

// --- PictureBox

void PictureBox::load(std::string bytes) {
    if (!form().toolkit().can_show_picture(bytes)) throw RuntimeError(481);
    bytes_ = std::move(bytes);
    refresh();
}

void PictureBox::set_drawing(const Drawing* drawing) {
    drawing_ = drawing;
    refresh();
}

// --- the folder controls

std::vector<std::string> folders_on_the_way(std::string_view path) {
    std::vector<std::string> out;
    for (size_t at = path.find('\\'); at != std::string_view::npos; at = path.find('\\', at + 1)) {
        out.emplace_back(path.substr(0, out.empty() ? at + 1 : at));  // the root keeps its backslash
    }
    if (out.empty() || out.back() != path) out.emplace_back(path);
    return out;
}

void DirListBox::set_path(std::string_view path) {
    const std::string found = source_.folder(path);
    if (found == path_) return;
    path_ = found;
    reread();
    fire(on_change);
}

void DirListBox::reread() {
    folders_ = source_.folders(path_);
    refresh();
}

void DirListBox::open_folder(int index) {
    if (!usable() || index < 0 || static_cast<size_t>(index) >= folders_.size()) return;
    form().toolkit().set_focus(this);
    set_path(path_ + (path_.ends_with('\\') ? "" : "\\") + folders_[index]);
}

void DirListBox::open_ancestor(int index) {
    const auto way = ancestors();
    if (!usable() || index < 0 || static_cast<size_t>(index) >= way.size()) return;
    form().toolkit().set_focus(this);
    set_path(way[index]);
}

void DriveListBox::set_drive(std::string_view drive) {
    const char letter = drive.empty() ? '\0' : text::upper(drive.front());
    const auto there = source_.drives();
    if (std::find(there.begin(), there.end(), letter) == there.end()) throw RuntimeError(68);
    const std::string name{letter, ':'};
    if (name == drive_) return;
    drive_ = name;
    refresh();
    fire(on_change);
}

void DriveListBox::choose(int index) {
    const auto there = drives();
    if (!usable() || index < 0 || static_cast<size_t>(index) >= there.size()) return;
    form().toolkit().set_focus(this);
    set_drive(std::string(1, there[index]));
}

void FileListBox::set_path(std::string_view path) {
    path_ = source_.folder(path);
    reread();
}

void FileListBox::reread() {
    files_ = source_.files(path_);
    refresh();
}

// --- Timer

void Timer::tick() {
    if (enabled() && form().shown()) fire(on_timer);
}

// --- MenuItem

MenuItem::MenuItem(Form& form, std::string_view name) : form_(form), name_(name) {
    form.menus_.push_back(this);
}

MenuItem::MenuItem(MenuItem& parent, std::string_view name)
    : form_(parent.form_), parent_(&parent), name_(name) {
    parent.entries_.push_back(this);
}

void MenuItem::set_caption(std::string_view caption) {
    caption_ = text::up_to_nul(caption);
    form_.refresh();
}

void MenuItem::set_visible(bool visible) {
    visible_ = visible;
    form_.refresh();
}

void MenuItem::set_enabled(bool enabled) {
    enabled_ = enabled;
    form_.refresh();
}

void MenuItem::click() {
    for (const MenuItem* m = this; m; m = m->parent_) {
        if (!m->visible_ || !m->responsive()) return;
    }
    if (form_.shown()) fire(on_click);
}

}  // namespace toolkit
