#pragma once

#include <map>
#include <memory>
#include <optional>

#include "machine/offline/mount_table.h"
#include "machine/registry.h"

namespace machine {

/// The Windows code for a failure of the hive library.
WinCode win_code(base::ErrorKind kind);

/// A hive behind a part of the registry.
class HiveStore {
  public:
    virtual ~HiveStore() = default;

    struct View {
        WinCode code = success;
        const regf::Hive* hive = nullptr;  ///< null where the code tells why; good until the next call
    };
    virtual View read() = 0;
    /// success, or what opening a key for writing answers.
    virtual WinCode check_writing() = 0;
    /// Makes one change, so that it outlives this process. Nothing is written for what is already so.
    virtual WinCode apply(const regf::Change& change) = 0;
};

/// A hive file that is written back at each change, under a lock that lasts for the one commit; it is read
/// again when somebody else has changed it.
class FileHive : public HiveStore {
  public:
    enum class Missing { is_an_error, is_empty };
    FileHive(HostPlace place, Missing missing) : place_(std::move(place)), missing_(missing) {}

    View read() override;
    WinCode check_writing() override;
    WinCode apply(const regf::Change& change) override;

  private:
    View read_again(const hostfile::FileLock& lock);

    HostPlace place_;
    Missing missing_;
    std::optional<regf::HiveFile> held_;  ///< with no identity at all while the file is missing
};

/// A hive that the hive tool has mounted. Changes go to the mount's record; the tool writes them into the
/// file when it unloads the hive.
class MountHive : public HiveStore {
  public:
    MountHive(MountedHive hive, Descriptor record) : hive_(std::move(hive)), record_(std::move(record)) {}

    View read() override { return {success, &hive_.file.hive}; }
    WinCode check_writing() override { return success; }
    /// Once the record could not be written nothing is taken any more: a set of changes is whole or dropped.
    WinCode apply(const regf::Change& change) override;
    /// Marks the changes so far as complete.
    WinCode seal();
    HandedHive hand_over() { return hive_.hand_over(); }

  private:
    WinCode append(const std::string& frame);

    MountedHive hive_;
    Descriptor record_;
    bool unsealed_ = false;
    WinCode broken_ = success;
};

}  // namespace machine
