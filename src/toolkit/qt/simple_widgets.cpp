#include <qdrawutil.h>
#include <QCheckBox>
#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>
#include <QStyle>
#include <QTimer>

#include "toolkit/qt/conversion.h"
#include "toolkit/qt/picture.h"
#include "toolkit/qt/widgets.h"

namespace toolkit::qt {

namespace {

class LabelWidget : public Shown<QLabel, Label> {
  public:
    LabelWidget(Label& control, QWidget& parent) : Shown(control, parent) {
        setTextFormat(Qt::PlainText);
        setWordWrap(true);
        setAlignment(Qt::AlignLeft | Qt::AlignTop);
    }

  private:
    void show_state() override { setText(shown(control_.text())); }
};

class TextBoxWidget : public Shown<AnsiLine, TextBox> {
  public:
    TextBoxWidget(TextBox& control, QWidget& parent) : Shown(control, parent) {
        connect(this, &QLineEdit::textEdited, this, [this] { act([this] { control_.type(ansi_text()); }); });
    }

  private:
    static constexpr int no_limit = 32767;  // Qt's own

    void show_state() override {
        setMaxLength(control_.max_length() > 0 ? control_.max_length() : no_limit);
        setEchoMode(control_.password_char() ? Password : Normal);
        // Setting the same text again would move the cursor.
        if (const QString text = shown(control_.text()); this->text() != text) {
            setText(text);
            home(false);  // of a long path the drive shows, not the end
        }
    }

    void mouseReleaseEvent(QMouseEvent* event) override {
        Shown::mouseReleaseEvent(event);
        if (event->button() == Qt::LeftButton && rect().contains(event->pos())) {
            act([this] { control_.click(); });
        }
    }
};

class ButtonWidget : public Shown<QPushButton, Button> {
  public:
    ButtonWidget(Button& control, QWidget& parent) : Shown(control, parent) {
        connect(this, &QPushButton::clicked, this, [this] { act([this] { control_.click(); }); });
    }

  private:
    void show_state() override {
        setText(shown(control_.text()));
        setDefault(control_.is_default);
    }

    /// Enter is the window's.
    void keyPressEvent(QKeyEvent* event) override {
        if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
            event->ignore();
        } else {
            Shown::keyPressEvent(event);
        }
    }
};

class CheckBoxWidget : public Shown<QCheckBox, CheckBox> {
  public:
    CheckBoxWidget(CheckBox& control, QWidget& parent) : Shown(control, parent) {
        connect(this, &QCheckBox::clicked, this, [this] { act([this] { control_.click(); }); });
    }

  private:
    void nextCheckState() override {}  // the control decides

    void show_state() override {
        static constexpr Qt::CheckState states[] = {Qt::Unchecked, Qt::Checked, Qt::PartiallyChecked};
        setText(shown(control_.text()));
        setCheckState(states[control_.value()]);
    }
};

/// An etched line with the caption in its upper edge. Qt's own group box keeps the caption above the line and
/// so takes room that the layouts give to the controls.
class FrameWidget : public Shown<QWidget, Frame> {
  public:
    FrameWidget(Frame& control, QWidget& parent) : Shown(control, parent) {
        setAutoFillBackground(true);  // hides what it lies over
    }

  private:
    static constexpr int caption_left = 8;

    void show_state() override { update(); }

    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        const int line = fontMetrics().height();
        qDrawShadeRect(&painter, rect().adjusted(0, line / 2, 0, 0), palette(), true);
        const QString caption = shown(control_.text());
        if (caption.isEmpty()) return;
        const int width = fontMetrics().size(Qt::TextShowMnemonic, caption).width();
        const QRect place(caption_left, 0, width + 4, line);
        painter.fillRect(place, palette().window());
        style()->drawItemText(&painter, place, Qt::AlignCenter | Qt::TextShowMnemonic, palette(), isEnabled(),
                              caption, QPalette::WindowText);
    }
};

class PictureWidget : public Shown<QWidget, PictureBox> {
  public:
    using Shown::Shown;

  private:
    std::string bytes_;
    QImage image_;

    void show_state() override {
        if (bytes_ != control_.bytes()) {
            bytes_ = control_.bytes();
            image_ = decode_picture(bytes_);
        }
        update();
    }

    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        // A box for a picture from a file shows its place before there is one.
        if (!control_.drawing()) qDrawShadePanel(&painter, rect(), palette(), true);
        if (!image_.isNull()) {
            painter.drawImage(fitted(image_.size()), image_);
        } else if (control_.drawing()) {
            draw(painter, *control_.drawing(), fitted(QSize(1, 1)));
        }
    }

    QRectF fitted(QSize picture) const {
        const QSize room = control_.drawing() ? size() : size() - QSize(4, 4);
        QRectF place(QPointF(0, 0), QSizeF(picture).scaled(room, Qt::KeepAspectRatio));
        place.moveCenter(QRectF(rect()).center());
        return place;
    }
};

class TimerPeer : public QTimer, public Peer {
  public:
    TimerPeer(Timer& control, QWidget& window) : QTimer(&window), control_(control) {
        control.peer = this;
        connect(this, &QTimer::timeout, this,
                [this] { control_.form().toolkit().deliver([this] { control_.tick(); }); });
        refresh(control, Change::all);
    }
    ~TimerPeer() override { control_.peer = nullptr; }

    void refresh(const Control&, Change) override {
        if (!control_.enabled() || control_.interval_ms == 0) {
            stop();
        } else if (!isActive() || interval() != control_.interval_ms) {
            start(control_.interval_ms);
        }
    }

  private:
    Timer& control_;
};

}  // namespace

WidgetPeer* make_widget(Label& control, QWidget& parent) { return new LabelWidget(control, parent); }
WidgetPeer* make_widget(TextBox& control, QWidget& parent) { return new TextBoxWidget(control, parent); }
WidgetPeer* make_widget(Button& control, QWidget& parent) { return new ButtonWidget(control, parent); }
WidgetPeer* make_widget(CheckBox& control, QWidget& parent) { return new CheckBoxWidget(control, parent); }
WidgetPeer* make_widget(Frame& control, QWidget& parent) { return new FrameWidget(control, parent); }
WidgetPeer* make_widget(PictureBox& control, QWidget& parent) { return new PictureWidget(control, parent); }
WidgetPeer* make_widget(Timer& control, QWidget& window) {
    new TimerPeer(control, window);
    return nullptr;
}

}  // namespace toolkit::qt
