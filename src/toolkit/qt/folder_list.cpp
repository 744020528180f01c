#include "toolkit/qt/folder_list.h"

#include <QIcon>
#include <QPainter>
#include <QStyle>
#include <utility>

#include "toolkit/qt/conversion.h"

namespace toolkit::qt {

std::string folder_name(const std::string& path) {
    return path.ends_with('\\') ? path : path.substr(path.rfind('\\') + 1);
}

FolderList::FolderList(QWidget* parent) : LineList(parent) {
    lines().count = [this] { return depth() + static_cast<int>(sub_folders_.size()); };
    lines().line = [this](int row) { return folder_line(row); };
    on_open = [this](int row) { row < depth() ? on_ancestor(row) : on_sub_folder(row - depth()); };
}

void FolderList::show_folder(std::vector<std::string> way, std::vector<std::string> sub_folders) {
    const bool moved = way != way_;
    way_ = std::move(way);
    sub_folders_ = std::move(sub_folders);
    lines().refresh();
    if (moved) select(depth() - 1);
}

Line FolderList::folder_line(int row) const {
    constexpr int step = 10;
    constexpr int side = 16;
    const bool open = row < depth();
    const int left = step * std::min(row, depth());
    const QIcon icon = style()->standardIcon(open ? QStyle::SP_DirOpenIcon : QStyle::SP_DirIcon);
    QPixmap picture(QSize(left + side, side) * devicePixelRatioF());
    picture.setDevicePixelRatio(devicePixelRatioF());
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    icon.paint(&painter, left, 0, side, side);
    return {.text = shown(open ? folder_name(way_[row]) : sub_folders_[row - depth()]), .picture = picture};
}

}  // namespace toolkit::qt
