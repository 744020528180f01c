#pragma once

#include <map>
#include <memory>
#include <string>

#include "base/product.h"
#include "machine/machine.h"
#include "machine/offline/installation.h"
#include "machine/offline/offline_files.h"
#include "machine/offline/offline_processes.h"
#include "machine/offline/offline_registry.h"
#include "machine/offline/offline_system.h"

namespace machine {

struct OfflineOptions {
    std::map<char, std::string> drives;  ///< host folders by letter; C is the installation
    std::string executables;             ///< host folder of britlock and the hive tool
    std::string program_directory = product::default_folder;  ///< where they lie for Windows
    std::string command_line;                                 ///< what the program is to see
    std::string state_folder;                                 ///< empty: the usual one
    OnToolReport on_report;                                   ///< told of every run of the hive tool
};

/// A Windows installation in a folder of this Linux system.
class OfflineMachine {
  public:
    /// The error is one line for people (UTF-8).
    static base::Result<std::unique_ptr<OfflineMachine>> open(const OfflineOptions& options);
    OfflineMachine(const OfflineMachine&) = delete;
    OfflineMachine& operator=(const OfflineMachine&) = delete;
    ~OfflineMachine() { (void)release(); }  // a failure drops the changes

    /// Marks the changes to a hive that is mounted still as complete, so that the next unload writes them,
    /// and lets go of it.
    WinCode release() { return registry_.release_mounts().code; }
    /// The end of a run: a run-time error can come between mount and unmount, and what was written till then
    /// is to be on the disk.
    void write_pending();

    const Installation& installation() const { return installation_; }
    const DriveMap& drives() const { return drives_; }
    const MountTable& mounts() const { return mounts_; }
    /// Without the internet: that is the entry's to add.
    Machine machine() { return {registry_, files_, processes_, system_, no_internet()}; }

  private:
    OfflineMachine(DriveMap drives, Installation installation, HostPlace software_hive, HostPlace user_hive,
                   std::string mounts, const OfflineOptions& options);

    DriveMap drives_;
    Installation installation_;
    MountTable mounts_;
    OfflineSystem system_;
    OfflineFiles files_;
    OfflineRegistry registry_;
    OfflineProcesses processes_;
};

}  // namespace machine
