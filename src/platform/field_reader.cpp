#include "platform/field_reader.h"

#include <algorithm>

#include "base/runtime_error.h"

namespace britlock {

std::string FieldReader::next() {
    if (at_end()) throw RuntimeError(62);
    skip_blanks();
    std::string field;
    if (rest_.starts_with('"')) {
        rest_.remove_prefix(1);
        const size_t close = std::min(rest_.find('"'), rest_.size());
        field = rest_.substr(0, close);
        rest_.remove_prefix(std::min(close + 1, rest_.size()));
        rest_.remove_prefix(std::min(rest_.find_first_of(",\r\n"), rest_.size()));
    } else {
        const size_t end = std::min(rest_.find_first_of(",\r\n"), rest_.size());
        field = rest_.substr(0, end);
        rest_.remove_prefix(end);
    }
    skip_delimiter();
    return field;
}

void FieldReader::skip_blanks() { rest_.remove_prefix(std::min(rest_.find_first_not_of(' '), rest_.size())); }

void FieldReader::skip_delimiter() {
    if (rest_.starts_with("\r\n")) {
        rest_.remove_prefix(2);
    } else if (!rest_.empty()) {
        rest_.remove_prefix(1);
    }
}

}  // namespace britlock
