#include <qdrawutil.h>
#include <QPainter>
#include <QSignalBlocker>
#include <QTabBar>
#include <QWheelEvent>
#include <functional>

#include "toolkit/qt/conversion.h"
#include "toolkit/qt/widgets.h"
#include "toolkit/spoken.h"

namespace toolkit::qt {

namespace {

class Tabs : public QTabBar {
  public:
    using QTabBar::QTabBar;
    std::function<void(Qt::FocusReason)> on_focus;

  private:
    void focusInEvent(QFocusEvent* event) override {
        QTabBar::focusInEvent(event);
        on_focus(event->reason());
    }
    void wheelEvent(QWheelEvent* event) override { event->ignore(); }  // no page turns in passing
};

/// A row of tabs at the upper edge of a raised pane; the controls of the pages are children of the whole.
class TabWidget : public Shown<QWidget, TabContainer> {
  public:
    TabWidget(TabContainer& control, QWidget& parent) : Shown(control, parent), tabs_(new Tabs(this)) {
        setAutoFillBackground(true);  // hides the edge of what it overlaps
        setFocusProxy(tabs_);
        tabs_->setDrawBase(false);
        tabs_->setExpanding(false);
        tabs_->setUsesScrollButtons(false);
        tabs_->on_focus = [this](Qt::FocusReason reason) { focus_came(reason); };
        connect(tabs_, &QTabBar::currentChanged, this,
                [this](int page) { act([this, page] { control_.click_tab(page); }); });
    }

  private:
    Tabs* tabs_;

    void show_state() override {
        show_captions();
        for (Control* control : control_.form().controls()) {
            if (control->parent() == &control_ && control->peer)
                control->peer->refresh(*control, Change::visible);
        }
        update();
    }

    void show_captions() {
        const QSignalBlocker quiet(tabs_);
        const int count = static_cast<int>(control_.captions().size());
        while (tabs_->count() > count)
            tabs_->removeTab(count);
        while (tabs_->count() < count)
            tabs_->addTab(QString());
        for (int i = 0; i < count; ++i) {
            tabs_->setTabText(i, shown(control_.captions()[i]));
            tabs_->setAccessibleTabName(i, shown(spoken_tab_name(control_, i)));
        }
        tabs_->setCurrentIndex(control_.current());
        tabs_->setAccessibleName(shown(spoken_name(control_)));
        tabs_->resize(width(), tabs_->sizeHint().height());
    }

    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        qDrawShadePanel(&painter, rect().adjusted(0, tabs_->height() - 1, 0, 0), palette());
    }
};

}  // namespace

WidgetPeer* make_widget(TabContainer& control, QWidget& parent) { return new TabWidget(control, parent); }

}  // namespace toolkit::qt
