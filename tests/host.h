#pragma once

#include <fcntl.h>
#include <sys/file.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <stdexcept>
#include <string>

namespace fs = std::filesystem;

/// A folder of its own for each test, gone afterwards.
class TemporaryFolder {
  public:
    TemporaryFolder() {
        std::string name = (fs::temp_directory_path() / "brightlock-XXXXXX").string();
        if (!mkdtemp(name.data())) std::abort();
        path_ = name;
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() {
        std::error_code ignored;
        fs::remove_all(path_, ignored);
    }
    const fs::path& path() const { return path_; }
    fs::path operator/(const std::string& name) const { return path_ / name; }

  private:
    fs::path path_;
};

/// What a call gives. Where it gives nothing the test ends, with the reason.
template <class Result>
auto must(Result result) {
    if (!result) throw std::runtime_error(result.error().message);
    return std::move(*result);
}

/// Empty where there is no such file.
template <class Bytes = std::string>
Bytes bytes_of(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

inline void write_bytes(const fs::path& file, std::string_view bytes) {
    std::ofstream(file, std::ios::binary) << bytes;
}

/// How a process ends that does this, as waitpid() tells it.
inline int end_of_process(const std::function<int()>& work) {
    const pid_t child = fork();
    if (child == 0) _exit(work());
    int status = -1;
    (void)waitpid(child, &status, 0);
    return status;
}

struct Ran {
    int code;
    std::string output;
};
/// What a shell does with a command: its exit code, and all that it says.
inline Ran run_in_shell(const std::string& command) {
    FILE* const pipe = popen(("{ " + command + "; } 2>&1").c_str(), "r");
    std::string output;
    for (int c = 0; (c = std::fgetc(pipe)) != EOF;)
        output += static_cast<char>(c);
    return {WEXITSTATUS(pclose(pipe)), output};
}
