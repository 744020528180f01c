#include "machine/internet.h"

#include <algorithm>
#include <iterator>

#include "base/text.h"
#include "base/twin.h"

namespace machine {

using namespace text::literals;

namespace {

struct Known {
    WinCode error;
    Twin text;
};

constexpr Known known_errors[] = {
    {invalid_handle, {"Es ist keine Verbindung offen", "No connection is open"}},
    {internet_timeout, {"Die Gegenstelle antwortet nicht", "The request timed out"}},
    {internet_no_such_host,
     {"Der Name der Gegenstelle ist nicht bekannt", "The name of the remote host could not be resolved"}},
    {internet_cannot_connect,
     {U"Zur Gegenstelle ist keine Verbindung möglich"_ansi, "Unable to connect to the remote host"}},
    {internet_connection_lost,
     {"Die Verbindung zur Gegenstelle ist abgebrochen", "The connection to the remote host was lost"}},
    {internet_no_such_page, {"Die Gegenstelle hat keine solche Seite", "The remote host has no such page"}},
};

constexpr Twin transfer_failed{U"Die Übertragung ist fehlgeschlagen"_ansi, "The transfer failed"};

class NoInternet : public Internet {
  public:
    BasicResult<std::string, WinCode> fetch(std::string_view) override { return internet_cannot_connect; }
    uint32_t open(std::string_view, std::string_view) override { return 0; }
    Chunk read(uint32_t, size_t) override { return {invalid_handle, {"Es ist keine Verbindung offen", ""}}; }
    void close(uint32_t) override {}
};

}  // namespace

const char* internet_error_text(WinCode error, int language) {
    const auto* at = std::find_if(std::begin(known_errors), std::end(known_errors),
                                  [&](const Known& known) { return known.error == error; });
    return pick(at == std::end(known_errors) ? transfer_failed : at->text, language);
}

Internet& no_internet() {
    static NoInternet none;
    return none;
}

}  // namespace machine
