#pragma once

#include <memory>

#include "toolkit/win32/widget.h"

/// The widget of a control.
namespace toolkit::win32 {

using Made = std::unique_ptr<Widget>;

Made make_widget(Label& control, HWND parent);
Made make_widget(TextBox& control, HWND parent);
Made make_widget(Button& control, HWND parent);
Made make_widget(CheckBox& control, HWND parent);
Made make_widget(Frame& control, HWND parent);
Made make_widget(PictureBox& control, HWND parent);

Made make_widget(ListBox& control, HWND parent);
Made make_widget(ListView& control, HWND parent);
Made make_widget(DirListBox& control, HWND parent);
Made make_widget(FileListBox& control, HWND parent);

Made make_widget(ComboBox& control, HWND parent);
Made make_widget(DriveListBox& control, HWND parent);

Made make_widget(TabContainer& control, HWND parent);
Made make_widget(ListBar& control, HWND parent);
Made make_widget(StatusBar& control, HWND parent);

/// It has none.
inline Made make_widget(Timer&, HWND) { return nullptr; }

}  // namespace toolkit::win32
