#pragma once

#include <QDialog>
#include <functional>

/// What a person does at the modal window that the next event opens.
void at_next_dialog(const std::function<void(QDialog&)>& act);
