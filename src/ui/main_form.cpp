#include "ui/main_form.h"

#include <utility>

#include "base/product.h"
#include "base/text.h"
#include "engine/marking.h"
#include "startup/pictures.h"
#include "startup/setpass.h"
#include "ui/outcome_boxes.h"
#include "ui/update_form.h"
#include "ui/verzeichnis.h"
#include "uninstall/older_product.h"

namespace britlock {

using namespace text::literals;
using toolkit::Icon;

namespace {

constexpr Notice older_product{
    Icon::exclamation,
    {"Alte Brightlock Classic-Version gefunden !", "Old Brightlock Classic found!"},
    {"Auf Ihrem Rechner ist Brightlock Classic installiert. Es wird empfohlen, Ihre alte Brightlock "
     "Classic-Version zu "
     "deinstallieren.",
     "A older version of Brightlock was found on this computer. We recommend you to deinstall the old "
     "Brightlock "
     "Classic-Version."}};

constexpr Notice users_on_nt_only{
    Icon::critical,
    {"Benutzerverwaltung nur W2K/NT/XP", "Sorry - Changing Users only in Win2K, WinNT or WinXP-Systems..."},
    {U"Unter Win9X und WinME Betriebssystemen können die Einschränkungen nur für den aktuell angemeldeten und hier angezeigten Benutzer vorgenommen werden. Um ein anderes Benutzerprofil zu ändern, melden Sie sich bitte in Windows ab und loggen sich erneut mit dem Username ein, den Sie einschränken möchten. Starten Sie danach dieses Programm erneut."_ansi,
     "If you are using a Win9X or WinME System you can only set restrictions for the logged-in user. If you "
     "have to "
     "change settings for other users, please reboot and login as the name you want to restrict."}};

template <size_t... k>
std::array<toolkit::CheckBox, sizeof...(k)> make_drive_boxes(toolkit::Form& form, std::index_sequence<k...>) {
    return {{toolkit::CheckBox(form, std::string("d_") + static_cast<char>('a' + k))...}};
}

}  // namespace

MainForm::MainForm(Program& program)
    : ProgramForm(program, form_name),
      drive_boxes(make_drive_boxes(*this, std::make_index_sequence<drive_count>())) {
    set_client_size(8730, 6120);
    set_icon(&pictures::lock);
    help_context = 10;
    tab.set_captions({"&1.)", "&2.)", "&3.)", "&4.)", "&5.)", "&6.)", "&7.)", "&8.)", "&9.)"});
    l01.set_text("Start");
    cmd_set.set_text("&Setzen");
    Label1.set_text(
        U"Drücken Sie die Taste F1, um zu dieser Registerkarte eine kontextbezogene Hilfe zu erhalten."_ansi);
    gesamtfiles.set_text("gesfiles");
    txttooltip.set_text("Brightlock");
    Image1.set_drawing(&pictures::lock);
    Timer1.interval_ms = 1000;
    for (size_t k = 0; k < drive_boxes.size(); ++k) {
        drive_boxes[k].set_text(std::string{static_cast<char>('A' + k), ':'});
        drive_boxes[k].set_enabled(false);
    }
    for (toolkit::MenuItem* line : {&m1x1, &mm1x2, &m1x9, &m2X1, &mm2X2, &mmx51, &mm5X1, &mm5x2})
        line->set_caption("-");
    txttooltip.set_visible(false);
    place_controls();
    connect_events();
}

void MainForm::Form_Load() {
    menu1();
    status_init();
    CPL_All();
    show(program_.engine.at_start());
    ignoring_errors([&] { show_picture(); });
    get_drives();
    localize();
    fill_Combo_user();
    if (checkbritol(program_.reg)) program_.say(older_product);
    set_caption(product::title);
    l02.set_text(page_help_text[1]);
    const bool nt = program_.reg.is_nt_family();
    if (!nt) {
        t810.set_text(
            program_.pick({"<nicht relevant unter W9X/ME>", "<only available for Win NT/2000/XP-Systems>"}));
        t810.set_enabled(false);
    }
    t32.set_text("");
    mm4.set_visible(false);
    if (!nt) REG_Load32();
    if (program_.machine.system.command_line() == "/uninstall") mm132_Click();
}

void MainForm::fill_Combo_user() {
    const std::string logged_on = program_.reg.get_user_name();
    if (program_.reg.is_nt_family()) {
        UserDirectory& users = program_.users;
        say_unreadable(program_, users.profiles_scan());
        t810.set_text(users.profile_base_path);
        for (int i = 1; i <= users.profile_count; ++i)
            Combo_user.add(users.profile_names[i]);
    } else {
        Combo_user.add(logged_on);
    }
    Combo_user.set_text(logged_on);
}

void MainForm::Combo_user_GotFocus() {
    if (program_.reg.is_nt_family()) return;
    program_.say(users_on_nt_only);
    Combo_user.set_text(REGISTRY_MOD::clean_reg_string(program_.reg.get_user_name()));
}

void MainForm::close_by_frame() { program_.toolkit.end_process(); }

/// One line for each event that a person can cause.
void MainForm::connect_events() {
    SSListBar1.on_item_click = [this](int item) { SSListBar1_Click(item); };
    tab.on_click = [this] { tab_Click(); };
    on_help = [this] { open_help("-n " + std::to_string(help_context) + " "); };
    Combo_user.on_click = [this] { hive(hive_load); };
    Combo_user.on_got_focus = [this] { Combo_user_GotFocus(); };
    cmd_set.on_click = [this] { hive(hive_save); };
    cm01.on_click = [this] { program_.toolkit.end_process(); };
    cm02.on_click = [this] { cm02_Click(); };
    StatusBar.on_mouse_down = [this](toolkit::MouseButton button, int x) { StatusBar_MouseDown(button, x); };
    Timer1.on_timer = [this] { Timer1_Timer(); };

    // c16 also writes NoSetTaskbar, the value of c31: show what will be set. Unticking leaves c31 alone.
    c16.on_click = [this] {
        if (c16.ticked()) c31.set_value(1);
    };
    cmd21.on_click = [this] { change([](RestrictionSet& set) { set.hidden_applets.fill(true); }); };
    cmd22.on_click = [this] { change([](RestrictionSet& set) { set.hidden_applets.fill(false); }); };
    cm31.on_click = [this] { cm31_Click(); };
    t31.on_click = [this] { c37.set_value(1); };
    cm32.on_click = [this] { program_.show<verzeichnis>(); };
    c41.on_click = [this] { c41_Click(); };
    cm41.on_click = [this] { cm41_Click(); };
    cm42.on_click = [this] { cm42_Click(); };
    cm43.on_click = [this] { cm43_Click(); };
    cm44.on_click = [this] { cm44_Click(); };
    cm45.on_click = [this] { cm45_Click(); };
    cm51.on_click = [this] { change([this](RestrictionSet& set) { hide_drives(set, drives_to_choose()); }); };
    cm52.on_click = [this] { change(show_all_drives); };
    syslist.on_click = [this] { syslist_Click(); };
    t810.on_got_focus = [this] { t810_GotFocus(); };
    t810.on_lost_focus = [this] { t810_LostFocus(); };

    mm11.on_click = [this] { mm11_Click(); };
    mm12.on_click = [this] { mm12_Click(); };
    mm13.on_click = [this] { mm13_Click(); };
    mm14.on_click = [this] { mm14_Click(); };
    mm15.on_click = [this] { program_.toolkit.set_up_printer(); };
    mm132.on_click = [this] { mm132_Click(); };
    mm16.on_click = [this] { program_.toolkit.end_process(); };
    mm21.on_click = [this] { mm21_Click(); };
    mm22.on_click = [this] { change(unmark_all); };
    mm23.on_click = [this] { program_.show<setpass>(); };
    mm24.on_click = [this] { mm24_Click(); };
    mm41.on_click = [this] { mm41_Click(); };
    mm42.on_click = [this] { mm42_Click(); };
    toolkit::MenuItem* const pages[] = {&mm31, &mm32, &mm33, &mm34, &mm35, &mm36, &mm37, &mm38, &mm39};
    for (int page = 1; page <= 9; ++page)
        pages[page - 1]->on_click = [this, page] { go_to_page(page); };
    mm51.on_click = [this] { open_help(); };
    mm52.on_click = [this] { open_help(); };
    mm53.on_click = [this] { mm53_Click(); };
    mm54.on_click = [this] { mm54_Click(); };
    mm55.on_click = [this] { program_.show<Update>(); };
    mm57.on_click = [this] { mm57_Click(); };
}

}  // namespace britlock
