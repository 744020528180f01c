#pragma once

#include "machine/files.h"
#include "machine/offline/host_file.h"

namespace machine {

/// Windows' attributes of a file: those kept by the NTFS or FAT file system it lies on, else read-only by its
/// mode. no_attributes for what is not there and for what is neither file nor folder nor link.
uint32_t attributes_of(const HostPlace& place);

/// Read-only, hidden, system, archive; what the file system cannot keep is passed over.
FileError set_attributes_of(const HostPlace& place, uint32_t attributes);

/// May this process put another file in the place of this one?
bool may_replace(const HostPlace& place);

}  // namespace machine
