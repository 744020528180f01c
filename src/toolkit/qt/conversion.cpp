#include "toolkit/qt/conversion.h"

#include <QValidator>

#include "base/text.h"

namespace toolkit::qt {

namespace {

class AnsiValidator : public QValidator {
  public:
    using QValidator::QValidator;
    State validate(QString& text, int&) const override { return ansi(text) ? Acceptable : Invalid; }
};

}  // namespace

QString shown(std::string_view ansi) { return QString::fromStdU16String(text::to_utf16(ansi)); }

std::optional<std::string> ansi(const QString& text) { return text::from_utf16(text.toStdU16String()); }

AnsiLine::AnsiLine(QWidget* parent) : QLineEdit(parent) { setValidator(new AnsiValidator(this)); }

}  // namespace toolkit::qt
