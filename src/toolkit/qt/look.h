#pragma once

class QApplication;

namespace toolkit::qt {

/// Settings that must stand before the application object is made.
void prepare_look();
/// The same light grey look and the same text widths on every host, whatever its theme.
void apply_look(QApplication& app);

}  // namespace toolkit::qt
