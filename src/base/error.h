#pragma once

#include <string>

#include "base/result.h"

namespace base {

/// Kinds by what a caller will do about them; what happened, and where in the file, stands in the message.
enum class ErrorKind {
    missing,      ///< no such file, key or value
    refused,      ///< no permission, a read-only disk, a key that may not be deleted
    in_use,       ///< another program holds the file
    no_space,     ///< the disk is full
    io,           ///< any other answer of the system
    not_a_hive,   ///< something else altogether
    damaged,      ///< a hive whose structure breaks a rule; message with the offset
    dirty,        ///< unfinished writes that no log can complete
    unsupported,  ///< a version or a state that is not edited here
    changed,      ///< the file is no longer the one that was read
    invalid,      ///< the request itself: a name too long, a backslash in a key's name
};

/// The message is English, UTF-8, one line, without a closing full stop.
struct Error {
    ErrorKind kind;
    std::string message;
};

template <class T>
using Result = BasicResult<T, Error>;

}  // namespace base
