#pragma once

#include <vector>

#include "toolkit/form.h"
#include "toolkit/win32/system.h"

namespace toolkit::win32 {

/// The menu of a form's window. It is built anew when entries have changed.
class MenuBar {
  public:
    explicit MenuBar(const Form& form) : form_(form) {}

    /// Null: no entry is to be seen. The window owns it.
    HMENU build();
    /// Null: none bears this number.
    MenuItem* entry(UINT number) const;

  private:
    void add(HMENU menu, MenuItem& item);

    const Form& form_;
    std::vector<MenuItem*> numbered_;
};

}  // namespace toolkit::win32
