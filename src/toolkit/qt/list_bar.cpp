#include <QApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QPushButton>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <utility>

#include "toolkit/qt/conversion.h"
#include "toolkit/qt/lines.h"
#include "toolkit/qt/picture.h"
#include "toolkit/qt/widgets.h"

namespace toolkit::qt {

namespace {

constexpr int picture_side = 32;
constexpr int margin = 5;
constexpr int header_height = 22;

/// The picture above its caption, both in the middle of the bar. The item of the page on show is marked,
/// whichever way led there; the frame shows where the keyboard is.
class ItemPainter : public QStyledItemDelegate {
  public:
    ItemPainter(const ListBar& control, QObject* owner) : QStyledItemDelegate(owner), control_(control) {}

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        if (index.row() == control_.marked()) {
            painter->fillRect(option.rect, option.palette.highlight());
        } else if (option.state & QStyle::State_MouseOver) {
            painter->fillRect(option.rect, option.palette.mid());
        }
        if (option.state & QStyle::State_HasFocus) {
            painter->setPen(option.palette.color(QPalette::Text));
            painter->drawRect(option.rect.adjusted(1, 1, -2, -2));
        }
        const QRect place = option.rect.adjusted(0, margin, 0, -margin);
        const auto picture = index.data(Qt::DecorationRole).value<QPixmap>();
        painter->drawPixmap(place.center().x() - picture_side / 2, place.top(), picture);
        painter->setPen(option.palette.color(QPalette::Text));
        painter->drawText(place, Qt::AlignHCenter | Qt::AlignBottom, index.data().toString());
    }
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const override {
        return {1, picture_side + 3 * margin + option.fontMetrics.height()};
    }

  private:
    const ListBar& control_;
};

/// The group's header above a dark column of pictures with their captions.
class ListBarWidget : public Shown<LineList, ListBar> {
  public:
    ListBarWidget(ListBar& control, QWidget& parent)
        : Shown(control, parent), header_(new QPushButton(this)) {
        header_->setFocusPolicy(Qt::NoFocus);  // the only group is always open
        setViewportMargins(0, header_height, 0, 0);
        setItemDelegate(new ItemPainter(control, this));
        setVerticalScrollMode(ScrollPerPixel);
        darken();
        lines().count = [this] { return static_cast<int>(control_.items().size()); };
        lines().line = [this](int row) {
            return Line{.text = shown(control_.items()[row].text), .picture = pictures_[row]};
        };
        on_click = on_open = [this](int row) { act([this, row] { control_.click_item(row + 1); }); };
    }

  private:
    QPushButton* header_;
    std::vector<QPixmap> pictures_;
    int marked_ = -1;  // as last shown

    void darken() {
        QPalette colours = palette();
        colours.setColor(QPalette::Base, QColor(0x6e, 0x6e, 0x6e));
        colours.setColor(QPalette::Text, Qt::white);
        colours.setColor(QPalette::Mid, QColor(0x58, 0x58, 0x58));
        setPalette(colours);
        verticalScrollBar()->setPalette(QApplication::palette());
    }

    void show_state() override {
        header_->setText(shown(control_.text()));
        pictures_.resize(control_.items().size());
        for (size_t i = 0; i < pictures_.size(); ++i) {
            const Drawing* drawing = control_.items()[i].picture;
            if (pictures_[i].isNull() && drawing)
                pictures_[i] = draw(*drawing, picture_side, devicePixelRatioF());
        }
        lines().refresh();
        if (std::exchange(marked_, control_.marked()) == marked_) return;
        select(marked_);
    }

    void resizeEvent(QResizeEvent* event) override {
        Shown::resizeEvent(event);
        const int frame = frameWidth();
        header_->setGeometry(frame, frame, viewport()->width(), header_height);
    }

    void keyPressEvent(QKeyEvent* event) override {
        if (event->key() == Qt::Key_Space && selected() >= 0) {
            on_open(selected());
        } else {
            Shown::keyPressEvent(event);
        }
    }
};

}  // namespace

WidgetPeer* make_widget(ListBar& control, QWidget& parent) { return new ListBarWidget(control, parent); }

}  // namespace toolkit::qt
