#pragma once

#include "toolkit/printer.h"

namespace toolkit {

/// A printer of pages: how lines follow each other down them, which is alike on all paper. A renderer draws.
/// Lengths are twips.
class PagePrinter : public Printer {
  public:
    void set_left(int twips) final { left_ = -twips; }
    void print(std::string_view ansi) final;
    void tab(int column) final;
    void end_line() final;
    void set_position(int x, int y) final;
    void new_page() final;

  protected:
    /// Of the font that is set.
    struct Metrics {
        double line_height;
        double character_width;  ///< on average
    };
    virtual Metrics metrics() = 0;
    /// Draws a text whose upper left corner is there; its width.
    virtual double draw(double x, double y, std::string_view ansi) = 0;
    virtual void turn_page() = 0;

  private:
    void make_room();

    double left_ = 0;
    double x_ = 0, y_ = 0;  // x_ from the beginning of the line
    bool placed_ = false;   // the next text stands where it was put, on whatever page this is
};

}  // namespace toolkit
