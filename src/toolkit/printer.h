#pragma once

#include <string>
#include <string_view>

namespace toolkit {

/// A document on its way to the printer; what is not ended is thrown away. Lengths are twips from the upper
/// left corner of what the printer reaches. Lines follow each other down the page: where one no longer fits,
/// the next page begins. RuntimeError 482 where the printer is gone or refuses.
class Printer {
  public:
    virtual ~Printer() = default;

    struct Font {
        std::string name;
        int points = 0;
        bool bold = false;
    };
    virtual void set_font(const Font& font) = 0;
    /// The horizontal coordinate of the corner; -1000 leaves a margin of a thousand twips.
    virtual void set_left(int twips) = 0;
    /// Goes on in the line. Words that run over the edge of the paper are lost.
    virtual void print(std::string_view ansi) = 0;
    /// Goes to a column, counted from 1 in the average character width of the font; on the next line where
    /// this one is beyond it.
    virtual void tab(int column) = 0;
    virtual void end_line() = 0;
    /// Puts the next text anywhere on the page, below the last line too.
    virtual void set_position(int x, int y) = 0;
    virtual void new_page() = 0;
    /// Hands the document over.
    virtual void end_document() = 0;
};

}  // namespace toolkit
