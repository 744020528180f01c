#include "toolkit/qt/qt_toolkit.h"

#include <QApplication>
#include <QScreen>
#include <QThread>
#include <QTimer>
#include <cstdlib>
#include <optional>

#include "toolkit/qt/boxes.h"
#include "toolkit/qt/conversion.h"
#include "toolkit/qt/file_dialog.h"
#include "toolkit/qt/look.h"
#include "toolkit/qt/peer.h"
#include "toolkit/qt/picture.h"
#include "toolkit/qt/printer.h"
#include "toolkit/qt/window.h"

namespace toolkit {

namespace {

qt::Window* window_of(const Form& form) { return static_cast<qt::Window*>(form.peer); }

/// What a question lies over: a window of ours also while another program is active.
QWidget* in_front(const Toolkit& toolkit) {
    QWidget* active = QApplication::activeWindow();
    return active || toolkit.forms().empty() ? active : window_of(*toolkit.forms().back());
}

}  // namespace

struct QtToolkit::Private {
    QApplication app;
    FolderSource& folders;
    Event before_end;
    std::optional<qt::PrinterChoice> printer;  // chosen in this run
    std::string last_folder;                   // where the person last chose a file
    QTimer idle;                               // goes off when control is back in the event loop

    Private(int& argc, char** argv, FolderSource& source, Event at_end)
        : app((qt::prepare_look(), argc), argv), folders(source), before_end(std::move(at_end)) {
        qt::apply_look(app);
        idle.setSingleShot(true);
        QApplication::setQuitOnLastWindowClosed(false);  // the program ends itself
    }
};

QtToolkit::QtToolkit(int& argc, char** argv, FolderSource& folders, Event before_end)
    : d_(std::make_unique<Private>(argc, argv, folders, std::move(before_end))) {}

QtToolkit::~QtToolkit() = default;

void QtToolkit::run(const Event& first) {
    deliver(first);
    if (!forms().empty()) QApplication::exec();
    end_process();
}

void QtToolkit::end_process() {
    if (d_->before_end) d_->before_end();
    std::_Exit(EXIT_SUCCESS);
}

bool QtToolkit::save_screenshot(const Form& form, const std::string& file) const {
    return form.peer && window_of(form)->grab().save(QString::fromStdString(file), "PNG");
}

// --- questions

Answer QtToolkit::show_box(const Box& box) { return qt::ask(box, in_front(*this)); }

std::string QtToolkit::show_input_box(const std::string& title, const std::string& prompt) {
    return qt::ask_line(title, prompt, in_front(*this));
}

std::string QtToolkit::ask_file(const FileDialog& dialog) {
    return qt::ask_file(dialog, d_->folders, d_->last_folder, in_front(*this));
}

std::unique_ptr<Printer> QtToolkit::open_printer() {
    return qt::open_printer(d_->printer ? *d_->printer : qt::PrinterChoice::usual());
}

void QtToolkit::set_up_printer() {
    if (!d_->printer) d_->printer = qt::PrinterChoice::usual();
    qt::ask_printer(*d_->printer, in_front(*this));
}

void QtToolkit::beep() { QApplication::beep(); }

bool QtToolkit::can_show_picture(std::string_view bytes) { return !qt::decode_picture(bytes).isNull(); }

// --- events

void QtToolkit::process_events() {
    QCoreApplication::processEvents();
    QThread::msleep(1);  // the caller waits for something in a loop
}

void QtToolkit::when_idle(const Event& call) {
    // Not at once: the widget whose event has just ended is still at work.
    QObject::connect(&d_->idle, &QTimer::timeout, &d_->app, call, Qt::SingleShotConnection);
    d_->idle.start();
}

// --- windows

void QtToolkit::show_window(Form& form) {
    const bool is_new = !form.peer;
    if (is_new) new qt::Window(form);
    qt::Window* window = window_of(form);
    window->refresh();
    if (is_new) {
        const QWidget* active = QApplication::activeWindow();
        const QRect around = active ? active->frameGeometry() : window->screen()->availableGeometry();
        window->move(around.center() - window->rect().center());
    }
    window->show();
    window->raise();
    window->activateWindow();
}

void QtToolkit::hide_window(Form& form) {
    if (form.peer) window_of(form)->hide();
}

void QtToolkit::destroy_window(Form& form) { delete window_of(form); }

void QtToolkit::show_focus(Control* control) {
    if (control && control->peer) {
        static_cast<qt::WidgetPeer*>(control->peer)->widget().setFocus(Qt::OtherFocusReason);
    }
}

}  // namespace toolkit
