#pragma once

#include <string>

#include "toolkit/toolkit.h"
#include "toolkit/words.h"

class QWidget;

namespace toolkit::qt {

/// The file dialog over the drives of the machine being worked on; the host's files are not in it.
/// `last_folder` is where it starts unless told otherwise, and takes the folder of the file chosen. "" where
/// the person cancels.
std::string ask_file(const FileDialog& dialog, FolderSource& source, std::string& last_folder,
                     Language language, QWidget* parent);

}  // namespace toolkit::qt
