#include "toolkit/qt/qt_toolkit.h"

#include <QApplication>
#include <QScreen>
#include <QThread>
#include <cstdlib>

#include "toolkit/qt/boxes.h"
#include "toolkit/qt/conversion.h"
#include "toolkit/qt/file_dialog.h"
#include "toolkit/qt/look.h"
#include "toolkit/qt/peer.h"
#include "toolkit/qt/picture.h"
#include "toolkit/qt/window.h"

namespace toolkit {

namespace {

qt::Window* window_of(const Form& form) { return static_cast<qt::Window*>(form.peer); }

}  // namespace

struct QtToolkit::Private {
    QApplication app;
    FolderSource& folders;
    Event before_end;
    std::string last_folder;  // where the person last chose a file

    Private(int& argc, char** argv, FolderSource& source, Event at_end)
        : app((qt::prepare_look(), argc), argv), folders(source), before_end(std::move(at_end)) {
        qt::apply_look(app);
        QApplication::setQuitOnLastWindowClosed(false);  // the program ends itself
    }

    static QWidget* asking(const std::vector<Form*>& forms);
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

/// What a question lies over: also while another program is in front.
QWidget* QtToolkit::Private::asking(const std::vector<Form*>& forms) {
    QWidget* active = QApplication::activeWindow();
    return active || forms.empty() ? active : window_of(*forms.back());
}

Answer QtToolkit::show_box(const Box& box) { return qt::ask(box, Private::asking(forms())); }

std::string QtToolkit::show_input_box(const std::string& title, const std::string& prompt) {
    return qt::ask_line(title, prompt, Private::asking(forms()));
}

std::string QtToolkit::ask_file(const FileDialog& dialog) {
    return qt::ask_file(dialog, d_->folders, d_->last_folder, Private::asking(forms()));
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
    QMetaObject::invokeMethod(&d_->app, call, Qt::QueuedConnection);
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
