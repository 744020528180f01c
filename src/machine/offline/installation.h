#pragma once

#include <string>

#include "machine/offline/drive_map.h"
#include "machine/registry.h"
#include "machine/system.h"

namespace machine {

/// What is known of a Windows installation before it is worked on.
struct Installation {
    std::string family;  ///< "Windows NT 4", "Windows 2000", "Windows XP"
    Version version;
    std::string windows_directory;  ///< C:\WINDOWS
    std::string system_directory;
    std::string profiles_directory;
};

/// The system on drive C sleeps, and will write over what is changed meanwhile.
bool hibernates(const DriveMap& drives);

/// Looks at what lies on drive C of the map. The error tells in one line why that folder is not served: no
/// Windows there, one whose users' settings lie elsewhere (Windows 95, 98, ME, or newer than XP), hibernated,
/// or a software hive that cannot be read.
base::Result<Installation> describe_installation(const DriveMap& drives);

/// The drive letters that the installation has given to its own disks. Bit 0 is A.
uint32_t mounted_letters(const DriveMap& drives, const Installation& installation);

}  // namespace machine
