#include "app/help/help_window.h"

#include <QAction>
#include <QGuiApplication>
#include <QMainWindow>
#include <QPointer>
#include <QScreen>
#include <QTextBrowser>
#include <QToolBar>
#include <array>

#include "base/twin.h"

static void load_pages() { Q_INIT_RESOURCE(help); }

namespace britlock {

namespace {

constexpr int first_topic = 10;
constexpr int last_topic = 18;

struct Words {
    const char16_t* title;
    const char16_t* contents;
    const char16_t* back;
};
constexpr std::array<Words, 2> words = {{{u"Brightlock Suite - Hilfe", u"Inhalt", u"Zurück"},
                                         {u"Brightlock Suite - Help", u"Contents", u"Back"}}};

class HelpWindow : public QMainWindow {
  public:
    explicit HelpWindow(int language) : folder_(language == german ? "qrc:/help/de/" : "qrc:/help/en/") {
        const Words& says = words.at(static_cast<size_t>(language));
        setAttribute(Qt::WA_DeleteOnClose);
        setWindowTitle(QString::fromUtf16(says.title));
        auto* const pages = new QTextBrowser(this);
        pages->setOpenExternalLinks(false);
        pages->document()->setDocumentMargin(12);
        pages->document()->setDefaultStyleSheet(QStringLiteral("dt { font-weight: bold; margin-top: 6px; }"));
        setCentralWidget(pages);
        QToolBar* const bar = addToolBar(windowTitle());
        bar->setMovable(false);
        bar->addAction(QString::fromUtf16(says.contents), this, [this] { turn_to(0); });
        QAction* const back =
            bar->addAction(QString::fromUtf16(says.back), QKeySequence::Back, pages, &QTextBrowser::backward);
        back->setEnabled(false);
        connect(pages, &QTextBrowser::backwardAvailable, back, &QAction::setEnabled);
        auto* const close = new QAction(this);
        close->setShortcut(Qt::Key_Escape);
        connect(close, &QAction::triggered, this, &QWidget::close);
        addAction(close);
        pages_ = pages;
        resize(QSize(620, 640).boundedTo(screen()->availableSize()));
    }

    void turn_to(int topic) {
        const bool known = topic >= first_topic && topic <= last_topic;
        const QString page = known ? "page" + QString::number(topic - first_topic + 1) : QString("index");
        pages_->setSource(QUrl(folder_ + page + ".html"));
    }

  private:
    QString folder_;
    QTextBrowser* pages_ = nullptr;
};

}  // namespace

void show_help(int topic, int language) {
    static QPointer<HelpWindow> window;
    load_pages();
    if (!window) window = new HelpWindow(language);
    window->turn_to(topic);
    window->show();
    window->raise();
    window->activateWindow();
}

}  // namespace britlock
