#pragma once

#include <memory>
#include <string>

#include "toolkit/toolkit.h"
#include "toolkit/words.h"

namespace toolkit {

/// The toolkit on every screen that Qt 6 knows; "offscreen" is one of them. One per process.
class QtToolkit : public Toolkit {
  public:
    /// `argc` and `argv` are those of the process: Qt takes its own options out and keeps hold of the rest.
    /// `folders` are the drives of the machine being worked on. `before_end` runs just before the process
    /// stops, and gives its exit code.
    QtToolkit(int& argc, char** argv, FolderSource& folders, Language language,
              std::function<int(Ending)> before_end);
    ~QtToolkit() override;

    /// Why no window can be shown here, in one line; empty: it can. To be asked before one is made, since Qt
    /// aborts where it finds no display. `unseen`: windows that nobody sees will do where there is none.
    static std::string screen_trouble(bool unseen);

    /// Delivers the first event, which shows the first form, and then what the person does. Does not return:
    /// the process ends in it.
    void run(const Event& first);

    /// The icon of what bears none of its own: boxes before the first window.
    void set_icon(const Drawing& icon);
    /// Lines below every window, in UTF-8: what the edition tells of itself. No form knows of them.
    void set_strip(std::vector<std::string> lines);

    /// The window of a form on show, menu bar included, as a PNG file. False where it cannot be written.
    bool save_screenshot(const Form& form, const std::string& file) const;

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
