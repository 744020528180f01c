#pragma once

#include <deque>
#include <stdexcept>
#include <string>
#include <vector>

#include "toolkit/script/recording_printer.h"
#include "toolkit/toolkit.h"

namespace toolkit {

/// The end of the process in a test.
struct EndOfProcess {};

/// The person who answers what the script did not foresee: the test fails.
class UnexpectedQuestion : public std::logic_error {
  public:
    using std::logic_error::logic_error;
};

/// A toolkit without a screen. Tests press the controls themselves; boxes, dialogs and input boxes are
/// answered from a script and recorded. Each event goes through deliver(), as on a real screen, by way of
/// act().
class ScriptToolkit : public Toolkit {
  public:
    /// Runs what a person does. False where the process ended on the way.
    template <class Act>
    bool act(Act&& what) {
        if (ended) throw std::logic_error("the process has ended");
        try {
            deliver(what);
        } catch (const EndOfProcess&) {
            ended = true;
        }
        return !ended;
    }

    /// The next box must bear this title; it is answered so.
    void expect_box(std::string title, Answer answer = Answer::ok) {
        answers_.push_back({std::move(title), answer});
    }
    void expect_input(std::string answer) { inputs_.push_back(std::move(answer)); }
    void expect_file(std::string path) { files_.push_back(std::move(path)); }
    /// Answers that nobody asked for.
    size_t left_over() const { return answers_.size() + inputs_.size() + files_.size(); }

    std::vector<Box> boxes;                ///< as they came
    std::vector<FileDialog> file_dialogs;  ///< likewise
    std::vector<std::string> prompts;      ///< of the input boxes
    bool has_printer = true;
    std::string printed;  ///< the last document, as RecordingPrinter tells it
    int printer_setups = 0;
    int beeps = 0;
    bool ended = false;
    /// Run by each process_events(): what a person does while the program waits.
    std::function<void()> meanwhile;
    /// Run while a box is open.
    std::function<void(const Box&)> while_box;

    std::string ask_file(const FileDialog& dialog) override;
    std::unique_ptr<Printer> open_printer() override {
        if (!has_printer) throw RuntimeError(482);
        return std::make_unique<RecordingPrinter>(printed);
    }
    void set_up_printer() override { ++printer_setups; }
    void beep() override { ++beeps; }
    void process_events() override;
    /// Knows bitmaps by their first letters.
    bool can_show_picture(std::string_view bytes) override { return bytes.starts_with("BM"); }
    [[noreturn]] void end_process() override { throw EndOfProcess{}; }

  protected:
    Answer show_box(const Box& box) override;
    std::string show_input_box(const std::string& title, const std::string& prompt) override;
    void show_window(Form&) override {}
    void hide_window(Form&) override {}
    void destroy_window(Form&) override {}
    void show_focus(Control*) override {}

  private:
    struct Foreseen {
        std::string title;
        Answer answer;
    };
    std::deque<Foreseen> answers_;
    std::deque<std::string> inputs_;
    std::deque<std::string> files_;
};

}  // namespace toolkit
