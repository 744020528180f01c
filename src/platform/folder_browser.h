#pragma once

#include "base/folder_source.h"
#include "machine/machine.h"

namespace britlock {

/// The folders of a machine, as Windows' file searches show them.
class FolderBrowser : public FolderSource {
  public:
    explicit FolderBrowser(const machine::Machine& machine) : machine_(machine) {}
    std::vector<char> drives() override;
    std::string folder(std::string_view path) override;
    std::vector<std::string> folders(std::string_view path) override;
    std::vector<std::string> files(std::string_view path) override;

  private:
    std::string name_of_folder(const std::string& above, std::string_view name);
    std::vector<std::string> entries(std::string_view path, bool want_folders);

    machine::Machine machine_;
};

}  // namespace britlock
