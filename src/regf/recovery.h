#pragma once

#include <vector>

#include "regf/hive.h"

namespace regf {

/// Is the base block sound, and was its last write finished?
bool is_clean(ByteView image);

/// Completes the unfinished writes of a dirty hive from its logs, as Windows does; the result is clean.
/// `dirty` where no log fits.
Result<Bytes> recover(ByteView image, const std::vector<Log>& logs);

/// The hash in the entries of the later log format (Marvin32 with the seed that Windows uses).
uint64_t log_entry_hash(ByteView bytes);

}  // namespace regf
