#include "toolkit/qt/conversion.h"
#include "toolkit/qt/folder_list.h"
#include "toolkit/qt/widgets.h"

namespace toolkit::qt {

namespace {

class ListBoxWidget : public Shown<LineList, ListBox> {
  public:
    ListBoxWidget(ListBox& control, QWidget& parent) : Shown(control, parent) {
        lines().count = [this] { return control_.count(); };
        lines().line = [this](int row) { return Line{.text = shown(control_.item(row))}; };
        on_click = on_move = [this](int row) { act([this, row] { control_.click_item(row); }); };
    }

  private:
    void show_state() override {
        lines().refresh();
        select(control_.selected());
    }
    void show_appended() override { lines().append(); }
};

class ListViewWidget : public Shown<LineList, ListView> {
  public:
    ListViewWidget(ListView& control, QWidget& parent) : Shown(control, parent) {
        lines().count = [this] { return static_cast<int>(control_.rows().size()); };
        lines().line = [this](int row) {
            const ListView::Row& r = control_.rows()[row];
            return Line{.text = shown(r.text), .checked = r.checked};
        };
        lines().on_mark = [this](int row) { act([this, row] { control_.click_row(row); }); };
    }

  private:
    void show_state() override { lines().refresh(); }
    void show_appended() override { lines().append(); }
};

class DirListWidget : public Shown<FolderList, DirListBox> {
  public:
    DirListWidget(DirListBox& control, QWidget& parent) : Shown(control, parent) {
        on_ancestor = [this](int index) { act([this, index] { control_.open_ancestor(index); }); };
        on_sub_folder = [this](int index) { act([this, index] { control_.open_folder(index); }); };
    }

  private:
    void show_state() override { show_folder(control_.ancestors(), control_.folders()); }
};

class FileListWidget : public Shown<LineList, FileListBox> {
  public:
    FileListWidget(FileListBox& control, QWidget& parent) : Shown(control, parent) {
        lines().count = [this] { return static_cast<int>(control_.files().size()); };
        lines().line = [this](int row) { return Line{.text = shown(control_.files()[row])}; };
    }

  private:
    void show_state() override { lines().refresh(); }
};

}  // namespace

WidgetPeer* make_widget(ListBox& control, QWidget& parent) { return new ListBoxWidget(control, parent); }
WidgetPeer* make_widget(ListView& control, QWidget& parent) { return new ListViewWidget(control, parent); }
WidgetPeer* make_widget(DirListBox& control, QWidget& parent) { return new DirListWidget(control, parent); }
WidgetPeer* make_widget(FileListBox& control, QWidget& parent) { return new FileListWidget(control, parent); }

}  // namespace toolkit::qt
