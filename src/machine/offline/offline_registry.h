#pragma once

#include <map>
#include <memory>
#include <string>

#include "machine/offline/drive_map.h"
#include "machine/offline/hive_store.h"
#include "machine/offline/mount_table.h"
#include "machine/offline/spelling.h"
#include "machine/registry.h"

namespace machine {

/// The registry of an installation on disk: HKEY_LOCAL_MACHINE\Software is its software hive, HKEY_USERS what
/// the hive tool has mounted, HKEY_CURRENT_USER a hive of the person at this machine.
///
/// Keys and values whose names the code page cannot spell stay as they are; nobody can address them here.
class OfflineRegistry : public Registry {
  public:
    OfflineRegistry(const DriveMap& drives, const MountTable& mounts, HostPlace software_hive,
                    HostPlace user_hive);

    Outcome query(Root root, std::string_view subkey, std::string_view name, RawValue& out) override;
    Outcome set(Root root, std::string_view subkey, std::string_view name, const RawValue& value) override;
    Outcome delete_value(Root root, std::string_view subkey, std::string_view name) override;
    Disposition create_key(Root root, std::string_view subkey) override;
    WinCode delete_key(Root root, std::string_view subkey) override;
    WinCode enum_key(Root root, std::string_view subkey, uint32_t index, std::string& name) override;

    /// Takes hold of a mounted hive, so that no other instance can unmount it. False where one has.
    bool hold(std::string_view name, std::optional<HandedHive> handed);
    /// Lets go of every mounted hive, its changes sealed: the hive tool may have it next, and takes over the
    /// one that it is to unload. Not success where a hive's last changes are lost.
    struct Released {
        WinCode code = success;
        std::optional<HandedHive> hive;
        std::unique_ptr<HiveStore> remains;  ///< of that hive: cleared away while the tool works
    };
    Released release_mounts(std::string_view to_unload = "");
    /// Names of the mounted hives that are held at present.
    std::vector<std::string> open_mounts() const;

  private:
    /// Where a subkey lies. No store and success: at one of the roots, which hold keys only.
    struct Location {
        WinCode code = success;
        HiveStore* store = nullptr;
        std::u16string path;  ///< in the hive
        bool at_top = false;  ///< the root key of the hive
        std::string key;      ///< one name for one key, whatever its spelling
    };
    Location locate(Root root, std::string_view subkey);
    /// The key at a location, once the hive has been read.
    struct Opened {
        WinCode code = success;
        const regf::Hive* hive = nullptr;
        std::optional<regf::Key> key;
    };
    static Opened open(const Location& location);
    static WinCode open_for_writing(const Location& location);
    /// Before the first value of a key is read or changed.
    void remember_spelling(const Location& location);
    HiveStore* mounted(std::string_view name, WinCode& code, std::optional<HandedHive> handed = std::nullopt);
    std::vector<std::string> subkey_names(Root root, std::string_view subkey);

    const DriveMap& drives_;
    const MountTable& mounts_;
    FileHive software_;
    FileHive user_;
    std::map<std::string, std::unique_ptr<MountHive>> open_mounts_;  ///< by lower-cased name
    Spelling spelling_;
};

}  // namespace machine
