#pragma once

#include <QAbstractListModel>
#include <QListView>
#include <QPixmap>
#include <functional>
#include <optional>

namespace toolkit::qt {

struct Line {
    QString text;
    QPixmap picture = {};
    std::optional<bool> checked = {};  ///< none: no mark
};

/// The lines of a list, read from their owner when they are drawn: a list of ten thousand lines is not copied
/// for each that is added.
class Lines : public QAbstractListModel {
  public:
    using QAbstractListModel::QAbstractListModel;

    std::function<int()> count;
    std::function<Line(int row)> line;
    std::function<void(int row)> on_mark;  ///< a person clicks the mark

    /// The owner's lines are others now.
    void refresh();
    /// One more at the end, and nothing else.
    void append();

    int rowCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : rows_; }
    QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

  private:
    int rows_ = 0;  // as the views know them
};

/// A list that tells what a person does to it, and never what the program does.
class LineList : public QListView {
  public:
    explicit LineList(QWidget* parent);

    Lines& lines() { return *lines_; }
    std::function<void(int row)> on_click;  ///< by mouse, the same line again included
    std::function<void(int row)> on_move;   ///< another line by key
    std::function<void(int row)> on_open;   ///< double click or Enter

    /// -1: none.
    void select(int row);
    int selected() const;

  protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

  private:
    Lines* lines_;
    bool pressed_on_line_ = false;
};

}  // namespace toolkit::qt
