#pragma once

namespace toolkit::qt {

/// Tells Qt what our own widgets are to a screen reader: windows, frames, the status bar and the strip have
/// no class of Qt's that would.
void install_accessibility();

}  // namespace toolkit::qt
