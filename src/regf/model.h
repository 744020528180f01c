#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "regf/hive.h"
#include "regf/image.h"

namespace regf {

/// A hive as plain keys and values, with no cell in it: what a commit is judged by. Knows nothing of how
/// edits are done.
struct ModelKey {
    std::u16string name;
    std::u16string class_name;
    std::optional<ByteView> security;  ///< none: a new key, whose descriptor is not foretold
    uint16_t flags = 0;
    FileTime last_written = 0;
    struct ModelValue {
        std::u16string name;
        Value value;
        bool operator==(const ModelValue&) const = default;
    };
    std::vector<ModelValue> values;
    std::vector<std::unique_ptr<ModelKey>> subkeys;  ///< ascending
};

/// The image must be walkable and free of errors, and outlive the model, which looks into it.
std::unique_ptr<ModelKey> model_of(const Image& image);

/// Carries out one change. False where it does not fit the model.
bool apply_to_model(ModelKey& root, const Change& change);

/// Empty where both are the same; else the path of the first difference and what it is.
std::string first_difference(const ModelKey& expected, const ModelKey& found);

/// Values that are new, gone or have other content, and keys that are new or gone, each with all in it.
int count_differences(const ModelKey& before, const ModelKey& after);

}  // namespace regf
