#include "toolkit/toolkit.h"

#include <algorithm>
#include <utility>

#include "base/text.h"

namespace toolkit {

namespace {

constexpr Twin run_time_error{"Laufzeitfehler", "Run-time error"};

std::string as_shown(std::string_view text) {
    std::string out(text::up_to_nul(text));
    for (size_t i = 0; i < out.size(); ++i) {
        if (out[i] != '\r') continue;
        if (i + 1 < out.size() && out[i + 1] == '\n') {
            out.erase(i, 1);
        } else {
            out[i] = '\n';
        }
    }
    return out;
}

}  // namespace

Answer Toolkit::message_box(Box box) {
    box.text = as_shown(box.text);
    box.title = as_shown(box.title);
    if (box.title.empty()) box.title = product_title;
    return show_box(box);
}

std::string Toolkit::input_box(std::string_view title, std::string_view prompt) {
    return show_input_box(as_shown(title), as_shown(prompt));
}

void Toolkit::show(Form& form) {
    if (!form.shown_) {
        form.shown_ = true;
        forms_.push_back(&form);
    }
    show_window(form);
}

void Toolkit::hide(Form& form) {
    if (!form.shown_) return;
    if (focus_ && &focus_->form() == &form) set_focus(nullptr);
    form.shown_ = false;
    std::erase(forms_, &form);
    hide_window(form);
}

void Toolkit::unload(Form& form, std::function<void()> release) {
    hide(form);
    unloaded_.push_back({form, std::move(release)});
}

void Toolkit::set_focus(Control* control) {
    if (control && (!control->takes_focus() || !control->usable())) return;
    if (control == focus_) return;
    Control* const left = focus_;
    focus_ = control;
    focus_form_ = control ? &control->form() : nullptr;
    show_focus(control);
    if (left && left->on_lost_focus) left->on_lost_focus();
    if (control && control == focus_ && control->on_got_focus) control->on_got_focus();
}

void Toolkit::deliver(const std::function<void()>& event) {
    struct Depth {
        int& value;
        explicit Depth(int& v) : value(v) { ++value; }
        ~Depth() { --value; }
    };
    {
        const Depth depth(depth_);
        try {
            event();
        } catch (const RuntimeError& error) {
            const std::string number = std::to_string(error.number());
            message_box(
                {.text = pick(run_time_error, language_) + (" '" + number) + "':\n\n" + error.text(language_),
                 .icon = Icon::critical});
            end_process(Ending::failed);
        }
    }
    if (depth_ > 0 || unloaded_.empty()) return;
    when_idle([this] { release_unloaded(); });
    if (forms_.empty()) end_process();
}

void Toolkit::release_unloaded() {
    if (depth_ > 0) return;  // the end of the running event comes back to it
    const auto now = std::exchange(unloaded_, {});
    for (const Unloaded& gone : now) {
        destroy_window(gone.form);
        if (gone.release) gone.release();
    }
}

void Toolkit::forget(const Form* form) {
    if (focus_form_ == form) focus_ = nullptr;
    std::erase(forms_, form);
}

}  // namespace toolkit
