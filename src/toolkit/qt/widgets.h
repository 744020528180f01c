#pragma once

#include "toolkit/qt/peer.h"

/// The widgets of the controls, a function for each kind. The parent owns what they make.
namespace toolkit::qt {

WidgetPeer* make_label(Label& control, QWidget& parent);
WidgetPeer* make_text_box(TextBox& control, QWidget& parent);
WidgetPeer* make_button(Button& control, QWidget& parent);
WidgetPeer* make_check_box(CheckBox& control, QWidget& parent);
WidgetPeer* make_frame(Frame& control, QWidget& parent);
WidgetPeer* make_picture_box(PictureBox& control, QWidget& parent);

WidgetPeer* make_list_box(ListBox& control, QWidget& parent);
WidgetPeer* make_list_view(ListView& control, QWidget& parent);
WidgetPeer* make_dir_list(DirListBox& control, QWidget& parent);
WidgetPeer* make_file_list(FileListBox& control, QWidget& parent);

WidgetPeer* make_combo_box(ComboBox& control, QWidget& parent);
WidgetPeer* make_drive_list(DriveListBox& control, QWidget& parent);

WidgetPeer* make_tab(TabContainer& control, QWidget& parent);
WidgetPeer* make_list_bar(ListBar& control, QWidget& parent);
WidgetPeer* make_status_bar(StatusBar& control, QWidget& parent);

/// Has no widget; lives with the window.
void make_timer(Timer& control, QWidget& window);

}  // namespace toolkit::qt
