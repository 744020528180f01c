#include "toolkit/keyboard.h"

#include <algorithm>

namespace toolkit {

namespace {

Button* usable_button(const Form& form, bool Button::*role) {
    for (Control* control : form.controls()) {
        if (control->kind() != Kind::button) continue;
        auto* button = static_cast<Button*>(control);
        if (button->*role) return button->usable() ? button : nullptr;
    }
    return nullptr;
}

}  // namespace

Control* next_stop(const Form& form, const Control* from, Step step) {
    const auto is_stop = [](const Control* control) { return control->takes_focus() && control->usable(); };
    const auto search = [&](auto begin, auto end) -> Control* {
        auto at = from ? std::find(begin, end, from) : begin;
        if (from && at != end) ++at;
        at = std::find_if(at, end, is_stop);
        return at == end ? nullptr : *at;
    };
    const auto& all = form.controls();
    return step == Step::forward ? search(all.begin(), all.end()) : search(all.rbegin(), all.rend());
}

Button* button_for_enter(const Form& form, const Control* focus) {
    if (focus && (focus->kind() == Kind::dir_list || focus->kind() == Kind::list_bar)) return nullptr;
    if (focus && focus->kind() == Kind::button) {
        return focus->usable() ? static_cast<Button*>(form.find(focus->name())) : nullptr;
    }
    return usable_button(form, &Button::is_default);
}

Button* button_for_escape(const Form& form) { return usable_button(form, &Button::is_cancel); }

}  // namespace toolkit
