#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "regf/hive.h"
#include "regf/image.h"

namespace regf {

/// What a hive should hold after some changes, as keys and values: what a commit is judged by. Knows nothing
/// of how edits are done. A key is read from the opened image when a change comes near it; what no change
/// comes near stays the cell it is.
class Model {
  public:
    struct Value {
        std::u16string name;
        CellOffset cell;  ///< as opened; nil: set since
        std::optional<regf::Value> set_since;
    };
    struct Key;
    struct Child {
        CellOffset cell;           ///< as opened; nil: a new key
        std::unique_ptr<Key> key;  ///< none: as it was opened
    };
    struct Key {
        CellOffset cell = nil;  ///< as opened; nil: a new key
        CellOffset was = nil;   ///< of a new key: the one of its path that was deleted
        std::u16string name;
        std::u16string class_name;
        std::optional<ByteView> security;  ///< none: a new key, whose descriptor is not foretold
        uint16_t flags = 0;
        FileTime last_written = 0;
        std::vector<Value> values;
        std::vector<Child> subkeys;    ///< ascending
        std::vector<CellOffset> gone;  ///< subkeys that were deleted
    };

    /// The image must be free of errors and outlive the model, which looks into it.
    explicit Model(const Image& opened);

    /// Carries out one change. False where it does not fit.
    bool apply(const Change& change);
    /// Reads all keys, so that all are compared.
    void read_everything();

    /// Empty where `image` holds the same; else the path of the first difference and what it is. `met` is
    /// told of each key that was read or is new, with its cell there and that of its parent.
    using Met = std::function<void(const Key& key, CellOffset cell, CellOffset parent)>;
    std::string first_difference(const Image& image, const Met& met = {}) const;

    /// How many values are new, gone or have other content, and how many keys are new or gone, each with all
    /// in it.
    int count_differences() const;

  private:
    std::unique_ptr<Key> read_key(CellOffset offset) const;
    Key* read_child(Child& child) const;
    void read_below(Key& key);
    int compare(const Child& child, std::u16string_view name) const;
    std::vector<Child>::iterator place_of(Key& key, std::u16string_view name) const;
    Key* child_of(Key& key, std::u16string_view name) const;
    CellOffset deleted_child(const Key& parent, std::u16string_view name) const;
    bool create(Key& parent, std::u16string_view name, FileTime when);
    bool remove(Key& parent, std::u16string_view name, FileTime when);
    bool change_values(Key& key, const Change& change);
    regf::Value value_of(const Value& value) const;
    std::string difference_in_one(const Key& key, const Image& image, CellOffset found) const;
    std::string difference_in_values(const Key& key, const Image& image, CellOffset found) const;
    std::string difference_below(const Key& key, const Image& image, CellOffset found, CellOffset parent,
                                 const Met& met) const;
    int size_of_opened(CellOffset offset) const;
    int size_of(const Key& key) const;
    int differences_in(const Key& key) const;
    int differences_in_values(const Key& key, CellOffset before) const;

    const Image& opened_;
    std::unique_ptr<Key> root_;
};

}  // namespace regf
