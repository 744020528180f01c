#include "toolkit/gallery.h"

using namespace toolkit;

namespace {

constexpr float screen[] = {5, 7, 27, 21};
constexpr float lock[] = {11, 10, 21, 19};
constexpr Shape shapes[] = {{Shape::Kind::box, 0x204080, screen}, {Shape::Kind::ellipse, 0xf0c030, lock}};
constexpr Drawing computer{shapes};

}  // namespace

Gallery::Gallery(Toolkit& toolkit, FolderSource& source)
    : Form(toolkit, "gallery"),
      drive(*this, "drive", source),
      dir(*this, "dir", source),
      files(*this, "files", source) {
    set_caption("Gallery & more");
    set_icon(&computer);
    set_client_size(8730, 6120);
    fill();
    place_all();
    listen();
}

void Gallery::fill() {
    // clang-format off
    const std::pair<MenuItem&, const char*> menus[] = {
        {m_file, "&File"}, {m_open, "&Open"}, {m_line, "-"}, {m_more, "&More"}, {m_deep, "&Deep"},
        {m_unbuilt, "Not &built yet"}};
    const std::pair<Control&, const char*> texts[] = {
        {page1, "Disable some entries in your Startmenu..."}, {page2, "Mark some lines..."}, {page3, "Choose a folder..."},
        {tick, "&Tick this entry of the menu"}, {second, "No change of the taskbar && the menu"},
        {grey, "Neither this nor that"}, {name_label, "Registered &Name:"}, {secret, "hidden"},
        {combo, "somebody else"}, {apply, "&Apply"}, {cancel, "&Cancel"}, {unbuilt, "Later"}, {ok, "&OK"}};
    // clang-format on
    for (const auto& [item, caption] : menus)
        item.set_caption(caption);
    for (const auto& [control, text] : texts)
        control.set_text(text);
    bar.set_group("group", "Restrictions");
    for (const char* text : {"Start", "Control Panel", "Desktop", "Programs", "Drives", "Net", "IE Explorer",
                             "Misc.", "Settings", "Help"})
        bar.add({text, text, &computer});
    tab.set_captions({"&1.)", "&2.)", "&3.)", "&4.)", "&5.)", "&6.)", "&7.)", "&8.)", "&9.)"});
    grey.set_value(2);
    name.set_max_length(12);
    secret.set_password_char('*');
    for (const char* text : {"BRITLOCK.EXE", "CALC.EXE", "R&D.EXE", "NOTEPAD.EXE", "SOL.EXE", "WINMINE.EXE"})
        list.add(text);
    for (int i = 1; i <= 20; ++i)
        view.add("Applet " + std::to_string(i), "key" + std::to_string(i));
    drive.set_drive("C");
    dir.set_path("C:\\School");
    files.set_path("C:\\School");
    picture.set_drawing(&computer);
    for (const char* text : {"Administrator", "pupil", "R&D"})
        combo.add(text);
    cancel.is_cancel = true;
    ok.is_default = true;
    for (const auto& [text, width] : {std::pair{"1 www.example.invalid", 1850}, {"3 teacher", 6500}})
        status.add({text, width, false});
}

void Gallery::place_all() {
    // clang-format off
    lay_out({
        {bar, nullptr, {0, 0, 1872, 5835}}, {tab, nullptr, {1815, 120, 6930, 5715}}, {page1, &tab, {180, 480, 6600, 4400}},
        {tick, &page1, {240, 360, 3975, 255}}, {second, &page1, {240, 660, 3975, 255}},
        {grey, &page1, {240, 960, 3975, 255}}, {name_label, &page1, {240, 1320, 1500, 255}},
        {name, &page1, {1800, 1290, 2295, 285}}, {secret, &page1, {1800, 1650, 2295, 285}},
        {list, &page1, {240, 2040, 3855, 1230}},
        {page2, &tab, {180, 480, 6600, 4400}}, {view, &page2, {240, 360, 3855, 3800}}, {page3, &tab, {180, 480, 6600, 4400}},
        {drive, &page3, {240, 360, 1900, 315}}, {dir, &page3, {240, 780, 1900, 3000}},
        {files, &page3, {2240, 780, 1900, 3000}}, {panel, nullptr, {6250, 600, 2345, 4400}},
        {picture, &panel, {120, 2000, 2100, 1500}}, {combo, nullptr, {1995, 5250, 2295, 315}},
        {apply, nullptr, {4395, 5220, 1215, 375}}, {cancel, nullptr, {5700, 5220, 1215, 375}},
        {ok, nullptr, {7005, 5220, 1215, 375}}, {unbuilt, &panel, {120, 3700, 1215, 375}},
        {status, nullptr, {0, 5835, 8730, 285}},
    });
    // clang-format on
    page2.set_parent(&tab, 1);
    page3.set_parent(&tab, 2);
}

void Gallery::listen() {
    const auto noting = [this](const std::string& what) { return [this, what] { note(what); }; };
    m_open.on_click = noting("open");
    on_help = noting("help");
    bar.on_item_click = [this](int index) { note("item " + std::to_string(index)); };
    tab.on_click = [this] { note("page " + std::to_string(tab.current())); };
    tick.on_click = [this] { note("tick=" + std::to_string(tick.value())); };
    grey.on_click = [this] { note("grey=" + std::to_string(grey.value())); };
    name.on_click = noting("name clicked");
    list.on_click = [this] { note("line " + std::to_string(list.selected())); };
    combo.on_click = [this] { note("chose " + combo.text()); };
    drive.on_change = [this] { note("drive " + drive.drive()); };
    dir.on_change = [this] {
        note("dir " + dir.path());
        files.set_path(dir.path());
    };
    apply.on_click = noting("apply");
    cancel.on_click = noting("cancel");
    ok.on_click = noting("ok");
    status.on_mouse_down = [this](MouseButton button, int x) {
        note("status " + std::to_string(static_cast<int>(button)) + (x < 1500 ? " left" : " right"));
    };
    clock.on_timer = noting("tock");
    for (Control* control : controls()) {
        control->on_got_focus = noting("+" + control->name());
        control->on_lost_focus = noting("-" + control->name());
    }
}
