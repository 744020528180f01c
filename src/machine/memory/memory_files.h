#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>

#include "machine/files.h"
#include "machine/memory/memory_registry.h"
#include "machine/system.h"
#include "machine/windows_path.h"

namespace machine {

/// Files and folders that live in memory, with failures on demand.
class MemoryFiles : public Files {
  public:
    /// `system` tells the folders that are protected; a hive that `registry` has mounted is in use.
    MemoryFiles(System& system, const MemoryRegistry& registry) : system_(system), registry_(registry) {}

    // Setting the scene; missing folders on the way are made.
    void add_folder(std::string_view path, uint32_t attributes = attribute_normal);
    void add_file(std::string_view path, std::string_view bytes, uint32_t attributes = attribute_normal);
    /// A user's hive: a file that the hive tool can mount.
    MemoryKey& add_hive(std::string_view path);
    /// The hive in a file; null where that file is none.
    std::shared_ptr<MemoryKey> hive(std::string_view path) const;
    bool exists(std::string_view path) const;

    /// Every later access to this path answers `error`; no_error ends it. permission_denied: held by another
    /// program.
    void fail(std::string_view path, FileError error);

    Measured open_binary(std::string_view path) override;
    FileError read(std::string_view path, std::string& bytes) override;
    FileError write(std::string_view path, std::string_view bytes) override;
    FileError write_at(std::string_view path, int64_t offset, std::string_view bytes) override;
    FileError remove(std::string_view path) override;
    uint32_t attributes(std::string_view path) override;
    FileError set_attributes(std::string_view path, uint32_t attributes) override;
    std::optional<std::vector<FoundFile>> find(std::string_view pattern) override;
    FileError delete_folder(std::string_view path) override;
    FileError copy_folder(std::string_view path, std::string_view target) override;
    std::string read_profile(std::string_view section, std::string_view key, std::string_view file) override;
    bool write_profile(std::string_view section, std::string_view key, std::optional<std::string_view> value,
                       std::string_view file) override;

  private:
    struct Entry {
        uint32_t attributes = attribute_normal;
        std::string bytes;
        std::shared_ptr<MemoryKey> hive;
        bool is_folder() const { return (attributes & attribute_directory) != 0; }
    };
    /// A place that was asked for. No entry: nothing is there, but the folder around it exists.
    struct Found {
        FileError error = no_error;
        std::string path;
        Entry* entry = nullptr;
    };
    Found look(std::string_view path);
    /// The same for a file's content: folders and files in use are refused.
    Found look_for_file(std::string_view path);

    System& system_;
    const MemoryRegistry& registry_;
    std::map<std::string, Entry, NameLess> entries_;  ///< by full path; a drive's root is "C:\"
    std::map<std::string, FileError, NameLess> faults_;
};

}  // namespace machine
