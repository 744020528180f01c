#include "app/linux/password_line.h"

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include <iostream>

#include "hostfile/place.h"

namespace {

/// The terminal shows nothing of what is typed while this lives.
class Silence {
  public:
    explicit Silence(int terminal) : terminal_(terminal) {
        is_silent_ = tcgetattr(terminal_, &before_) == 0;
        termios silent = before_;
        silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        is_silent_ = is_silent_ && tcsetattr(terminal_, TCSAFLUSH, &silent) == 0;
    }
    Silence(const Silence&) = delete;
    Silence& operator=(const Silence&) = delete;
    ~Silence() {
        if (is_silent_) (void)tcsetattr(terminal_, TCSAFLUSH, &before_);
    }
    bool is_silent() const { return is_silent_; }

  private:
    int terminal_;
    termios before_{};
    bool is_silent_ = false;
};

}  // namespace

std::optional<std::string> read_line(int descriptor) {
    constexpr size_t longest = 1024;
    std::string line;
    // Byte by byte: what follows the line belongs to somebody else.
    for (char c = '\0'; line.size() < longest;) {
        const ssize_t size = hostfile::attempt("read", [&] { return read(descriptor, &c, 1); });
        if (size < 0) return std::nullopt;
        if (size == 0 || c == '\n') break;
        line.push_back(c);
    }
    if (line.ends_with('\r')) line.pop_back();
    return line;
}

std::optional<std::string> ask_on_terminal(const std::string& prompt) {
    const hostfile::Descriptor terminal(open("/dev/tty", O_RDWR | O_CLOEXEC));
    if (!terminal.is_open()) return std::nullopt;
    std::optional<std::string> line;
    const auto say = [&](const std::string& text) {
        return write(terminal.number(), text.data(), text.size()) == static_cast<ssize_t>(text.size());
    };
    const Silence silence(terminal.number());
    if (silence.is_silent() && say(prompt + " ")) line = read_line(terminal.number());
    (void)say("\n");  // the one that was typed is not shown either
    return line;
}
