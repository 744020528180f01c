#include "update/online_update.h"

#include <cmath>

#include "base/product.h"
#include "base/runtime_error.h"
#include "base/twin.h"

namespace britlock {

namespace {

constexpr size_t chunk_size = 200;
constexpr const char* agent = "BL OpenUrl";
constexpr const char* version_page = "/update/brit.txt";
constexpr const char* installer_page = "/update/brlckup.exe";

std::string address(const char* host, const char* page) { return std::string("http://") + host + page; }

}  // namespace

BasicResult<std::string, machine::WinCode> latest_version(machine::Internet& internet, int language) {
    const char* const host = language == german ? product::german_update_host : product::update_host;
    return internet.fetch(address(host, version_page));
}

std::string installer_path(machine::System& system) { return system.program_directory() + "\\brlckup.exe"; }

InstallerDownload::InstallerDownload(const machine::Machine& machine)
    : machine_(machine),
      path_(installer_path(machine.system)),
      handle_(machine_.internet.open(address(product::german_update_host, installer_page), agent)) {}

InstallerDownload::Chunk InstallerDownload::fetch_chunk() {
    const auto got = machine_.internet.read(handle_, chunk_size);
    if (const auto error = machine_.files.write_at(path_, total_, got.bytes)) throw RuntimeError(error);
    total_ += static_cast<int64_t>(got.bytes.size());
    return {got.bytes.empty(), got.error};
}

int64_t InstallerDownload::kilobytes() const {
    return total_ > 1000 ? std::llrint(static_cast<double>(total_) / 1000) : 0;
}

}  // namespace britlock
