#pragma once

#include <string>
#include <string_view>

namespace britlock {

/// Reads comma-separated text field by field, as Basic's Input # does. A field ends at a comma or a line end;
/// blanks before it are skipped; one in quotes holds commas and line breaks raw, nothing is escaped. Byte 1A
/// is the end of the file.
class FieldReader {
  public:
    explicit FieldReader(std::string_view bytes) : rest_(bytes.substr(0, bytes.find('\x1A'))) {}

    bool at_end() const { return rest_.empty(); }
    /// RuntimeError 62 past the end.
    std::string next();

  private:
    void skip_blanks();
    void skip_delimiter();

    std::string_view rest_;
};

}  // namespace britlock
