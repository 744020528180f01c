#pragma once

#include "machine/machine.h"
#include "toolkit/controls.h"

namespace britlock {

/// Shows the folder controls and the file dialog the drives of the machine being worked on.
class FolderBrowser : public toolkit::FolderSource {
  public:
    explicit FolderBrowser(machine::Machine& machine) : machine_(machine) {}
    std::vector<char> drives() override;
    std::string folder(std::string_view path) override;
    std::vector<std::string> folders(std::string_view path) override;
    std::vector<std::string> files(std::string_view path) override;

  private:
    std::string name_of_folder(const std::string& above, std::string_view name);
    std::vector<std::string> entries(std::string_view path, bool want_folders);

    machine::Machine& machine_;
};

}  // namespace britlock
