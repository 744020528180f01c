#pragma once

#include <functional>
#include <memory>
#include <string>

#include "base/twin.h"
#include "toolkit/toolkit.h"

namespace toolkit {

/// The toolkit on the windows of Windows 95 and later. One per process.
class Win32Toolkit : public Toolkit {
  public:
    /// `before_end` runs just before the process stops, and gives its exit code.
    Win32Toolkit(Language language, std::function<int(Ending)> before_end);
    ~Win32Toolkit() override;

    /// Delivers the first event, which shows the first form, and then what the person does. Does not return:
    /// the process ends in it.
    void run(const Event& first);

    std::string ask_file(const FileDialog& dialog) override;
    std::unique_ptr<Printer> open_printer() override;
    void set_up_printer() override;
    void beep() override;
    void process_events() override;
    bool can_show_picture(std::string_view bytes) override;
    [[noreturn]] void end_process(Ending ending = Ending::done) override;

  protected:
    Answer show_box(const Box& box) override;
    std::string show_input_box(const std::string& title, const std::string& prompt) override;
    void show_window(Form& form) override;
    void hide_window(Form& form) override;
    void destroy_window(Form& form) override;
    void show_focus(Control* control) override;
    void when_idle(const Event& call) override;

  private:
    struct Private;
    std::unique_ptr<Private> d_;
};

}  // namespace toolkit
