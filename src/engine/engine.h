#pragma once

#include <optional>
#include <string>

#include "engine/catalogue.h"
#include "engine/restriction_set.h"
#include "platform/registry_mod.h"
#include "users/target.h"

namespace britlock {

/// Takes restriction sets out of a user's registry and into it. Knows no window.
class Engine {
  public:
    Engine(const machine::Machine& machine, REGISTRY_MOD& reg) : machine_(machine), reg_(reg) {}

    /// All that is stored of a user's restrictions; writes nothing to the registry. What no user's registry
    /// tells is taken from `texts`. RuntimeError where the file of the start options cannot be read.
    RestrictionSet read(const Target& from, const MachineTexts& texts);

    enum class Written { done, refused };
    /// Turns a set into the user's registry: resets every restriction, then sets what is ticked. Nothing is
    /// compared with the old state, and only the first write is looked at: refused, where it fails.
    /// RuntimeError as for reading, and 6 for a name of the machine's owner that begins with too large a
    /// number; what was written until then stays.
    Written write(const Target& to, const RestrictionSet& set);

    /// What the window shows before a user is chosen, from the account that runs the program. Makes Internet
    /// Explorer's policy keys there.
    RestrictionSet at_start();
    /// How Windows is registered.
    MachineTexts machine_texts();

    /// The bytes of a picture file; none where it is missing or empty. RuntimeError where it cannot be read.
    std::optional<std::string> picture(const std::string& path);

    /// Bit 0 is A.
    uint32_t drives_there() { return machine_.system.logical_drives(); }

  private:
    void read_rows(const Target& from, Step step, RestrictionSet& set);
    std::string text_at(Root root, const std::string& key, const char* value_name);
    bool is_set(Root root, const std::string& key, const char* value_name);
    void read_start_options(RestrictionSet& set);
    void make_boot_file_writable();
    void read_boot_file(RestrictionSet& set);
    void read_applets(const Target& from, RestrictionSet& set);
    void read_programs(const Target& from, RestrictionSet& set);
    void read_drives(Root root, const std::string& key, RestrictionSet& set);

    void clear_rows(const Target& to);
    void reset_command_line(const Target& to);
    void write_rows(const Target& to, Step step, const RestrictionSet& set);
    void write_text(const Target& to, const StoredText& text, const RestrictionSet& set, bool ticked);
    void write_icon_run(const Target& to, const RestrictionSet& set);
    void write_applets(const Target& to, const RestrictionSet& set);
    void write_programs(const Target& to, const RestrictionSet& set);
    void write_drives(const Target& to, const RestrictionSet& set);
    void write_start_options(const RestrictionSet& set);
    void write_own_values(const Target& to, const MachineTexts& texts);
    void write_beep(const Target& to, const RestrictionSet& set);

    machine::Machine machine_;
    REGISTRY_MOD& reg_;
};

}  // namespace britlock
