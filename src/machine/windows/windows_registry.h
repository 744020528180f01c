#pragma once

#include "machine/registry.h"

namespace machine {

/// The registry of the running Windows.
class WindowsRegistry : public Registry {
  public:
    Outcome query(Root root, std::string_view subkey, std::string_view name, RawValue& out) override;
    Outcome set(Root root, std::string_view subkey, std::string_view name, const RawValue& value) override;
    Outcome delete_value(Root root, std::string_view subkey, std::string_view name) override;
    Disposition create_key(Root root, std::string_view subkey) override;
    WinCode delete_key(Root root, std::string_view subkey) override;
    WinCode enum_key(Root root, std::string_view subkey, uint32_t index, std::string& name) override;
};

}  // namespace machine
