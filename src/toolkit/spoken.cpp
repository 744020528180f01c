#include "toolkit/spoken.h"

#include <algorithm>
#include <cctype>

namespace toolkit {

namespace {

bool has_caption(const Control& control) {
    switch (control.kind()) {
        case Kind::label:
        case Kind::button:
        case Kind::check_box:
        case Kind::frame:
        case Kind::list_bar:
            return true;
        default:
            return false;
    }
}

/// Null: it is the first one in its frame.
Control* before(const Control& control) {
    Control* last = nullptr;
    for (Control* other : control.form().controls()) {
        if (other == &control) return last;
        if (other->parent() == control.parent()) last = other;
    }
    return nullptr;
}

bool can_be_spoken(const std::string& caption) {
    return std::any_of(caption.begin(), caption.end(),
                       [](unsigned char c) { return c >= 0x80 || std::isalnum(c); });
}

/// The caption of the frame on a page; empty where it has none.
std::string page_caption(const TabContainer& tab, int page) {
    for (const Control* control : tab.form().controls()) {
        if (control->parent() == &tab && control->page() == page && control->kind() == Kind::frame)
            return control->text();
    }
    return {};
}

}  // namespace

std::string without_access_key(std::string_view caption) {
    std::string out;
    for (size_t i = 0; i < caption.size(); ++i) {
        if (caption[i] == '&' && ++i == caption.size()) break;
        out += caption[i];
    }
    while (out.ends_with(':') || out.ends_with(' '))
        out.pop_back();
    return out;
}

Control* label_of(const Control& control) {
    if (!control.takes_focus() || has_caption(control)) return nullptr;
    Control* const other = before(control);
    const bool names = other && (other->kind() == Kind::label || other->kind() == Kind::check_box);
    return names ? other : nullptr;
}

std::string spoken_name(const Control& control) {
    if (!control.own_spoken_name().empty()) return control.own_spoken_name();
    if (control.kind() == Kind::tab) {
        const auto& tab = static_cast<const TabContainer&>(control);
        return spoken_tab_name(tab, tab.current());
    }
    if (has_caption(control) && can_be_spoken(control.text())) return without_access_key(control.text());
    if (const Control* label = label_of(control)) return spoken_name(*label);
    const Control* neighbour = before(control);
    if (control.kind() == Kind::button && neighbour) return spoken_name(*neighbour) + " ...";
    for (const Control* frame = control.parent(); frame; frame = frame->parent()) {
        if (frame->kind() == Kind::frame && can_be_spoken(frame->text())) return spoken_name(*frame);
    }
    return control.form().caption();
}

std::string spoken_tab_name(const TabContainer& tab, int page) {
    const auto& captions = tab.captions();
    const std::string caption = static_cast<size_t>(page) < captions.size() ? captions[page] : "";
    return without_access_key(caption) + " " + without_access_key(page_caption(tab, page));
}

}  // namespace toolkit
