#pragma once

#include <string>

#include "toolkit/form.h"

/// What a screen reader says of a form: the same on every screen.
namespace toolkit {

/// A caption as it is spoken: without the marks of access keys.
std::string without_access_key(std::string_view caption);

/// The label, or check box, that stands right before a control without a caption of its own; null: there is
/// none. The access key of a label leads to that control.
Control* label_of(const Control& control);

/// What a control is called: the name given to it, its caption, its label, the control before it (a button
/// whose caption has no letter, as "..."), the frame around it, or the caption of the form.
std::string spoken_name(const Control& control);

/// Of one tab, from 0: its caption and that of the frame on its page.
std::string spoken_tab_name(const TabContainer& tab, int page);

}  // namespace toolkit
