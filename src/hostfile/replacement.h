#pragma once

#include <optional>

#include "hostfile/place.h"

namespace hostfile {

/// The attributes of Windows (read-only, hidden, system, archive and more) as a driver keeps them.
struct DosAttributes {
    enum class Driver { ntfs, fat };
    Driver driver;
    uint32_t bits;
    bool operator==(const DosAttributes&) const = default;
};
/// None where the file system keeps no such thing.
std::optional<DosAttributes> dos_attributes(int file);
/// False: errno tells why.
bool set_dos_attributes(int file, const DosAttributes& attributes);

/// Whether a power cut can bring the old file back: not where the folder was flushed as well.
enum class Durability { flushed, uncertain };

/// A file that is written beside another one and takes its place in one step; until then nothing is changed,
/// and nothing is left if it does not come to that. What a killed run left is removed by the next replacement
/// of the same file.
class Replacement {
  public:
    static Result<Replacement> begin(const HostPlace& place, mode_t mode);
    Replacement(Replacement&&) noexcept = default;
    Replacement& operator=(Replacement&&) = delete;
    ~Replacement();

    /// To be written to.
    int descriptor() const { return file_.number(); }
    /// Takes over from another file: owner, mode, and the extended attributes in which NTFS drivers show
    /// security, attributes and the time of creation (`system.ntfs_acl`, `user.*` and all others that can be
    /// read), or the attributes that FAT keeps. All that can be kept is; an error tells of the first that
    /// cannot.
    Result<Done> take_over(int old) const;
    /// Lets the disk begin, while the caller does something else with the file; flush() ends it.
    void begin_to_flush() const;
    Result<Done> flush() const;
    /// A new file in the place of one that is there: `refused`, where the file system can tell in one step.
    enum class Old { may_exist, must_be_new };
    /// `uncertain` too where the folder is not to be flushed.
    enum class Folder { is_flushed, is_left_to_the_system };
    Result<Durability> put_in_place(Old old, Folder folder = Folder::is_flushed);

  private:
    explicit Replacement(HostPlace place) : place_(std::move(place)) {}
    void remove_leftovers(const std::string& prefix) const;
    int rename(Old old) const;
    Result<Done> keep_owner(int old) const;
    Result<Done> keep_extended_attributes(int old) const;
    Result<Done> keep_dos_attributes(int old) const;

    HostPlace place_;  ///< of the file to be replaced
    std::string temporary_;
    Descriptor file_;  ///< open until it is in place
};

}  // namespace hostfile
