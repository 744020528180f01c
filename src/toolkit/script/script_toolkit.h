#pragma once

#include <deque>
#include <stdexcept>
#include <string>

#include "toolkit/headless/headless_toolkit.h"
#include "toolkit/script/recording_printer.h"

namespace toolkit {

/// The person who answers what the script did not foresee: the test fails.
class UnexpectedQuestion : public std::logic_error {
  public:
    using std::logic_error::logic_error;
};

/// A headless toolkit whose boxes, dialogs and input boxes are answered from a script. Tests press the
/// controls themselves; each event goes through deliver(), as on a real screen, by way of act().
class ScriptToolkit : public HeadlessToolkit {
  public:
    /// The next box must bear this title; it is answered so.
    void expect_box(std::string title, Answer answer = Answer::ok) {
        answers_.push_back({std::move(title), answer});
    }
    void expect_input(std::string answer) { inputs_.push_back(std::move(answer)); }
    void expect_file(std::string path) { files_.push_back(std::move(path)); }
    /// Answers that nobody asked for.
    size_t left_over() const { return answers_.size() + inputs_.size() + files_.size(); }

    bool has_printer = true;
    std::string printed;  ///< the last document, as RecordingPrinter tells it
    int printer_setups = 0;
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
    void process_events() override;

  protected:
    Answer show_box(const Box& box) override;
    std::string show_input_box(const std::string& title, const std::string& prompt) override;

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
