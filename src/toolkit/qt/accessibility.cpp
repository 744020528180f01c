#include "toolkit/qt/accessibility.h"

#include <QAccessibleWidget>

#include "toolkit/qt/conversion.h"
#include "toolkit/qt/peer.h"
#include "toolkit/qt/strip.h"
#include "toolkit/qt/window.h"

namespace toolkit::qt {

namespace {

/// Read when asked for: the clock in it must not be news every second.
class StatusText : public QAccessibleWidget {
  public:
    StatusText(QWidget* widget, const StatusBar& bar)
        : QAccessibleWidget(widget, QAccessible::StatusBar), bar_(bar) {}

    QString text(QAccessible::Text wanted) const override {
        if (wanted != QAccessible::Name) return QAccessibleWidget::text(wanted);
        QStringList texts;
        for (const StatusBar::Panel& panel : bar_.panels()) {
            if (!panel.text.empty()) texts << shown(panel.text);
        }
        return texts.join(QStringLiteral(", "));
    }

  private:
    const StatusBar& bar_;
};

QAccessibleInterface* describe(const QString&, QObject* object) {
    auto* widget = qobject_cast<QWidget*>(object);
    if (dynamic_cast<Window*>(widget))
        return new QAccessibleWidget(widget, QAccessible::Window, widget->windowTitle());
    if (dynamic_cast<Strip*>(widget)) return new QAccessibleWidget(widget, QAccessible::Notification);
    const auto* peer = dynamic_cast<WidgetPeer*>(widget);
    if (!peer) return nullptr;
    switch (peer->control().kind()) {
        case Kind::frame:
            return new QAccessibleWidget(widget, QAccessible::Grouping);
        case Kind::picture_box:
            return new QAccessibleWidget(widget, QAccessible::Graphic);
        case Kind::status_bar:
            return new StatusText(widget, static_cast<const StatusBar&>(peer->control()));
        default:
            return nullptr;
    }
}

}  // namespace

void install_accessibility() { QAccessible::installFactory(describe); }

}  // namespace toolkit::qt
