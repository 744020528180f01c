#include "machine/internet.h"

#include <algorithm>
#include <iterator>

namespace machine {

namespace {

struct Known {
    WinCode error;
    const char* text;
};

constexpr Known known_errors[] = {
    {invalid_handle, "No connection is open"},
    {internet_timeout, "The request timed out"},
    {internet_no_such_host, "The name of the remote host could not be resolved"},
    {internet_cannot_connect, "Unable to connect to the remote host"},
    {internet_connection_lost, "The connection to the remote host was lost"},
    {internet_no_such_page, "The remote host has no such page"},
};

class NoInternet : public Internet {
  public:
    BasicResult<std::string, WinCode> fetch(std::string_view) override { return internet_cannot_connect; }
    uint32_t open(std::string_view, std::string_view) override { return 0; }
    Chunk read(uint32_t, size_t) override { return {invalid_handle, ""}; }
    void close(uint32_t) override {}
};

}  // namespace

const char* internet_error_text(WinCode error) {
    const auto* at = std::find_if(std::begin(known_errors), std::end(known_errors),
                                  [&](const Known& known) { return known.error == error; });
    return at == std::end(known_errors) ? "The transfer failed" : at->text;
}

Internet& no_internet() {
    static NoInternet none;
    return none;
}

}  // namespace machine
