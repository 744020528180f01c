#include "machine/windows/windows_internet.h"

#include <windows.h>

#include <wininet.h>

#include "machine/windows/late_call.h"

namespace machine {

namespace {

/// A page of the maker is a line of text; what grows beyond this is none.
constexpr size_t longest_page = 1 << 16;
constexpr DWORD patience_milliseconds = 30000;

/// Windows 95 has them only with Internet Explorer, and the program is to start without.
template <class Function>
LateCall<Function*> late(const char* name) {
    return {"wininet.dll", name};
}

struct Calls {
    LateCall<decltype(&InternetOpenA)> open_session = late<decltype(InternetOpenA)>("InternetOpenA");
    LateCall<decltype(&InternetSetOptionA)> set_option =
        late<decltype(InternetSetOptionA)>("InternetSetOptionA");
    LateCall<decltype(&InternetOpenUrlA)> open_url = late<decltype(InternetOpenUrlA)>("InternetOpenUrlA");
    LateCall<decltype(&HttpQueryInfoA)> query = late<decltype(HttpQueryInfoA)>("HttpQueryInfoA");
    LateCall<decltype(&InternetReadFile)> read = late<decltype(InternetReadFile)>("InternetReadFile");
    LateCall<decltype(&InternetCloseHandle)> close =
        late<decltype(InternetCloseHandle)>("InternetCloseHandle");
    bool there() const { return open_session && set_option && open_url && query && read && close; }
};

const Calls& calls() {
    static const Calls found;
    return found;
}

void* open_session(std::string_view agent) {
    void* session = (*calls().open_session)(std::string(agent).c_str(), INTERNET_OPEN_TYPE_PRECONFIG, nullptr,
                                            nullptr, 0);
    DWORD patience = patience_milliseconds;
    for (const DWORD option : {INTERNET_OPTION_CONNECT_TIMEOUT, INTERNET_OPTION_RECEIVE_TIMEOUT})
        (void)(*calls().set_option)(session, option, &patience, sizeof patience);  // else Windows' own holds
    return session;
}

bool is_page(void* body) {
    DWORD status = 0;
    DWORD size = sizeof status;
    const bool told = (*calls().query)(body, HTTP_QUERY_STATUS_CODE | HTTP_QUERY_FLAG_NUMBER, &status, &size,
                                       nullptr) != FALSE;
    return told && status >= 200 && status < 300;
}

}  // namespace

WindowsInternet::~WindowsInternet() {
    while (!answers_.empty())
        close(answers_.begin()->first);
}

BasicResult<std::string, WinCode> WindowsInternet::fetch(std::string_view url) {
    const uint32_t handle = open(url, "");
    if (handle == 0) return calls().there() ? static_cast<WinCode>(GetLastError()) : internet_cannot_connect;
    const bool page = is_page(answers_[handle].body);
    std::string text;
    Chunk chunk;
    do {
        chunk = read(handle, longest_page);
        text += chunk.bytes;
    } while (!chunk.bytes.empty() && text.size() <= longest_page);
    close(handle);
    if (!page) return internet_no_such_page;
    if (chunk.error != success) return chunk.error;
    if (text.size() > longest_page) return internet_failed;
    return text;
}

uint32_t WindowsInternet::open(std::string_view url, std::string_view agent) {
    if (!calls().there()) return 0;
    Answer answer;
    answer.session = open_session(agent);
    answer.body =
        (*calls().open_url)(answer.session, std::string(url).c_str(), nullptr, 0, INTERNET_FLAG_RELOAD, 0);
    if (!answer.body) {
        const DWORD error = GetLastError();
        (void)(*calls().close)(answer.session);
        SetLastError(error);
        return 0;
    }
    answers_[++last_handle_] = answer;
    return last_handle_;
}

Internet::Chunk WindowsInternet::read(uint32_t handle, size_t most) {
    const auto answer = answers_.find(handle);
    if (answer == answers_.end()) return {invalid_handle, ""};
    std::string bytes(most, '\0');
    DWORD size = 0;
    if (!(*calls().read)(answer->second.body, bytes.data(), static_cast<DWORD>(most), &size))
        return {static_cast<WinCode>(GetLastError()), ""};
    bytes.resize(size);
    return {success, std::move(bytes)};
}

void WindowsInternet::close(uint32_t handle) {
    const auto answer = answers_.find(handle);
    if (answer == answers_.end()) return;
    (void)(*calls().close)(answer->second.body);
    (void)(*calls().close)(answer->second.session);
    answers_.erase(answer);
}

}  // namespace machine
