#include "toolkit/form.h"

#include <algorithm>

#include "base/text.h"
#include "toolkit/toolkit.h"

namespace toolkit {

Form::Form(Toolkit& toolkit, std::string_view name) : toolkit_(toolkit), name_(name) {}

Form::~Form() { toolkit_.forget(this); }

void Form::set_caption(std::string_view caption) {
    caption_ = text::up_to_nul(caption);
    refresh();
}

void Form::set_client_size(int width, int height) {
    client_width_ = width;
    client_height_ = height;
    refresh();
}

void Form::set_mouse_pointer(MousePointer pointer) {
    mouse_pointer_ = pointer;
    refresh();
}

void Form::lay_out(const std::vector<LayoutRow>& rows) {
    std::vector<Control*> order;
    for (const LayoutRow& row : rows) {
        row.control.set_parent(row.parent, row.control.page());
        row.control.set_place(row.rect);
        order.push_back(&row.control);
    }
    for (Control* c : controls_) {
        if (std::find(order.begin(), order.end(), c) == order.end()) order.push_back(c);
    }
    controls_ = std::move(order);
}

Control* Form::find(std::string_view name) const {
    const auto at =
        std::find_if(controls_.begin(), controls_.end(), [&](Control* c) { return c->name() == name; });
    return at == controls_.end() ? nullptr : *at;
}

void Form::refresh() {
    if (peer) peer->refresh();
}

}  // namespace toolkit
