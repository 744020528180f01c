#include "toolkit/qt/lines.h"

#include <QKeyEvent>
#include <utility>

namespace toolkit::qt {

namespace {

void tell(const std::function<void(int)>& listener, int row) {
    if (listener && row >= 0) listener(row);
}

}  // namespace

// --- Lines

void Lines::refresh() {
    const int now = count();
    if (now > rows_) {
        beginInsertRows({}, rows_, now - 1);
        rows_ = now;
        endInsertRows();
    } else if (now < rows_) {
        beginRemoveRows({}, now, rows_ - 1);
        rows_ = now;
        endRemoveRows();
    }
    if (rows_ > 0) emit dataChanged(index(0), index(rows_ - 1));
}

void Lines::append() {
    beginInsertRows({}, rows_, rows_);
    ++rows_;
    endInsertRows();
}

QVariant Lines::data(const QModelIndex& index, int role) const {
    // Between a change and its refresh the views still ask for lines that are gone.
    if (!index.isValid() || index.row() >= count()) return {};
    switch (role) {
        case Qt::DisplayRole:
            return line(index.row()).text;
        case Qt::DecorationRole: {
            const QPixmap picture = line(index.row()).picture;
            return picture.isNull() ? QVariant() : picture;
        }
        case Qt::CheckStateRole: {
            const auto checked = line(index.row()).checked;
            return checked ? QVariant(*checked ? Qt::Checked : Qt::Unchecked) : QVariant();
        }
        default:
            return {};
    }
}

bool Lines::setData(const QModelIndex& index, const QVariant&, int role) {
    if (role != Qt::CheckStateRole) return false;
    tell(on_mark, index.row());
    return true;
}

Qt::ItemFlags Lines::flags(const QModelIndex& index) const {
    const auto plain = Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemNeverHasChildren;
    return on_mark && index.isValid() ? plain | Qt::ItemIsUserCheckable : plain;
}

// --- LineList

LineList::LineList(QWidget* parent) : QListView(parent), lines_(new Lines(this)) {
    setModel(lines_);
    setUniformItemSizes(true);
    setEditTriggers(NoEditTriggers);
    setVerticalScrollMode(ScrollPerItem);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
}

void LineList::select(int row) {
    if (row == selected()) return;
    selectionModel()->setCurrentIndex(lines_->index(row), QItemSelectionModel::ClearAndSelect);
}

/// The line with the frame of the focus is another thing: Qt gives it to the first line at once.
int LineList::selected() const {
    const QModelIndexList chosen = selectionModel()->selectedIndexes();
    return chosen.isEmpty() ? -1 : chosen.first().row();
}

/// The frame shows where the keyboard is.
void LineList::focusInEvent(QFocusEvent* event) {
    QListView::focusInEvent(event);
    update();
}

void LineList::focusOutEvent(QFocusEvent* event) {
    QListView::focusOutEvent(event);
    update();
}

void LineList::mousePressEvent(QMouseEvent* event) {
    QListView::mousePressEvent(event);
    const int row = indexAt(event->pos()).row();
    pressed_on_line_ = event->button() == Qt::LeftButton && row >= 0;
    if (pressed_on_line_) select(row);  // Qt does not where the press hits the mark
}

void LineList::mouseReleaseEvent(QMouseEvent* event) {
    QListView::mouseReleaseEvent(event);
    if (std::exchange(pressed_on_line_, false)) tell(on_click, selected());
}

void LineList::mouseDoubleClickEvent(QMouseEvent* event) {
    QListView::mouseDoubleClickEvent(event);
    if (event->button() == Qt::LeftButton) tell(on_open, indexAt(event->pos()).row());
}

void LineList::keyPressEvent(QKeyEvent* event) {
    if (on_open && (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)) {
        tell(on_open, selected());
        return;
    }
    const int before = selected();
    const bool arrow = event->key() == Qt::Key_Down || event->key() == Qt::Key_Up;
    if (arrow && before < 0) {
        select(0);  // the first line has been passed over by nobody
    } else {
        QListView::keyPressEvent(event);
    }
    if (selected() != before) tell(on_move, selected());
}

}  // namespace toolkit::qt
