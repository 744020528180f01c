#include "ui/update_form.h"

#include "base/product.h"
#include "base/text.h"
#include "startup/pictures.h"
#include "update/online_update.h"

namespace britlock {

using namespace text::literals;
using toolkit::Icon;

namespace {

struct ControlCaption {
    std::string_view control;
    Twin caption;
};

constexpr ControlCaption captions[] = {
    {"lbl1", {U"Update-Prüfung"_ansi, "Online Update Check"}},
    {"lbl2",
     {U"Für diese Aktion muss eine aktive Internet-Verbindung bestehen !\r\n\r\nWenn Sie jetzt über eine Internet-Verbindung verfügen, können Sie hier überprüfen, ob es inzwischen eine neuere Version von diesem Programm gibt. Sollte eine neuere Version vorliegen können Sie diese direkt hier herunterladen und installieren. Wählen Sie zuerst die Schaltfläche 'Prüfen'."_ansi,
      "You need an active Internet Connection to do this !\r\n\r\nIf you are connected to the Internet right "
      "now, you can check, if there is a newer version of this program. If there is one, you can download "
      "the "
      "latest version for free. Please press the button CHECK first."}},
    {"lbl3", {"Diese Version: \r\nAktuelle Version:", "This Version: \r\nLatest Version:"}},
    {"cmd1", {U"&Prüfen"_ansi, "C&heck"}},
    {"cmd2", {"&Installieren", "&Install"}},
    {"cmd3", {U"&Schliessen"_ansi, "C&lose"}},
    {"cmd_abbruch", {"&Abbruch", "&Cancel"}},
};

constexpr Twin not_checked{U"??? <prüfen>"_ansi, "??? <check>"};
constexpr Twin newer_version{"Eine neuere Version steht zum Download bereit.",
                             "A newer version is ready to be downloaded..."};
constexpr Twin current_version{"Sie besitzen die aktuelle Version.", "You own the latest version."};

constexpr Notice download_cancelled{
    Icon::critical, {"Abbruch", "Cancel !"}, {"Download wurde abgebrochen !", "Download was canceled !"}};

constexpr Notice update_failed{
    Icon::critical,
    {"Fehler auf Morvane Update Page", "Error while connecting..."},
    {U"Das Update konnte nicht durchgeführt werden, bitte versuchen Sie es zu einem späteren Zeitpunkt noch einmal."_ansi,
     "Sorry, the update file could not be loaded, cause there are problems on the homepage of morvane "
     "computer. Please try again later."}};

}  // namespace

Update::Update(Program& program) : ProgramForm(program, form_name) {
    set_caption("Online-Update");
    set_client_size(6600, 4650);
    set_icon(&pictures::internet);
    Image1.set_drawing(&pictures::internet);
    lbl1.set_font_size(12);
    cmd1.is_default = true;
    cmd1.on_click = [this] { cmd1_Click(); };
    cmd2.on_click = [this] { cmd2_Click(); };
    cmd3.is_cancel = true;
    cmd3.on_click = [this] { program_.unload<Update>(); };
    cmd_abbruch.on_click = [this] { cmd_abbruch_Click(); };
    lay_out({
        {Image1, nullptr, {180, 180, 480, 480}},
        {lbl1, nullptr, {840, 255, 5580, 360}},
        {lbl2, nullptr, {180, 840, 6240, 1380}},
        {lbl3, nullptr, {180, 2310, 1740, 495}},
        {lbl4, nullptr, {1980, 2310, 4440, 495}},
        {lbl5, nullptr, {180, 2910, 6240, 255}},
        {lbl6, nullptr, {180, 3240, 6240, 255}},
        {lbl7, nullptr, {180, 3540, 6240, 255}},
        {cmd1, nullptr, {180, 4065, 1440, 375}},
        {cmd2, nullptr, {1740, 4065, 1440, 375}},
        {cmd_abbruch, nullptr, {3420, 4065, 1440, 375}},
        {cmd3, nullptr, {4980, 4065, 1440, 375}},
    });
}

void Update::Form_Load() {
    for (const ControlCaption& row : captions)
        find(row.control)->set_text(program_.pick(row.caption));
    show_versions(program_.pick(not_checked));
    cmd2.set_enabled(false);
}

void Update::show_versions(const std::string& latest) {
    lbl4.set_text(std::string(product::version) + "\r\n" + latest);
}

void Update::enable_buttons(bool enabled) {
    for (toolkit::Button* button : {&cmd1, &cmd2, &cmd3})
        button->set_enabled(enabled);
}

/// Any difference counts as newer, a lower number and a line end behind it as well.
void Update::cmd1_Click() {
    const int language = program_.reg.get_language();
    const auto latest = latest_version(program_.machine.internet, language);
    if (!latest) {
        program_.toolkit.message_box(
            {.text = std::string("ERROR: ") + machine::internet_error_text(latest.error(), language),
             .icon = Icon::critical});
        return;
    }
    show_versions(*latest);
    const bool newer = *latest != product::version;
    lbl5.set_text(program_.pick(newer ? newer_version : current_version));
    if (newer) cmd2.set_enabled(true);
}

/// Pressed before a download it cancels the next one after its first chunk.
void Update::cmd_abbruch_Click() { cancelled_ = true; }

void Update::cmd2_Click() {
    lbl6.set_text("Downlad nach: " + program_.machine.system.program_directory() + "\\BRLCKUP.EXE");
    enable_buttons(false);
    try {
        downloading_ = true;
        const bool complete = download();
        downloading_ = false;
        if (!complete) return wind_up();
        enable_buttons(true);
        const auto installer = program_.machine.processes.start(
            '"' + installer_path(program_.machine.system) + '"', machine::WindowStyle::normal_focus);
        if (installer.error != machine::no_error) throw RuntimeError(installer.error);
    } catch (const RuntimeError&) {
        program_.say(update_failed);
        return program_.unload<Update>();
    }
    program_.toolkit.end_process();
}

/// A read that fails is told, and ends the file as its end would.
bool Update::download() {
    InstallerDownload installer(program_.machine);
    for (bool last = false; !last;) {
        const auto chunk = installer.fetch_chunk();
        lbl7.set_text(std::to_string(installer.kilobytes()) + " KB downgeloaded... Bitte warten...");
        last = chunk.last;
        if (cancelled_) return false;
        program_.toolkit.process_events();
        if (chunk.error != machine::success)
            program_.toolkit.message_box({.text = "Error " + std::to_string(chunk.error)});
    }
    lbl7.set_text(std::to_string(installer.total()) + " Byts wurden Downgeloadet     -  Fertig!");
    return true;
}

/// What has come so far stays on the disk.
void Update::wind_up() {
    program_.say(download_cancelled);
    lbl6.set_text("");
    lbl7.set_text("");
    enable_buttons(true);
    cancelled_ = false;
}

/// A download must not go on without its window, and end the program out of the blue.
void Update::close_by_frame() {
    if (downloading_) cancelled_ = true;
    program_.unload<Update>();
}

}  // namespace britlock
