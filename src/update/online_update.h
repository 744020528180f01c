#pragma once

#include <cstdint>
#include <string>

#include "machine/machine.h"

/// Compares this program with the one that the maker offers, and fetches the newer one.
namespace britlock {

/// What the maker's host of a language names as the current version: the whole page, whatever stands there.
BasicResult<std::string, machine::WinCode> latest_version(machine::Internet& internet, int language);

/// Where the installer comes to lie: in the program's own folder.
std::string installer_path(machine::System& system);

/// The installer on its way into the program's folder. What is written stays there whatever becomes of the
/// rest; a longer one of an earlier time keeps its tail.
class InstallerDownload {
  public:
    /// Asks the German host, in every language. Where nobody answers, the first chunk says so.
    explicit InstallerDownload(const machine::Machine& machine);
    ~InstallerDownload() { machine_.internet.close(handle_); }
    InstallerDownload(const InstallerDownload&) = delete;
    InstallerDownload& operator=(const InstallerDownload&) = delete;

    /// The next bytes, into the file. RuntimeError where it cannot be written.
    struct Chunk {
        bool last = false;
        machine::WinCode error = machine::success;
    };
    Chunk fetch_chunk();

    int64_t total() const { return total_; }
    /// Of 1000 bytes; 0 up to the first thousand.
    int64_t kilobytes() const;

  private:
    machine::Machine machine_;
    std::string path_;
    uint32_t handle_;
    int64_t total_ = 0;
};

}  // namespace britlock
