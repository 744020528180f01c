#include <qdrawutil.h>
#include <QMouseEvent>
#include <QPainter>

#include "toolkit/qt/conversion.h"
#include "toolkit/qt/widgets.h"

namespace toolkit::qt {

namespace {

class StatusBarWidget : public Shown<QWidget, StatusBar> {
  public:
    using Shown::Shown;

  private:
    static constexpr int gap = 2;
    static constexpr int text_margin = 4;

    void show_state() override { update(); }

    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        int left = 0;
        for (const StatusBar::Panel& panel : control_.panels()) {
            const QRect place(left, gap, pixels(panel.width) - gap, height() - gap);
            qDrawShadePanel(&painter, place, palette(), true);
            const auto side = panel.centred ? Qt::AlignHCenter : Qt::AlignLeft;
            painter.drawText(place.adjusted(text_margin, 0, -text_margin, 0),
                             side | Qt::AlignVCenter | Qt::TextSingleLine, shown(panel.text));
            left += pixels(panel.width);
        }
    }

    void mousePressEvent(QMouseEvent* event) override {
        const int x = static_cast<int>(event->position().x() * twips_per_pixel);
        switch (event->button()) {
            case Qt::LeftButton:
                return press(MouseButton::left, x);
            case Qt::RightButton:
                return press(MouseButton::right, x);
            case Qt::MiddleButton:
                return press(MouseButton::middle, x);
            default:
                event->ignore();
        }
    }

    void press(MouseButton button, int x) {
        act([this, button, x] { control_.press(button, x); });
    }
};

}  // namespace

WidgetPeer* make_widget(StatusBar& control, QWidget& parent) { return new StatusBarWidget(control, parent); }

}  // namespace toolkit::qt
