#pragma once

#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/folder_source.h"

/// The controls of a form: plain objects that hold the state of the program. They know nothing of a screen;
/// where there is one, each control has a peer that draws it and passes on what the person does, by the same
/// calls that a test makes.
///
/// Sizes are in twips (1440 an inch; 15 a pixel at 96 dpi), texts ANSI bytes, cut at their first NUL. `&` in
/// a caption marks the access key.
namespace toolkit {

using ::FolderSource;

class Control;
class Form;
class Toolkit;
struct Drawing;

/// What of a control is new.
enum class Change {
    all,
    place,
    font,
    enabled,
    visible,
    content,   ///< text, value, selection, lines
    appended,  ///< one line more at the end of the list, nothing else
};

/// The picture of one control on the screen.
class Peer {
  public:
    virtual ~Peer() = default;
    /// What the widget then reports of itself must not come back as an event.
    virtual void refresh(const Control& control, Change change) = 0;
};

/// An event without arguments.
using Event = std::function<void()>;

enum class Kind {
    label,
    text_box,
    button,
    check_box,
    list_box,
    combo_box,
    list_view,
    frame,
    tab,
    list_bar,
    status_bar,
    picture_box,
    dir_list,
    drive_list,
    file_list,
    timer,
};

struct Rect {
    int left = 0, top = 0, width = 0, height = 0;
};

class Control {
  public:
    Control(Form& form, Kind kind, std::string_view name);
    virtual ~Control() = default;
    Control(const Control&) = delete;
    Control& operator=(const Control&) = delete;

    Kind kind() const { return kind_; }
    const std::string& name() const { return name_; }
    Form& form() const { return form_; }

    /// The caption, or the content of a text box and the edit field of a combo box.
    const std::string& text() const { return text_; }
    virtual void set_text(std::string_view text);
    /// What a screen reader calls the control where no caption or label does; spoken_name() has the rule.
    const std::string& own_spoken_name() const { return own_spoken_name_; }
    void set_spoken_name(std::string_view name);
    bool enabled() const { return enabled_; }
    void set_enabled(bool enabled);
    /// Enabled, and with something to do: a screen greys what is not.
    virtual bool responsive() const { return enabled_; }
    bool visible() const { return visible_; }
    void set_visible(bool visible);
    const Rect& place() const { return place_; }
    void set_place(const Rect& place);
    /// Points; 0: the form's font, 8 points.
    int font_size() const { return font_size_; }
    void set_font_size(int points);

    /// The frame or tab container that holds the control; null: the form itself. In a tab container `page`
    /// counts from 0.
    Control* parent() const { return parent_; }
    int page() const { return page_; }
    void set_parent(Control* parent, int page = 0);

    /// On show all the way up: itself, its frames, the page of the tab.
    bool on_show() const;
    /// On show and responsive all the way up: a person can use it.
    bool usable() const;
    /// Can it have the focus by its kind?
    virtual bool takes_focus() const { return false; }

    Event on_got_focus;
    Event on_lost_focus;

    Peer* peer = nullptr;  ///< not owned; the renderer sets and clears it

  protected:
    void refresh(Change change = Change::content) const;

  private:
    Form& form_;
    Kind kind_;
    std::string name_;
    std::string text_;
    std::string own_spoken_name_;
    Rect place_;
    Control* parent_ = nullptr;
    int page_ = 0;
    int font_size_ = 0;
    bool enabled_ = true;
    bool visible_ = true;
};

/// Text over several lines wraps at its width.
class Label : public Control {
  public:
    Label(Form& form, std::string_view name) : Control(form, Kind::label, name) {}
};

class TextBox : public Control {
  public:
    TextBox(Form& form, std::string_view name) : Control(form, Kind::text_box, name) {}
    void set_text(std::string_view text) override;
    /// Characters; 0: no limit.
    int max_length() const { return max_length_; }
    void set_max_length(int length);
    /// 0: what is typed can be read.
    char password_char() const { return password_char_; }
    void set_password_char(char c);
    bool takes_focus() const override { return true; }

    /// A person puts this text in the box, by typing or pasting.
    void type(std::string_view text);
    /// A person clicks into it with the mouse.
    void click();
    Event on_click;

  private:
    int max_length_ = 0;
    char password_char_ = 0;
};

class Button : public Control {
  public:
    Button(Form& form, std::string_view name) : Control(form, Kind::button, name) {}
    bool is_default = false;  ///< Enter presses it
    bool is_cancel = false;   ///< Esc presses it
    bool responsive() const override { return enabled() && on_click; }
    bool takes_focus() const override { return true; }
    /// A person clicks it, or uses its access key: it takes the focus.
    void click();
    /// Enter on the default button, Esc on the cancel button: the focus stays where it is.
    void press_by_key();
    Event on_click;
};

class CheckBox : public Control {
  public:
    CheckBox(Form& form, std::string_view name) : Control(form, Kind::check_box, name) {}
    /// 0 clear, 1 ticked, 2 grey.
    int value() const { return value_; }
    bool ticked() const { return value_ == 1; }
    /// Fires on_click at once where the value changes, by program as by person. Another number is run-time
    /// error 380.
    void set_value(int value);
    bool takes_focus() const override { return true; }
    void click();
    Event on_click;

  private:
    int value_ = 0;
};

class ListBox : public Control {
  public:
    ListBox(Form& form, std::string_view name) : Control(form, Kind::list_box, name) {}
    const std::vector<std::string>& items() const { return items_; }
    /// Indices and counts are 16-bit numbers: run-time error 6 before the list grows past 32767, 9 outside
    /// the list.
    int count() const { return static_cast<int>(items_.size()); }
    const std::string& item(int index) const;
    void add(std::string_view text);
    /// Nothing is selected afterwards if this was the selected line.
    void remove(int index);
    void clear();
    /// -1: none.
    int selected() const { return selected_; }
    void set_selected(int index);
    bool takes_focus() const override { return true; }

    /// A person clicks a line, or moves to it by key: selects and fires on_click.
    void click_item(int index);
    Event on_click;

  private:
    std::vector<std::string> items_;
    int selected_ = -1;
};

/// Its text changes by the list and by the program, never by typing; the program may show a text that the
/// list lacks.
class ComboBox : public Control {
  public:
    ComboBox(Form& form, std::string_view name) : Control(form, Kind::combo_box, name) {}
    const std::vector<std::string>& items() const { return items_; }
    void add(std::string_view text);
    bool takes_focus() const override { return true; }

    /// A person chooses an entry, the same one again included: sets the text and fires on_click.
    void choose(int index);
    Event on_click;

  private:
    std::vector<std::string> items_;
};

/// Rows with a check mark each.
class ListView : public Control {
  public:
    struct Row {
        std::string text;
        std::string key;
        bool checked = false;
    };
    ListView(Form& form, std::string_view name) : Control(form, Kind::list_view, name) {}
    const std::vector<Row>& rows() const { return rows_; }
    void add(std::string_view text, std::string_view key);
    void clear();
    void set_checked(size_t row, bool checked);
    bool takes_focus() const override { return true; }

    /// A person clicks the mark of a row.
    void click_row(size_t row);

  private:
    std::vector<Row> rows_;
};

class Frame : public Control {
  public:
    Frame(Form& form, std::string_view name) : Control(form, Kind::frame, name) {}
};

class TabContainer : public Control {
  public:
    TabContainer(Form& form, std::string_view name) : Control(form, Kind::tab, name) {}
    const std::vector<std::string>& captions() const { return captions_; }
    void set_captions(std::vector<std::string> captions);
    /// From 0.
    int current() const { return current_; }
    /// Fires on_click where the page changes, by program as by person.
    void set_current(int page);
    bool takes_focus() const override { return true; }

    /// A person clicks a tab.
    void click_tab(int page);
    Event on_click;

  private:
    std::vector<std::string> captions_;
    int current_ = 0;
};

/// The bar at the left: one group of items with a picture each.
class ListBar : public Control {
  public:
    struct Item {
        std::string key;
        std::string text;
        const Drawing* picture = nullptr;
    };
    ListBar(Form& form, std::string_view name) : Control(form, Kind::list_bar, name) {}
    const std::string& group_key() const { return group_key_; }
    /// The group's caption is the control's text.
    void set_group(std::string_view key, std::string_view caption);
    const std::vector<Item>& items() const { return items_; }
    void add(Item item);
    bool takes_focus() const override { return true; }

    /// The item of the page on show, from 0: the bar lists the pages of the form's tab container. -1: the
    /// form has none.
    int marked() const;

    /// `index` from 1.
    void click_item(int index);
    std::function<void(int index)> on_item_click;

  private:
    std::string group_key_;
    std::vector<Item> items_;
};

enum class MouseButton { left = 1, right = 2, middle = 4 };

class StatusBar : public Control {
  public:
    struct Panel {
        std::string text;
        int width = 0;
        bool centred = false;
    };
    StatusBar(Form& form, std::string_view name) : Control(form, Kind::status_bar, name) {}
    const std::vector<Panel>& panels() const { return panels_; }
    void add(Panel panel);
    /// `index` from 1.
    const std::string& panel_text(int index) const;
    void set_panel_text(int index, std::string_view text);

    /// A person presses a mouse button, `x` from the bar's left edge.
    void press(MouseButton button, int x);
    std::function<void(MouseButton button, int x)> on_mouse_down;

  private:
    std::vector<Panel> panels_;
};

/// A picture from a file, or a drawing of the program's own.
class PictureBox : public Control {
  public:
    PictureBox(Form& form, std::string_view name) : Control(form, Kind::picture_box, name) {}
    /// The bytes of a picture file; run-time error 481 (and the old picture stays) where the screen cannot
    /// show it.
    void load(std::string bytes);
    const std::string& bytes() const { return bytes_; }
    const Drawing* drawing() const { return drawing_; }
    void set_drawing(const Drawing* drawing);

  private:
    std::string bytes_;
    const Drawing* drawing_ = nullptr;
};

/// The root, each folder on the way and the folder itself: full paths.
std::vector<std::string> folders_on_the_way(std::string_view path);

/// Shows the way from the root to its folder, and the folders in it.
class DirListBox : public Control {
  public:
    DirListBox(Form& form, std::string_view name, FolderSource& source)
        : Control(form, Kind::dir_list, name), source_(source) {}
    const std::string& path() const { return path_; }
    /// Fires on_change where the folder is another one.
    void set_path(std::string_view path);
    void reread();
    /// Sub-folders, names only.
    const std::vector<std::string>& folders() const { return folders_; }
    std::vector<std::string> ancestors() const { return folders_on_the_way(path_); }
    bool takes_focus() const override { return true; }

    /// A person opens one of the sub-folders, or goes to one on the way (0: the root).
    void open_folder(int index);
    void open_ancestor(int index);
    Event on_change;

  private:
    FolderSource& source_;
    std::string path_;
    std::vector<std::string> folders_;
};

class DriveListBox : public Control {
  public:
    DriveListBox(Form& form, std::string_view name, FolderSource& source)
        : Control(form, Kind::drive_list, name), source_(source) {}
    /// A letter and a colon.
    const std::string& drive() const { return drive_; }
    /// By the first character; run-time error 68 for a drive that is not there. Fires on_change where it is
    /// another one.
    void set_drive(std::string_view drive);
    std::vector<char> drives() const { return source_.drives(); }
    bool takes_focus() const override { return true; }

    /// A person chooses a drive.
    void choose(int index);
    Event on_change;

  private:
    FolderSource& source_;
    std::string drive_;
};

/// The files of a folder.
class FileListBox : public Control {
  public:
    FileListBox(Form& form, std::string_view name, FolderSource& source)
        : Control(form, Kind::file_list, name), source_(source) {}
    const std::string& path() const { return path_; }
    void set_path(std::string_view path);
    void reread();
    const std::vector<std::string>& files() const { return files_; }
    bool takes_focus() const override { return true; }

  private:
    FolderSource& source_;
    std::string path_;
    std::vector<std::string> files_;
};

class Timer : public Control {
  public:
    Timer(Form& form, std::string_view name) : Control(form, Kind::timer, name) {}
    int interval_ms = 0;  ///< 0: stands still
    void tick();
    Event on_timer;
};

/// Calls `visitor` with a control as what it is; the compiler sees to it that it knows every kind.
template <class Visitor>
auto visit(Control& control, Visitor visitor) {
    switch (control.kind()) {
        case Kind::label:
            return visitor(static_cast<Label&>(control));
        case Kind::text_box:
            return visitor(static_cast<TextBox&>(control));
        case Kind::button:
            return visitor(static_cast<Button&>(control));
        case Kind::check_box:
            return visitor(static_cast<CheckBox&>(control));
        case Kind::list_box:
            return visitor(static_cast<ListBox&>(control));
        case Kind::combo_box:
            return visitor(static_cast<ComboBox&>(control));
        case Kind::list_view:
            return visitor(static_cast<ListView&>(control));
        case Kind::frame:
            return visitor(static_cast<Frame&>(control));
        case Kind::tab:
            return visitor(static_cast<TabContainer&>(control));
        case Kind::list_bar:
            return visitor(static_cast<ListBar&>(control));
        case Kind::status_bar:
            return visitor(static_cast<StatusBar&>(control));
        case Kind::picture_box:
            return visitor(static_cast<PictureBox&>(control));
        case Kind::dir_list:
            return visitor(static_cast<DirListBox&>(control));
        case Kind::drive_list:
            return visitor(static_cast<DriveListBox&>(control));
        case Kind::file_list:
            return visitor(static_cast<FileListBox&>(control));
        case Kind::timer:
            break;
    }
    return visitor(static_cast<Timer&>(control));
}

/// One entry of a menu; one with entries of its own opens. Not a control: it has no place and no focus.
class MenuItem {
  public:
    MenuItem(Form& form, std::string_view name);
    MenuItem(MenuItem& parent, std::string_view name);
    MenuItem(const MenuItem&) = delete;
    MenuItem& operator=(const MenuItem&) = delete;

    const std::string& name() const { return name_; }
    Form& form() const { return form_; }
    const std::string& caption() const { return caption_; }
    /// A caption of "-" is a separator.
    void set_caption(std::string_view caption);
    bool separator() const { return caption_ == "-"; }
    bool visible() const { return visible_; }
    void set_visible(bool visible);
    void set_enabled(bool enabled);
    /// Enabled, and with a command or entries behind it: a screen greys what is not.
    bool responsive() const { return enabled_ && (on_click || !entries_.empty()); }
    const std::vector<MenuItem*>& entries() const { return entries_; }

    void click();
    Event on_click;

  private:
    Form& form_;
    MenuItem* parent_ = nullptr;
    std::string name_;
    std::string caption_;
    bool enabled_ = true;
    bool visible_ = true;
    std::vector<MenuItem*> entries_;
};

}  // namespace toolkit
