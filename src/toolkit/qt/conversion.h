#pragma once

#include <QLineEdit>
#include <QRect>
#include <QString>
#include <optional>
#include <string>
#include <string_view>

#include "toolkit/controls.h"

/// The one place where units and texts of the program become those of Qt, and back.
namespace toolkit::qt {

constexpr int twips_per_pixel = 15;

constexpr int pixels(int twips) { return twips / twips_per_pixel; }
/// By its edges: what ends at the same twip ends at the same pixel.
inline QRect pixels(const Rect& twips) {
    const QPoint from(pixels(twips.left), pixels(twips.top));
    const QPoint to(pixels(twips.left + twips.width), pixels(twips.top + twips.height));
    return {from, QSize(to.x() - from.x(), to.y() - from.y())};
}
/// Fonts go by pixels as the layout does: a host that enlarges points would clip the captions.
constexpr int font_pixels(int points) { return (points * 96 + 36) / 72; }

QString shown(std::string_view ansi);
/// None where code page 1252 lacks a character.
std::optional<std::string> ansi(const QString& text);

/// A line that takes only what the program can spell.
class AnsiLine : public QLineEdit {
  public:
    explicit AnsiLine(QWidget* parent);
    std::string ansi_text() const { return ansi(text()).value_or(std::string()); }
};

}  // namespace toolkit::qt
