#include "toolkit/qt/boxes.h"

#include <QDialogButtonBox>
#include <QFontMetrics>
#include <QGridLayout>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QSpacerItem>
#include <QVBoxLayout>
#include <span>

#include "toolkit/qt/conversion.h"

namespace toolkit::qt {

namespace {

struct Choice {
    Word caption;
    Answer answer;
};

std::span<const Choice> choices(Buttons buttons) {
    static constexpr Choice ok[] = {{Word::ok, Answer::ok}};
    static constexpr Choice yes_no[] = {{Word::yes, Answer::yes}, {Word::no, Answer::no}};
    static constexpr Choice abort_retry_ignore[] = {
        {Word::abort, Answer::abort}, {Word::retry, Answer::retry}, {Word::ignore, Answer::ignore}};
    switch (buttons) {
        case Buttons::yes_no:
            return yes_no;
        case Buttons::abort_retry_ignore:
            return abort_retry_ignore;
        case Buttons::ok:
            break;
    }
    return ok;
}

QMessageBox::Icon picture(Icon icon) {
    switch (icon) {
        case Icon::critical:
            return QMessageBox::Critical;
        case Icon::question:
            return QMessageBox::Question;
        case Icon::exclamation:
            return QMessageBox::Warning;
        case Icon::information:
            return QMessageBox::Information;
        case Icon::none:
            break;
    }
    return QMessageBox::NoIcon;
}

/// The width of a box is that of its text, and the title of a short one would be cut.
void make_room_for_title(QMessageBox& window) {
    const int frame_and_buttons = pixels(2700);
    const int width = QFontMetrics(window.font()).horizontalAdvance(window.windowTitle()) + frame_and_buttons;
    auto& grid = *static_cast<QGridLayout*>(window.layout());
    grid.addItem(new QSpacerItem(width, 0), grid.rowCount(), 0, 1, grid.columnCount());
}

}  // namespace

Answer ask(const Box& box, Language language, QWidget* parent) {
    QMessageBox window(picture(box.icon), shown(box.title), shown(box.text), QMessageBox::NoButton, parent);
    window.setTextFormat(Qt::PlainText);
    const auto offered = choices(box.buttons);
    for (const Choice& choice : offered) {
        // The same role for all: Qt would take a "No" for the answer of Esc and of the close button.
        QPushButton* button =
            window.addButton(shown(word(choice.caption, language)), QMessageBox::AcceptRole);
        if (choice.answer == box.default_answer) window.setDefaultButton(button);
    }
    make_room_for_title(window);
    window.exec();
    const qsizetype pressed = window.buttons().indexOf(window.clickedButton());
    return offered[std::max<qsizetype>(pressed, 0)].answer;
}

std::string ask_line(const std::string& title, const std::string& prompt, Language language,
                     QWidget* parent) {
    QDialog window(parent);
    window.setWindowTitle(shown(title));
    auto* text = new QLabel(shown(prompt));
    text->setTextFormat(Qt::PlainText);
    text->setWordWrap(true);
    auto* line = new AnsiLine(&window);
    auto* buttons = new QDialogButtonBox;
    buttons->addButton(shown(word(Word::ok, language)), QDialogButtonBox::AcceptRole);
    buttons->addButton(shown(word(Word::cancel, language)), QDialogButtonBox::RejectRole);
    QObject::connect(buttons, &QDialogButtonBox::accepted, &window, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, &window, &QDialog::reject);

    auto* rows = new QVBoxLayout(&window);
    rows->addWidget(text);
    rows->addWidget(line);
    rows->addWidget(buttons);
    text->setBuddy(line);
    line->setFocus();
    window.setMinimumWidth(pixels(8400));
    return window.exec() == QDialog::Accepted ? line->ansi_text() : std::string();
}

}  // namespace toolkit::qt
