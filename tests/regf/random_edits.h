#pragma once

#include <gtest/gtest.h>

#include <random>

#include "regf/hive.h"

namespace regf {

/// Edits of one hive, drawn at random; each is looked up at once.
class RandomEdits {
  public:
    /// `half_names`: names that are no text, with halves of surrogate pairs, are drawn as well.
    RandomEdits(Hive& hive, std::mt19937& random, bool half_names = false) : hive_(hive), random_(random) {
        if (half_names) parts_.insert(parts_.end(), {u"\xD81D", u"key\xDC00", {u'a', 0, u'\n'}});
    }

    void edit() {
        const Key key = any_key();
        const size_t choice = draw(100);
        ++now_;
        if (choice < 30) {
            create(key, any_name());
        } else if (choice < 32) {
            for (size_t i = draw(600); i > 0; --i)
                create(key, any_name() + static_cast<char16_t>(0x100 + i));
        } else if (choice < 75) {
            set(key, any_value_name(key));
        } else if (choice < 88) {
            const std::u16string name = any_value_name(key);
            const bool there = hive_.value(key, name).has_value();
            EXPECT_EQ(hive_.delete_value(key, name, now_).ok(), there);
            EXPECT_FALSE(hive_.value(key, name));
        } else if (key != hive_.root()) {
            ASSERT_TRUE(hive_.delete_key(key, now_));
        }
    }

  private:
    size_t draw(size_t count) { return random_() % count; }
    template <class Things>
    auto& any_of(const Things& things) {
        return things[draw(std::size(things))];
    }

    Key any_key() {
        Key key = hive_.root();
        for (size_t depth = draw(7); depth > 0; --depth) {
            const auto children = hive_.subkeys(key);
            if (!children.empty()) key = any_of(children);
        }
        return key;
    }
    /// Often one that differs from another in its case only.
    std::u16string any_name() {
        std::u16string name;
        for (size_t i = draw(3) + 1; i > 0; --i)
            name += any_of(parts_);
        return draw(50) == 0 ? name + std::u16string(200, u'l') : name;
    }
    std::u16string any_value_name(Key key) {
        const auto values = hive_.values(key);
        if (!values.empty() && draw(2) == 0) return any_of(values).name;
        return draw(8) == 0 ? std::u16string() : any_name();
    }
    void create(Key parent, const std::u16string& name) {
        const Key made = must(hive_.create_subkey(parent, name, now_));
        EXPECT_EQ(hive_.find_subkey(parent, name), made);
    }
    void set(Key key, const std::u16string& name) {
        static constexpr size_t sizes[] = {0, 3, 4, 5, 12, 100, 4090, 16343, 16344, 16345, 32688, 81725};
        Value value{static_cast<uint32_t>(draw(13)), Bytes(draw(3) == 0 ? any_of(sizes) : draw(60))};
        for (uint8_t& byte : value.data)
            byte = static_cast<uint8_t>(random_());
        ASSERT_TRUE(hive_.set_value(key, name, value, now_));
        EXPECT_EQ(hive_.value(key, name), value);
    }

    Hive& hive_;
    std::mt19937& random_;
    FileTime now_ = 1000;
    // clang-format off
    std::vector<std::u16string> parts_ = {u"a", u"A", u"Key ", u"key ", u"\u00e4\u00f6\u00fc", u"\u00c4\u00d6\u00dc",
        u"\u00df", u"\u00ff", u"\u0178", u"(x)", u"\u03a9\u03c9", u"\u0436", u"\u6f22", u"\U0001F511", u"0", u"/", u"\u0131"};
    // clang-format on
};

}  // namespace regf
