#pragma once

#include "toolkit/form.h"

/// What keys mean in a form: the same on every screen, so that no renderer has to know it.
namespace toolkit {

enum class Step { forward, back };

/// Where Tab leads from a control: the next one in the order of the layout that a person can use. From null:
/// the first one, or the last. Null: there is none further on.
Control* next_stop(const Form& form, const Control* from, Step step);

/// The button that Enter presses while `focus` (null: nothing) has the keyboard: that button itself, else the
/// default one. Null where there is none that can be used, or where Enter opens a line of the focused list.
Button* button_for_enter(const Form& form, const Control* focus);
/// The button that Esc presses; null where there is none that can be used.
Button* button_for_escape(const Form& form);

}  // namespace toolkit
