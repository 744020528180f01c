#include "toolkit/qt/qt_toolkit.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QApplication>
#include <QLibraryInfo>
#include <QScreen>
#include <QThread>
#include <QTimer>
#include <QTranslator>
#include <cstdio>
#include <cstdlib>
#include <optional>

#include "toolkit/qt/accessibility.h"
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

/// Qt's remarks about the desktop mean nothing to an admin; what ends the process is told.
void tell_failures_only(QtMsgType type, const QMessageLogContext&, const QString& message) {
    if (type == QtCriticalMsg || type == QtFatalMsg)
        (void)std::fprintf(stderr, "britlock: %s\n", message.toLocal8Bit().constData());
}

/// What a question lies over: a window of ours also while another program is active, or none, as between
/// two questions.
QWidget* in_front(const Toolkit& toolkit) {
    if (QWidget* active = QApplication::activeWindow()) return active;
    if (const Control* control = toolkit.focus(); control && control->peer)
        return static_cast<qt::WidgetPeer*>(control->peer)->widget().window();
    return toolkit.forms().empty() ? nullptr : window_of(*toolkit.forms().back());
}

}  // namespace

struct QtToolkit::Private {
    QApplication app;
    FolderSource& folders;
    Language language;
    std::function<int(Ending)> before_end;
    std::vector<std::string> strip;
    std::optional<qt::PrinterChoice> printer;  // chosen in this run
    std::string last_folder;                   // where the person last chose a file
    QTranslator words;
    QTimer idle;  // goes off when control is back in the event loop

    static void prepare() {
        if (!qEnvironmentVariableIsSet("QT_LOGGING_TO_CONSOLE")) qInstallMessageHandler(tell_failures_only);
        qt::prepare_look();
    }
    Private(int& argc, char** argv, FolderSource& source, Language its_language,
            std::function<int(Ending)> at_end)
        : app((prepare(), argc), argv),
          folders(source),
          language(its_language),
          before_end(std::move(at_end)) {
        qt::apply_look(app);
        // Menus of Qt's own, as that of a text line; without the file they stay English.
        if (language == german &&
            words.load(QStringLiteral("qtbase_de"), QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
            QCoreApplication::installTranslator(&words);
        qt::install_accessibility();
        idle.setSingleShot(true);
        QApplication::setQuitOnLastWindowClosed(false);  // the program ends itself
    }
};

/// Tried by a child: what Qt does without a display ends the process.
std::string QtToolkit::screen_trouble(bool unseen) {
    const auto is_set = [](const char* name) { return !qEnvironmentVariableIsEmpty(name); };
    const bool has_display = is_set("DISPLAY") || is_set("WAYLAND_DISPLAY") || is_set("QT_QPA_PLATFORM");
    if (unseen && !has_display) qputenv("QT_QPA_PLATFORM", "offscreen");
    if (!unseen && !has_display) return "there is no display";
    const pid_t child = fork();
    if (child == 0) {
        const int nowhere = open("/dev/null", O_WRONLY);
        for (const int stream : {STDOUT_FILENO, STDERR_FILENO})
            dup2(nowhere, stream);
        const rlimit no_core{0, 0};
        (void)setrlimit(RLIMIT_CORE, &no_core);
        char name[] = "britlock";
        char* arguments[] = {name, nullptr};
        int count = 1;
        const QGuiApplication attempt(count, arguments);
        _exit(EXIT_SUCCESS);
    }
    int status = 0;
    const bool answered = child > 0 && waitpid(child, &status, 0) == child && status == 0;
    return answered ? "" : "the display cannot be opened";
}

QtToolkit::QtToolkit(int& argc, char** argv, FolderSource& folders, Language language,
                     std::function<int(Ending)> before_end)
    : Toolkit(language),
      d_(std::make_unique<Private>(argc, argv, folders, language, std::move(before_end))) {}

QtToolkit::~QtToolkit() = default;

void QtToolkit::run(const Event& first) {
    deliver(first);
    if (!forms().empty()) QApplication::exec();
    end_process();
}

void QtToolkit::end_process(Ending ending) { std::_Exit(d_->before_end(ending)); }

void QtToolkit::set_icon(const Drawing& icon) { QApplication::setWindowIcon(qt::icon_of(icon)); }

void QtToolkit::set_strip(std::vector<std::string> lines) {
    d_->strip = std::move(lines);
    for (Form* form : forms())
        window_of(*form)->set_strip(d_->strip);
}

bool QtToolkit::save_screenshot(const Form& form, const std::string& file) const {
    return form.peer && window_of(form)->grab().save(QString::fromStdString(file), "PNG");
}

// --- questions

Answer QtToolkit::show_box(const Box& box) { return qt::ask(box, d_->language, in_front(*this)); }

std::string QtToolkit::show_input_box(const std::string& title, const std::string& prompt) {
    return qt::ask_line(title, prompt, d_->language, in_front(*this));
}

std::string QtToolkit::ask_file(const FileDialog& dialog) {
    return qt::ask_file(dialog, d_->folders, d_->last_folder, d_->language, in_front(*this));
}

std::unique_ptr<Printer> QtToolkit::open_printer() {
    return qt::open_printer(d_->printer ? *d_->printer : qt::PrinterChoice::usual());
}

void QtToolkit::set_up_printer() {
    if (!d_->printer) d_->printer = qt::PrinterChoice::usual();
    qt::ask_printer(*d_->printer, d_->language, in_front(*this));
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
    window->set_strip(d_->strip);
    window->start_focus();
    if (is_new) {
        const QWidget* active = QApplication::activeWindow();
        const QRect around = active ? active->frameGeometry() : window->screen()->availableGeometry();
        window->move(around.center() - window->rect().center());
    }
    window->show();
    if (QGuiApplication::platformName() != QLatin1String("offscreen")) window->raise();
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
