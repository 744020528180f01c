#include "toolkit/qt/strip.h"

#include <QAccessible>
#include <QPainter>

namespace toolkit::qt {

Strip::Strip(QWidget* parent) : QLabel(parent) {
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setFocusPolicy(Qt::TabFocus);
    setContentsMargins(4, 1, 4, 3);
}

bool Strip::show_lines(const std::vector<std::string>& lines) {
    QStringList out;
    for (const std::string& line : lines)
        out << QString::fromStdString(line);
    const QString now = out.join('\n');
    if (now == text()) return false;
    setText(now);
    setAccessibleName(now);
    return true;
}

/// A notification is read out when it shows.
void Strip::announce() {
    QAccessibleEvent shows(this, QAccessible::ObjectShow);
    QAccessible::updateAccessibility(&shows);
}

int Strip::height_at(int width) const { return text().isEmpty() ? 0 : heightForWidth(width); }

void Strip::paintEvent(QPaintEvent* event) {
    QLabel::paintEvent(event);
    if (!hasFocus()) return;
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::Highlight));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

}  // namespace toolkit::qt
