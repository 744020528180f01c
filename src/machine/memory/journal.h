#pragma once

#include <string>

#include "machine/registry.h"

namespace machine {

/// One line for people: `dword 1`, `"text"`, `"text" without NUL`, `type 3: 01 02`.
std::string describe(const RawValue& value);
/// HKCU\subkey, HKLM\subkey, HKU\subkey.
std::string describe(Root root, std::string_view subkey);

/// Hands every call to another registry: a watcher or a fault overrides the one call it cares about.
class RegistryForwarder : public Registry {
  public:
    explicit RegistryForwarder(Registry& target) : target_(target) {}

    Outcome query(Root root, std::string_view subkey, std::string_view name, RawValue& out) override;
    Outcome set(Root root, std::string_view subkey, std::string_view name, const RawValue& value) override;
    Outcome delete_value(Root root, std::string_view subkey, std::string_view name) override;
    Disposition create_key(Root root, std::string_view subkey) override;
    WinCode delete_key(Root root, std::string_view subkey) override;
    WinCode enum_key(Root root, std::string_view subkey, uint32_t index, std::string& name) override;

  private:
    Registry& target_;
};

/// Writes down every change that is asked for, in order, one line each, with the code of a failure.
class JournalRegistry : public RegistryForwarder {
  public:
    using RegistryForwarder::RegistryForwarder;

    /// What was asked for since the last clear().
    const std::string& text() const { return text_; }
    void clear() { text_.clear(); }

    Outcome set(Root root, std::string_view subkey, std::string_view name, const RawValue& value) override;
    Outcome delete_value(Root root, std::string_view subkey, std::string_view name) override;
    Disposition create_key(Root root, std::string_view subkey) override;
    WinCode delete_key(Root root, std::string_view subkey) override;

  private:
    Outcome note(const std::string& what, Outcome outcome);

    std::string text_;
};

}  // namespace machine
