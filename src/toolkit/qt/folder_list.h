#pragma once

#include <string>
#include <vector>

#include "toolkit/qt/lines.h"

namespace toolkit::qt {

/// The last name on a full path; a root as it is.
std::string folder_name(const std::string& path);

/// The way to a folder, each step further in, and the folders in it. Double click or Enter opens one.
class FolderList : public LineList {
  public:
    explicit FolderList(QWidget* parent);

    /// `way` as folders_on_the_way() gives it. The folder itself becomes the current line when it is a new
    /// one.
    void show_folder(std::vector<std::string> way, std::vector<std::string> sub_folders);
    const std::string& sub_folder(int index) const { return sub_folders_[index]; }

    std::function<void(int index)> on_ancestor;
    std::function<void(int index)> on_sub_folder;

  private:
    int depth() const { return static_cast<int>(way_.size()); }
    Line folder_line(int row) const;

    std::vector<std::string> way_;
    std::vector<std::string> sub_folders_;
};

}  // namespace toolkit::qt
