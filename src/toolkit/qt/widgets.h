#pragma once

#include "toolkit/qt/peer.h"

/// The widget of a control, which its parent owns.
namespace toolkit::qt {

WidgetPeer* make_widget(Label& control, QWidget& parent);
WidgetPeer* make_widget(TextBox& control, QWidget& parent);
WidgetPeer* make_widget(Button& control, QWidget& parent);
WidgetPeer* make_widget(CheckBox& control, QWidget& parent);
WidgetPeer* make_widget(Frame& control, QWidget& parent);
WidgetPeer* make_widget(PictureBox& control, QWidget& parent);

WidgetPeer* make_widget(ListBox& control, QWidget& parent);
WidgetPeer* make_widget(ListView& control, QWidget& parent);
WidgetPeer* make_widget(DirListBox& control, QWidget& parent);
WidgetPeer* make_widget(FileListBox& control, QWidget& parent);

WidgetPeer* make_widget(ComboBox& control, QWidget& parent);
WidgetPeer* make_widget(DriveListBox& control, QWidget& parent);

WidgetPeer* make_widget(TabContainer& control, QWidget& parent);
WidgetPeer* make_widget(ListBar& control, QWidget& parent);
WidgetPeer* make_widget(StatusBar& control, QWidget& parent);

/// None; what is made lives with the window.
WidgetPeer* make_widget(Timer& control, QWidget& window);

}  // namespace toolkit::qt
