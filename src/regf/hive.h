#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/error.h"
#include "regf/cell_offset.h"
#include "sealed_memory/sealed_memory.h"

/// Registry hive files ("regf"). A hive is held in memory as the image of its file and edited in place;
/// nothing here touches a disk (see hive_file.h). Whatever the bytes say, no read leaves the image and no
/// loop fails to end.
///
/// Names are UTF-16 code units, counted, with any content (NUL, lone surrogates); they compare without case,
/// unit by unit. Time stamps are FILETIMEs: steps of 100 ns since 1601-01-01 UTC.
namespace regf {

using base::Error;
using base::ErrorKind;
using base::Result;
using sealed_memory::Memory;

using Bytes = std::vector<uint8_t>;
using ByteView = std::span<const uint8_t>;
using FileTime = uint64_t;

enum ValueType : uint32_t {
    REG_NONE = 0,
    REG_SZ = 1,
    REG_EXPAND_SZ = 2,
    REG_BINARY = 3,
    REG_DWORD = 4,
    REG_DWORD_BIG_ENDIAN = 5,
    REG_LINK = 6,
    REG_MULTI_SZ = 7,
    REG_RESOURCE_LIST = 8,
    REG_FULL_RESOURCE_DESCRIPTOR = 9,
    REG_RESOURCE_REQUIREMENTS_LIST = 10,
    REG_QWORD = 11,
};

struct Value {
    uint32_t type = REG_NONE;  ///< one of ValueType, or any other number: carried along untouched
    Bytes data;
    bool operator==(const Value&) const = default;
};

/// The data of a text value, its closing NUL included. An odd byte at the end is none of the text's.
std::u16string units_of(ByteView data);
Bytes bytes_of(std::u16string_view units);

/// Names a key of one hive: the offset of its cell. Good until that key is deleted.
struct Key {
    CellOffset cell{};
    bool operator==(const Key&) const = default;
};

/// One thing asked of a hive. The list of them is what a commit holds the new image against.
struct Change {
    enum class Kind : uint8_t { create_key = 1, delete_key = 2, set_value = 3, delete_value = 4 };
    Kind kind;
    std::u16string path;  ///< of the key, from the root, parts joined by backslashes; empty: the root
    std::u16string name;  ///< of the value
    Value value;          ///< for set_value
    FileTime when = 0;
    bool operator==(const Change&) const = default;
};

/// One of the log files beside a hive (`X.LOG`, `X.LOG1`, `X.LOG2`), in this order.
struct Log {
    std::string name;  ///< for messages
    Bytes bytes;
};

/// One breach of a rule of the format.
struct Finding {
    enum class Level { error, warning };  ///< warning: Windows loads such a hive, but we never write one
    Level level;
    uint64_t file_offset;
    std::string text;
};

/// Everything that Windows checks when it loads a hive, and what keeps a hive healthy. At most `limit`
/// findings.
std::vector<Finding> validate(ByteView image, size_t limit = 100);

class Editor;

class Hive {
  public:
    /// Takes the bytes of a hive file. A dirty hive is recovered from its logs (then recovered() is true) or
    /// refused (`dirty`). A hive with errors that can still be read opens read-only: read_only_reason()
    /// tells. One in which two records claim the same cell is refused (`damaged`), as walking it might never
    /// end.
    static Result<Hive> open(Memory image, const std::vector<Log>& logs = {});
    static Result<Hive> open(ByteView image, const std::vector<Log>& logs = {});

    /// The descriptor of the memory, sealed, for another process that then need not examine it again; the
    /// hive keeps it. -1 where there is no such memory: the hive was recovered, or has something to be put
    /// right.
    int hand_over();
    /// Takes a descriptor over that hand_over() gave; none where it is no such memory.
    static std::optional<Hive> taken_over(int descriptor);

    struct NewHive {
        uint32_t minor_version = 3;  ///< 3: user hives of every NT; 5: machine hives of XP
        std::u16string root_name = u"$$$PROTO.HIV";
        std::u16string file_name;  ///< for the base block, its last 31 characters
        FileTime now = 0;
    };
    /// A hive with a root key and nothing else; owner Administrators, full control for them and for the
    /// system.
    static Hive create(const NewHive& what);

    Hive(Hive&&) noexcept;
    Hive& operator=(Hive&&) noexcept;
    ~Hive();

    /// The file as it lies in memory, edits included.
    ByteView bytes() const;
    bool recovered() const;
    /// Empty when the hive may be edited.
    const std::string& read_only_reason() const;
    uint32_t minor_version() const;

    Key root() const;
    /// One level down.
    std::optional<Key> find_subkey(Key parent, std::u16string_view name) const;
    /// `path` from the root, parts joined by backslashes; empty parts (a doubled or closing one) are passed
    /// over.
    std::optional<Key> find(std::u16string_view path) const;
    /// In the order of the file, which is ascending in a healthy hive. A list that cannot be read ends there.
    std::vector<Key> subkeys(Key key) const;

    std::u16string name(Key key) const;
    std::u16string class_name(Key key) const;
    FileTime last_written(Key key) const;
    uint16_t flags(Key key) const;
    /// The self-relative security descriptor.
    ByteView security(Key key) const;

    struct NamedValue {
        std::u16string name;  ///< empty: the default value
        uint32_t type;
        Bytes data;
        bool readable;  ///< false: the data's cells are damaged, `data` is empty
    };
    /// In the order of creation.
    std::vector<NamedValue> values(Key key) const;
    std::optional<Value> value(Key key, std::u16string_view name) const;

    /// Every edit first checks everything it will touch: a failure leaves the hive as it was. What is already
    /// so changes nothing, not even a time stamp. All refuse with `unsupported` on a read-only hive.

    /// Finds or makes one subkey; it shares the security descriptor of a sibling or else of its parent.
    Result<Key> create_subkey(Key parent, std::u16string_view name, FileTime now);
    /// Makes every missing level of `path`. `created` (may be null) tells whether the last one is new.
    Result<Key> create(std::u16string_view path, FileTime now, bool* created = nullptr);
    Result<Done> set_value(Key key, std::u16string_view name, const Value& value, FileTime now);
    /// `missing` where there is none.
    Result<Done> delete_value(Key key, std::u16string_view name, FileTime now);
    /// The key and everything below it. `refused` for the root and for keys marked as not to be deleted.
    Result<Done> delete_key(Key key, FileTime now);
    /// Does one of the above by path; what it needs and is not there is `missing`.
    Result<Done> apply(const Change& change);

    /// What was done since the hive was opened, in order; no-ops are not among it.
    const std::vector<Change>& changes() const;

    /// The bytes of the file as they were opened (recovered where they had to be), and as they are to be
    /// written. Both are good as long as the hive is not edited.
    struct Sealed {
        ByteView opened;
        ByteView image;
        /// Which pages of 4096 bytes differ, ascending; all others are the same bytes.
        std::vector<uint32_t> changed_pages;
        int differences;  ///< how many values and keys differ; all else are times and counters
    };
    /// Sets sequence numbers, time stamps and checksum, then reads the result afresh and holds it against the
    /// image as it was opened: the two differ in what `changes()` asked for and in nothing else. `damaged` if
    /// that does not hold (our own fault; nothing may be written then).
    Result<Sealed> seal(FileTime now);

  private:
    struct State;
    explicit Hive(std::unique_ptr<State> state);
    Result<Key> create_below(Key key, std::vector<std::u16string_view> names, FileTime now, bool* created);
    std::u16string path_of(Key key) const;
    uint32_t depth_of(Key key) const;
    static Result<Hive> open(std::unique_ptr<State> state);
    std::optional<Error> edit(const std::function<void(Editor&)>& work);
    std::optional<Error> refuse_edit(Key key, uint64_t size, uint64_t cells) const;
    std::unique_ptr<State> state_;
};

/// True if two names denote the same key or value: unit by unit, by the upper-case table of Windows.
bool same_name(std::u16string_view a, std::u16string_view b);

/// FILETIME of the system clock.
FileTime current_file_time();

}  // namespace regf
