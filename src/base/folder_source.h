#pragma once

#include <string>
#include <string_view>
#include <vector>

/// The drives and folders of the machine being worked on, for whoever walks them. Errors are RuntimeError
/// (68: no such drive, 76: no such folder, 70: no right).
class FolderSource {
  public:
    virtual ~FolderSource() = default;
    virtual std::vector<char> drives() = 0;  ///< capital letters
    /// Full path of the folder in the spelling found, without a closing backslash but at a root.
    virtual std::string folder(std::string_view path) = 0;
    /// Names, sorted without case; hidden and system ones and links are left out.
    virtual std::vector<std::string> folders(std::string_view path) = 0;
    virtual std::vector<std::string> files(std::string_view path) = 0;
};
