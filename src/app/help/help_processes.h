#pragma once

#include <functional>

#include "machine/system.h"

namespace britlock {

/// The programs of a machine, and a viewer in the place of Windows' own for its help files.
class HelpProcesses : public machine::Processes {
  public:
    /// `show` gets the number of the topic; 0: the contents.
    HelpProcesses(machine::Processes& others, std::function<void(int topic)> show)
        : others_(others), show_(std::move(show)) {}

    Started start(std::string_view command_line, machine::WindowStyle style) override;
    uint32_t exit_code(uint32_t id) override { return others_.exit_code(id); }
    void open_address(std::string_view address) override { others_.open_address(address); }

  private:
    machine::Processes& others_;
    std::function<void(int topic)> show_;
};

}  // namespace britlock
