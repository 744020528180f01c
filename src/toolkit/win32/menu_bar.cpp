#include "toolkit/win32/menu_bar.h"

namespace toolkit::win32 {

namespace {

constexpr UINT first_number = 100;

}  // namespace

HMENU MenuBar::build() {
    numbered_.clear();
    HMENU const bar = CreateMenu();
    for (MenuItem* item : form_.menus())
        add(bar, *item);
    if (GetMenuItemCount(bar) > 0) return bar;
    DestroyMenu(bar);
    return nullptr;
}

void MenuBar::add(HMENU menu, MenuItem& item) {
    if (!item.visible()) return;
    if (item.separator()) {
        AppendMenuA(menu, MF_SEPARATOR, 0, nullptr);
        return;
    }
    const UINT look = MF_STRING | (item.responsive() ? MF_ENABLED : MF_GRAYED);
    if (item.entries().empty()) {
        const auto number = first_number + static_cast<UINT>(numbered_.size());
        numbered_.push_back(&item);
        AppendMenuA(menu, look, number, item.caption().c_str());
        return;
    }
    HMENU const deeper = CreatePopupMenu();
    for (MenuItem* entry : item.entries())
        add(deeper, *entry);
    AppendMenuA(menu, look | MF_POPUP, reinterpret_cast<UINT_PTR>(deeper), item.caption().c_str());
}

MenuItem* MenuBar::entry(UINT number) const {
    return number - first_number < numbered_.size() ? numbered_[number - first_number] : nullptr;
}

}  // namespace toolkit::win32
