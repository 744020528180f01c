#pragma once

#include <array>
#include <functional>
#include <string>
#include <vector>

#include "startup/program_form.h"

namespace britlock {

/// The main window. The state of its controls is the state of the program: nothing else is kept between
/// reading a user's registry and writing it. Its procedures show, ask, and call the engine.
struct MainForm : ProgramForm {
    static constexpr const char* form_name = form::main;
    explicit MainForm(Program& program);

    void Form_Load() override;
    void close_by_frame() override;

    // --- restriction sets
    /// Shows a set, in the order in which boxes that fire may overtake each other.
    void show(const RestrictionSet& set);
    /// What the controls show at this moment.
    RestrictionSet marks();
    toolkit::CheckBox& box(int number);
    void REG_Load32();
    void REG_Save32();

    // --- users
    enum HiveMode { hive_save = 1, hive_load = 2 };
    void hive(int mode);
    void fill_Combo_user();
    void Combo_user_GotFocus();

    // --- navigation
    void menu1();
    void status_init();
    void homepage();
    void StatusBar_MouseDown(toolkit::MouseButton button, int x);
    void Timer1_Timer();
    void go_to_page(int page);  ///< from 1
    void tab_Click();
    void SSListBar1_Click(int item);
    void cm02_Click();

    // --- texts
    void localize();
    void localize_german();
    void localize_us();
    void mm41_Click();
    void mm42_Click();

    // --- files
    void dateispeichern(const std::string& file);
    void dateioeffnen(const std::string& file);
    /// Shows what the bytes of a restriction file hold, or that they are none.
    void show_file(std::string_view bytes);
    void mm11_Click();
    void mm12_Click();
    void mm13_Click();
    void mm14_Click();

    // --- the pages' own commands
    void CPL_All();
    void get_drives();
    void cm31_Click();
    void c41_Click();
    void cm41_Click();
    void cm42_Click();
    void cm43_Click();
    void cm44_Click();
    void cm45_Click();
    void mm21_Click();
    void mm24_Click();
    void mm132_Click();

    // --- page 9
    void syslist_Click();
    void t810_GotFocus();
    void t810_LostFocus();

    // --- help
    /// `topic`: the viewer's option that leads to one, with a blank after it; empty: the contents.
    void open_help(const std::string& topic = "");
    void mm53_Click();
    void mm54_Click();
    void mm57_Click();

    // --- the state of the form beside its controls
    std::array<std::string, 11> page_name;  ///< from 1
    std::array<std::string, 10> page_help_text;
    toolkit::FileDialog dialog;  ///< the one file dialog; cleared before each show
    std::string last_file_name;  ///< last saved to in this run

    // --- the frame of the window
    toolkit::ListBar SSListBar1{*this, "SSListBar1"};
    toolkit::TabContainer tab{*this, "tab"};
    toolkit::Frame f0{*this, "f0"};
    toolkit::Label l01{*this, "l01"}, l02{*this, "l02"}, L_gen{*this, "L_gen"}, Label1{*this, "Label1"};
    toolkit::PictureBox Image1{*this, "Image1"};
    toolkit::ComboBox Combo_user{*this, "Combo_user"};
    toolkit::Button cmd_set{*this, "cmd_set"}, cm01{*this, "cm01"}, cm02{*this, "cm02"};
    toolkit::StatusBar StatusBar{*this, "StatusBar"};
    toolkit::Timer Timer1{*this, "Timer1"};
    toolkit::TextBox txttooltip{*this, "txttooltip"};

    // --- page 1: start menu
    toolkit::Frame f1{*this, "f1"};
    toolkit::CheckBox c11{*this, "c11"}, c12{*this, "c12"}, c13{*this, "c13"}, c14{*this, "c14"},
        c15{*this, "c15"}, c16{*this, "c16"}, c17{*this, "c17"}, c18{*this, "c18"}, c19{*this, "c19"},
        c110{*this, "c110"};

    // --- page 2: control panel
    toolkit::Frame f2{*this, "f2"};
    toolkit::Label l21{*this, "l21"};
    toolkit::ListView lv1{*this, "lv1"};
    toolkit::Button cmd21{*this, "cmd21"}, cmd22{*this, "cmd22"};

    // --- page 3: desktop
    toolkit::Frame f3{*this, "f3"};
    toolkit::CheckBox c31{*this, "c31"}, c32{*this, "c32"}, c33{*this, "c33"}, c34{*this, "c34"},
        c35{*this, "c35"}, c36{*this, "c36"}, c37{*this, "c37"}, c38{*this, "c38"}, c39{*this, "c39"};
    toolkit::TextBox t31{*this, "t31"}, t32{*this, "t32"};
    toolkit::Button cm31{*this, "cm31"}, cm32{*this, "cm32"};
    toolkit::PictureBox pic31{*this, "pic31"};

    // --- page 4: allowed programs
    toolkit::Frame f4{*this, "f4"};
    toolkit::CheckBox c41{*this, "c41"};
    toolkit::ListBox List1{*this, "List1"};
    toolkit::Button cm41{*this, "cm41"}, cm42{*this, "cm42"}, cm43{*this, "cm43"}, cm44{*this, "cm44"},
        cm45{*this, "cm45"};
    toolkit::Label gesamtfiles{*this, "gesamtfiles"};

    // --- page 5: drives
    toolkit::Frame f5{*this, "f5"};
    toolkit::Label l51{*this, "l51"};
    toolkit::Button cm51{*this, "cm51"}, cm52{*this, "cm52"};
    /// `d_a` to `d_z`.
    std::array<toolkit::CheckBox, drive_count> drive_boxes;

    // --- page 6: network and printers
    toolkit::Frame f6{*this, "f6"};
    toolkit::CheckBox c65{*this, "c65"}, c66{*this, "c66"}, c67{*this, "c67"}, c68{*this, "c68"},
        c69{*this, "c69"}, c610{*this, "c610"}, c98{*this, "c98"}, c99{*this, "c99"};

    // --- page 7: Internet Explorer
    toolkit::Frame f7{*this, "f7"};
    toolkit::CheckBox c21{*this, "c21"}, c22{*this, "c22"}, c23{*this, "c23"}, c24{*this, "c24"},
        c25{*this, "c25"}, c26{*this, "c26"}, c27{*this, "c27"}, c28{*this, "c28"}, c29{*this, "c29"},
        c210{*this, "c210"};

    // --- page 8: miscellaneous
    toolkit::Frame f8{*this, "f8"};
    toolkit::CheckBox c61{*this, "c61"}, c62{*this, "c62"}, c63{*this, "c63"}, c64{*this, "c64"},
        c90{*this, "c90"}, c91{*this, "c91"}, c93{*this, "c93"}, c94{*this, "c94"}, c95{*this, "c95"},
        c96{*this, "c96"};

    // --- page 9: settings
    toolkit::Frame f9{*this, "f9"};
    toolkit::Label l83{*this, "l83"}, l81{*this, "l81"}, l82{*this, "l82"}, l810{*this, "l810"};
    toolkit::ListBox syslist{*this, "syslist"};
    toolkit::TextBox t81{*this, "t81"}, t82{*this, "t82"}, t810{*this, "t810"};

    // --- menus
    toolkit::MenuItem mm1{*this, "mm1"}, mm11{mm1, "mm11"}, mm12{mm1, "mm12"}, mm13{mm1, "mm13"},
        m1x1{mm1, "m1x1"}, mm132{mm1, "mm132"}, mm1x2{mm1, "mm1x2"}, mm14{mm1, "mm14"}, mm15{mm1, "mm15"},
        m1x9{mm1, "m1x9"}, mm16{mm1, "mm16"};
    toolkit::MenuItem mm2{*this, "mm2"}, mm21{mm2, "mm21"}, mm22{mm2, "mm22"}, m2X1{mm2, "m2X1"},
        mm23{mm2, "mm23"}, mm2X2{mm2, "mm2X2"}, mm24{mm2, "mm24"};
    toolkit::MenuItem mm3{*this, "mm3"}, mm31{mm3, "mm31"}, mm32{mm3, "mm32"}, mm33{mm3, "mm33"},
        mm34{mm3, "mm34"}, mm35{mm3, "mm35"}, mm36{mm3, "mm36"}, mm37{mm3, "mm37"}, mm38{mm3, "mm38"},
        mm39{mm3, "mm39"};
    toolkit::MenuItem mm4{*this, "mm4"}, mm41{mm4, "mm41"}, mm42{mm4, "mm42"};
    toolkit::MenuItem mm5{*this, "mm5"}, mm51{mm5, "mm51"}, mm52{mm5, "mm52"}, mmx51{mm5, "mmx51"},
        mm53{mm5, "mm53"}, mm5X1{mm5, "mm5X1"}, mm54{mm5, "mm54"}, mm55{mm5, "mm55"}, mm5x2{mm5, "mm5x2"},
        mm57{mm5, "mm57"};

  private:
    void show_boxes(const RestrictionSet& set);
    /// Changes boxes, applets and drives by a rule of the engine.
    void change(const std::function<void(RestrictionSet&)>& rule);
    bool may_overwrite(const std::string& file);
    void show_picture();
    uint32_t drives_to_choose() const;
    void add_programs(const std::vector<std::string>& wanted);
    void show_count();
    void lift_restrictions();

    void connect_events();
    void place_controls();
    void caption_all(int language);
    void fill_syslist(int language);
};

}  // namespace britlock
