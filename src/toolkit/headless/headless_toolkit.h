#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "toolkit/printer.h"
#include "toolkit/toolkit.h"

namespace toolkit {

/// A toolkit without a screen, for runs that nobody watches. What would be shown is recorded, what would be
/// asked is answered by default: a box by its default button, an input box and a file dialog by Cancel. The
/// end of the process is an outcome of act().
class HeadlessToolkit : public Toolkit {
  public:
    /// Delivers one event: what a person would do. False where the process ended on the way; nothing more can
    /// be done then.
    template <class Act>
    bool act(Act&& what) {
        if (ended) throw std::logic_error("the process has ended");
        try {
            deliver(what);
        } catch (const End& end) {
            ended = true;
            ending = end.ending;
        }
        return !ended;
    }

    std::vector<Box> boxes;                ///< as they came
    std::vector<FileDialog> file_dialogs;  ///< likewise
    std::vector<std::string> prompts;      ///< of the input boxes
    int beeps = 0;
    bool ended = false;
    Ending ending = Ending::done;  ///< once it has ended

    std::string ask_file(const FileDialog& dialog) override;
    /// There is none.
    std::unique_ptr<Printer> open_printer() override { throw RuntimeError(482); }
    void set_up_printer() override {}
    void beep() override { ++beeps; }
    void process_events() override {}
    /// Knows bitmaps by their first letters.
    bool can_show_picture(std::string_view bytes) override { return bytes.starts_with("BM"); }
    [[noreturn]] void end_process(Ending how = Ending::done) override { throw End{how}; }

  protected:
    Answer show_box(const Box& box) override;
    std::string show_input_box(const std::string& title, const std::string& prompt) override;
    void show_window(Form&) override {}
    void hide_window(Form&) override {}
    void destroy_window(Form&) override {}
    void show_focus(Control*) override {}

  private:
    struct End {
        Ending ending;
    };
};

}  // namespace toolkit
