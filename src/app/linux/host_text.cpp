#include "app/linux/host_text.h"

#include <fcntl.h>

#include <cerrno>

machine::FileResult<std::string> read_host_file(const std::string& name) {
    // A pipe is none of ours, and must not hold us.
    const machine::Descriptor file(::open(name.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!file.is_open()) return machine::file_error(errno);
    return machine::read_all(file.number());
}
