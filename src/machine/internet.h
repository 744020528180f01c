#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "base/result.h"
#include "machine/codes.h"

namespace machine {

constexpr WinCode invalid_handle = 6;
constexpr WinCode internet_timeout = 12002;
constexpr WinCode internet_failed = 12004;
constexpr WinCode internet_no_such_host = 12007;
constexpr WinCode internet_cannot_connect = 12029;
constexpr WinCode internet_connection_lost = 12030;
constexpr WinCode internet_no_such_page = 12150;

/// What went wrong, in one sentence.
const char* internet_error_text(WinCode error, int language);

/// The internet, as far as an update needs it: plain HTTP, one thing at a time. Calls block, with a time
/// limit, and let no event of a person through.
class Internet {
  public:
    virtual ~Internet() = default;

    /// The body of a page, whole. An answer that is no page is an error.
    virtual BasicResult<std::string, WinCode> fetch(std::string_view url) = 0;

    /// Asks for a file, past every cache, and waits for the answer to begin; whatever it is, its body can be
    /// read. 0 where nobody answers.
    virtual uint32_t open(std::string_view url, std::string_view agent) = 0;
    struct Chunk {
        WinCode error = success;
        std::string bytes;
    };
    /// Waits for the next bytes and gives `most` of them at most; none and no error: that was all.
    /// invalid_handle for handle 0.
    virtual Chunk read(uint32_t handle, size_t most) = 0;
    /// Gives up what has not been read. Handle 0: nothing.
    virtual void close(uint32_t handle) = 0;
};

/// Nobody ever answers: for a machine that has no other.
Internet& no_internet();

}  // namespace machine
