#pragma once

#include <string>

#include "toolkit/toolkit.h"

class QWidget;

namespace toolkit::qt {

/// Modal; both return when the person has answered.
Answer ask(const Box& box, QWidget* parent);
/// "" where the person cancels.
std::string ask_line(const std::string& title, const std::string& prompt, QWidget* parent);

}  // namespace toolkit::qt
