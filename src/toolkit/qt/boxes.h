#pragma once

#include <string>

#include "toolkit/toolkit.h"
#include "toolkit/words.h"

class QWidget;

namespace toolkit::qt {

/// Modal; both return when the person has answered.
Answer ask(const Box& box, Language language, QWidget* parent);
/// "" where the person cancels.
std::string ask_line(const std::string& title, const std::string& prompt, Language language, QWidget* parent);

}  // namespace toolkit::qt
