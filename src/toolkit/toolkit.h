#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/product.h"
#include "base/runtime_error.h"
#include "base/twin.h"
#include "toolkit/controls.h"
#include "toolkit/form.h"
#include "toolkit/printer.h"

namespace toolkit {

enum class Icon { none, critical, question, exclamation, information };
enum class Buttons { ok, yes_no, abort_retry_ignore };
enum class Answer { ok = 1, abort = 3, retry = 4, ignore = 5, yes = 6, no = 7 };

/// How a process ends: as it was meant to, or by a run-time error.
enum class Ending { done, failed };

struct Box {
    std::string text = {};
    std::string title = {};  ///< empty: the product's name
    Icon icon = Icon::none;
    Buttons buttons = Buttons::ok;
    Answer default_answer = Answer::ok;  ///< of a box with several buttons
};

/// A file dialog. The program asks about overwriting, the dialog does not.
struct FileDialog {
    enum class Action { open, save };
    Action action = Action::open;
    std::string title = {};
    std::string filter = {};        ///< pairs of description and pattern, parted by bars
    std::string start_folder = {};  ///< a Windows path; empty: the current one
};

/// What the form engine does. Implemented by each renderer and by the script that drives the tests.
class Toolkit {
  public:
    static constexpr const char* product_title = product::title;

    /// The language is that of the box in which a run-time error ends.
    explicit Toolkit(Language language = english) : language_(language) {}
    virtual ~Toolkit() = default;

    /// Modal. The text and the title are cut at their first NUL, a lone carriage return breaks the line.
    /// Yes/No boxes cannot be left by Esc.
    Answer message_box(Box box);
    /// "" where the person cancels.
    std::string input_box(std::string_view title, std::string_view prompt);
    /// The chosen file as a Windows path of the machine being worked on; "" where the person cancels.
    virtual std::string ask_file(const FileDialog& dialog) = 0;
    /// Begins a document for the printer chosen in this run, else the default one. RuntimeError 482 where
    /// there is none.
    virtual std::unique_ptr<Printer> open_printer() = 0;
    /// Lets the person choose the printer.
    virtual void set_up_printer() = 0;
    virtual void beep() = 0;
    /// Lets waiting events run: handlers may be called meanwhile.
    virtual void process_events() = 0;
    /// Can this picture file be shown? Decoding is bounded in size.
    virtual bool can_show_picture(std::string_view bytes) = 0;

    /// Stops the process at once: no further event, nothing saved. The editions never return from here; in
    /// tests it throws.
    [[noreturn]] virtual void end_process(Ending ending = Ending::done) = 0;

    /// Shows a form, or brings it up; not modal.
    void show(Form& form);
    void hide(Form& form);
    /// Takes a form away. The object dies through `release` when the running event has ended; without a form
    /// on show the process ends then.
    void unload(Form& form, std::function<void()> release);

    /// Moves the focus as a person or the program does: LostFocus of the old control, then GotFocus of the
    /// new one.
    void set_focus(Control* control);
    Control* focus() const { return focus_; }

    /// The edge: runs an event of the outside world. A run-time error in it shows its box and ends the
    /// process. Renderers pass every event through here; events nest while a box is open or process_events()
    /// runs.
    void deliver(const std::function<void()>& event);
    /// An event is being delivered: what a person does now comes while the program waits for something.
    bool busy() const { return depth_ > 0; }

    const std::vector<Form*>& forms() const { return forms_; }

  protected:
    virtual Answer show_box(const Box& box) = 0;
    virtual std::string show_input_box(const std::string& title, const std::string& prompt) = 0;
    /// The renderer makes, shows and destroys its window; an unloaded one is destroyed just before its form.
    virtual void show_window(Form& form) = 0;
    virtual void hide_window(Form& form) = 0;
    virtual void destroy_window(Form& form) = 0;
    /// The program moved the focus: show it.
    virtual void show_focus(Control* control) = 0;
    /// Runs the call when nothing of the screen that led to the event is at work any more.
    virtual void when_idle(const std::function<void()>& call) { call(); }

  private:
    friend class Form;
    void forget(const Form* form);
    void release_unloaded();

    const Language language_;
    std::vector<Form*> forms_;  // on show, in the order of their showing
    struct Unloaded {
        Form& form;
        std::function<void()> release;
    };
    std::vector<Unloaded> unloaded_;
    Control* focus_ = nullptr;
    const Form* focus_form_ = nullptr;  // of focus_, which may be gone when its form goes
    int depth_ = 0;
};

}  // namespace toolkit
