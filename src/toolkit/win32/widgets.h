#pragma once

#include <memory>

#include "toolkit/win32/widget.h"

/// The widgets of the controls, a function for each kind.
namespace toolkit::win32 {

using Made = std::unique_ptr<Widget>;

Made make_label(Label& control, HWND parent);
Made make_text_box(TextBox& control, HWND parent);
Made make_button(Button& control, HWND parent);
Made make_check_box(CheckBox& control, HWND parent);
Made make_frame(Frame& control, HWND parent);
Made make_picture_box(PictureBox& control, HWND parent);

Made make_list_box(ListBox& control, HWND parent);
Made make_list_view(ListView& control, HWND parent);
Made make_dir_list(DirListBox& control, HWND parent);
Made make_file_list(FileListBox& control, HWND parent);

Made make_combo_box(ComboBox& control, HWND parent);
Made make_drive_list(DriveListBox& control, HWND parent);

Made make_tab(TabContainer& control, HWND parent);
Made make_list_bar(ListBar& control, HWND parent);
Made make_status_bar(StatusBar& control, HWND parent);

}  // namespace toolkit::win32
