#include <QComboBox>
#include <QKeyEvent>
#include <QStylePainter>

#include "toolkit/qt/conversion.h"
#include "toolkit/qt/lines.h"
#include "toolkit/qt/widgets.h"

namespace toolkit::qt {

namespace {

/// A combo box that only its list can change. Its text need not be in the list.
template <class C>
class ListOnlyCombo : public Shown<QComboBox, C> {
  public:
    ListOnlyCombo(C& control, QWidget& parent)
        : Shown<QComboBox, C>(control, parent), lines_(new Lines(this)) {}

  protected:
    Lines& lines() { return *lines_; }

    /// To be called when count and line of lines() are set.
    void start() {
        this->setModel(lines_);
        this->connect(this, &QComboBox::activated, this, [this](int row) { choose(row); });
    }
    virtual void choose(int row) = 0;

    void show_line(int row, const std::string& text) {
        lines_->refresh();
        this->setCurrentIndex(row);
        text_ = shown(text);
        this->update();
    }

  private:
    Lines* lines_;
    QString text_;

    void paintEvent(QPaintEvent*) override {
        QStylePainter painter(this);
        QStyleOptionComboBox option;
        this->initStyleOption(&option);
        option.currentText = text_;
        painter.drawComplexControl(QStyle::CC_ComboBox, option);
        painter.drawControl(QStyle::CE_ComboBoxLabel, option);
    }

    /// Qt would look for a typed letter in the list and choose what it finds.
    void keyPressEvent(QKeyEvent* event) override {
        switch (event->key()) {
            case Qt::Key_Up:
            case Qt::Key_Down:
            case Qt::Key_PageUp:
            case Qt::Key_PageDown:
            case Qt::Key_Home:
            case Qt::Key_End:
            case Qt::Key_F4:
                return QComboBox::keyPressEvent(event);
            default:
                event->ignore();
        }
    }
};

class ComboBoxWidget : public ListOnlyCombo<ComboBox> {
  public:
    ComboBoxWidget(ComboBox& control, QWidget& parent) : ListOnlyCombo(control, parent) {
        lines().count = [this] { return static_cast<int>(control_.items().size()); };
        lines().line = [this](int row) { return Line{.text = shown(control_.items()[row])}; };
        start();
    }

  private:
    void choose(int row) override {
        act([this, row] { control_.choose(row); });
    }

    void show_state() override {
        const auto& items = control_.items();
        const auto at = std::find(items.begin(), items.end(), control_.text());
        show_line(at == items.end() ? -1 : static_cast<int>(at - items.begin()), control_.text());
    }
};

class DriveListWidget : public ListOnlyCombo<DriveListBox> {
  public:
    DriveListWidget(DriveListBox& control, QWidget& parent) : ListOnlyCombo(control, parent) {
        lines().count = [this] { return static_cast<int>(drives_.size()); };
        lines().line = [this](int row) { return Line{.text = QString(QLatin1Char(drives_[row])) + ':'}; };
        start();
    }

  private:
    std::vector<char> drives_;

    void choose(int row) override {
        act([this, row] { control_.choose(row); });
    }

    void show_state() override {
        drives_ = control_.drives();
        const char letter = control_.drive().empty() ? '\0' : control_.drive().front();
        const auto at = std::find(drives_.begin(), drives_.end(), letter);
        show_line(at == drives_.end() ? -1 : static_cast<int>(at - drives_.begin()), control_.drive());
    }
};

}  // namespace

WidgetPeer* make_widget(ComboBox& control, QWidget& parent) { return new ComboBoxWidget(control, parent); }
WidgetPeer* make_widget(DriveListBox& control, QWidget& parent) {
    return new DriveListWidget(control, parent);
}

}  // namespace toolkit::qt
