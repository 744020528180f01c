#include "base/text.h"
#include "ui/main.h"

namespace britlock {

using namespace text::literals;

/// Picks the bitmap, and puts it on the desktop of the person who runs the tool: the choice is seen at once.
/// The chosen user's registry changes at the next save. Every failure is passed over.
void main::cm31_Click() {
    dialog = {
        .title = program_.pick({U"Festen Desktop Hintergrund auswählen"_ansi, "Select fixed Wallpaper"}),
        .filter = "*.BMP (Bitmap)|*.bmp",
        .start_folder = program_.reg.get_windows_dir()};
    const std::string file = program_.toolkit.ask_file(dialog);
    if (file.empty()) return;
    ignoring_errors([&] { t31.set_text(file); },
                    [&] {
                        if (program_.reg.file_has_content(file)) load_picture(file);
                    },
                    [&] { c37.set_value(1); }, [&] { program_.machine.system.set_wallpaper(t31.text()); });
}

}  // namespace britlock
