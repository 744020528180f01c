#pragma once

#include <QLabel>
#include <string>
#include <vector>

namespace toolkit::qt {

/// Lines of the edition's own below a form, which knows nothing of them. They can be reached by Tab, copied,
/// and are read out when they change.
class Strip : public QLabel {
  public:
    explicit Strip(QWidget* parent);
    /// UTF-8. Without lines the strip takes no room. True where they are news.
    bool show_lines(const std::vector<std::string>& lines);
    /// Has a screen reader read it out.
    void announce();
    int height_at(int width) const;

  private:
    void paintEvent(QPaintEvent* event) override;
};

}  // namespace toolkit::qt
