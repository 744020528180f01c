#include "regf/hive.h"

#include <algorithm>
#include <ctime>
#include <functional>
#include <map>

#include "regf/bytes.h"
#include "regf/commit_check.h"
#include "regf/editor.h"
#include "regf/examine.h"
#include "regf/image.h"
#include "regf/layout.h"
#include "regf/records.h"
#include "regf/recovery.h"
#include "sealed_memory/sealed_memory.h"

namespace regf {

struct Hive::State {
    explicit State(Image as_opened) : image(std::move(as_opened)) {}

    Image image;
    std::optional<Image> opened;  ///< as it was, recovered where it had to be; none before the first edit
    bool recovered = false;
    std::string read_only_reason;
    std::vector<Change> changes;
    /// Where the last path that was looked for leads: what is read or written in one key comes in a row. It
    /// holds as long as no key comes or goes.
    struct Found {
        std::u16string path;
        Key key;
    };
    std::optional<Found> last_found;
    /// What a file says of how many keys share a security record is not believed: too high a number would
    /// wrap when a key is added, and a record in use be given back with the next key that goes.
    std::map<CellOffset, uint32_t> corrected_counts;

    std::optional<CellView> key(Key key) const { return key_record(image, key.cell); }

    void begin_editing() {
        if (opened) return;
        opened.emplace(image.memory(), image.cells());
        for (const auto& [cell, users] : corrected_counts)
            put32(image.cell_at(cell).value(), sk::reference_count, users);
    }
};

namespace {

constexpr uint32_t oldest_readable = 2;  // before, cells had another layout
constexpr uint32_t oldest_writable = 3;
constexpr uint32_t newest_writable = 5;

/// The parts of a path; a doubled or a closing backslash makes none.
std::vector<std::u16string_view> parts_of(std::u16string_view path) {
    std::vector<std::u16string_view> out;
    while (!path.empty()) {
        const size_t end = std::min(path.find(u'\\'), path.size());
        if (end > 0) out.push_back(path.substr(0, end));
        path.remove_prefix(std::min(end + 1, path.size()));
    }
    return out;
}

std::string why_read_only(const Image& image, const Examination& examination) {
    if (const Finding* error = examination.first_error()) return "the hive is damaged " + describe(*error);
    const uint32_t minor = image.minor_version();
    if (minor < oldest_writable || minor > newest_writable) {
        return "hives of version 1." + std::to_string(minor) + " are not written";
    }
    return "";
}

std::map<CellOffset, uint32_t> wrong_counts(const Image& image, const Examination& examination) {
    std::map<CellOffset, uint32_t> wrong;
    for (const auto& [cell, users] : examination.security_users) {
        if (get32(image.cell_at(cell).value(), sk::reference_count) != users) wrong.emplace(cell, users);
    }
    return wrong;
}

}  // namespace

Hive::Hive(std::unique_ptr<State> state) : state_(std::move(state)) {}
Hive::Hive(Hive&&) noexcept = default;
Hive& Hive::operator=(Hive&&) noexcept = default;
Hive::~Hive() = default;

Result<Hive> Hive::open(ByteView bytes, const std::vector<Log>& logs) {
    return open(Memory::holding(bytes), logs);
}

Result<Hive> Hive::open(Memory memory, const std::vector<Log>& logs) {
    auto state = std::make_unique<State>(Image(std::make_shared<const Memory>(std::move(memory))));
    const ByteView bytes = state->image.bytes();
    if (is_clean(bytes)) return open(std::move(state));
    const auto recovered = recover(bytes, logs);
    if (!recovered && !has_signature(bytes, "regf"))
        return Error{ErrorKind::not_a_hive, "not a registry hive"};
    if (!recovered) return recovered.error();
    state = std::make_unique<State>(Image(std::make_shared<const Memory>(Memory::holding(*recovered))));
    state->recovered = true;
    return open(std::move(state));
}

Result<Hive> Hive::open(std::unique_ptr<State> state) {
    const ByteView bytes = state->image.bytes();
    if (get32(bytes, base_block::major) != 1 || get32(bytes, base_block::minor) < oldest_readable) {
        return Error{ErrorKind::unsupported, "hives of this version are not read"};
    }
    const Examination examination = examine(state->image, 1);
    if (!examination.walkable) {
        return Error{ErrorKind::damaged, "the hive is damaged " + describe(*examination.first_error())};
    }
    state->read_only_reason = why_read_only(state->image, examination);
    if (state->read_only_reason.empty()) state->corrected_counts = wrong_counts(state->image, examination);
    return Hive(std::move(state));
}

int Hive::hand_over() {
    const bool as_in_file =
        !state_->recovered && state_->read_only_reason.empty() && state_->corrected_counts.empty();
    if (!as_in_file || state_->opened) return -1;
    state_->image.append_survey();
    state_->image.memory()->seal();
    return state_->image.memory()->descriptor();
}

std::optional<Hive> Hive::taken_over(int descriptor) {
    auto memory = Memory::sealed_by_another(descriptor);
    if (!memory) return std::nullopt;
    auto image = Image::surveyed(std::make_shared<const Memory>(std::move(*memory)));
    if (!image) return std::nullopt;
    return Hive(std::make_unique<State>(std::move(*image)));
}

ByteView Hive::bytes() const { return state_->image.bytes(); }
bool Hive::recovered() const { return state_->recovered; }
const std::string& Hive::read_only_reason() const { return state_->read_only_reason; }
uint32_t Hive::minor_version() const { return state_->image.minor_version(); }
const std::vector<Change>& Hive::changes() const { return state_->changes; }

// --- reading

std::u16string units_of(ByteView data) { return NameView{data}.text(); }

Bytes bytes_of(std::u16string_view units) {
    Bytes data(units.size() * 2);
    for (size_t i = 0; i < units.size(); ++i)
        put16(data, i * 2, units[i]);
    return data;
}

Key Hive::root() const { return {state_->image.root()}; }

std::optional<Key> Hive::find_subkey(Key parent, std::u16string_view name) const {
    const auto record = state_->key(parent);
    const bool in_order = state_->read_only_reason.empty();
    const auto found = record ? regf::find_subkey(state_->image, *record, name, in_order) : std::nullopt;
    return found ? std::optional(Key{*found}) : std::nullopt;
}

std::optional<Key> Hive::find(std::u16string_view path) const {
    if (state_->last_found && state_->last_found->path == path) return state_->last_found->key;
    Key key = root();
    for (const std::u16string_view part : parts_of(path)) {
        const auto next = find_subkey(key, part);
        if (!next) return std::nullopt;
        key = *next;
    }
    state_->last_found = {std::u16string(path), key};
    return key;
}

std::vector<Key> Hive::subkeys(Key key) const {
    std::vector<Key> out;
    if (const auto record = state_->key(key)) {
        for (CellOffset offset : subkey_offsets(state_->image, *record))
            out.push_back({offset});
    }
    return out;
}

std::u16string Hive::name(Key key) const {
    const auto record = state_->key(key);
    return record ? key_name(*record).text() : std::u16string();
}

std::u16string Hive::class_name(Key key) const {
    const auto record = state_->key(key);
    return record ? class_name_of(state_->image, *record).value_or(u"") : std::u16string();
}

FileTime Hive::last_written(Key key) const {
    const auto record = state_->key(key);
    return record ? get64(*record, nk::last_written) : 0;
}

uint16_t Hive::flags(Key key) const {
    const auto record = state_->key(key);
    return record ? get16(*record, nk::flags) : uint16_t{0};
}

ByteView Hive::security(Key key) const {
    const auto record = state_->key(key);
    if (!record) return {};
    return security_descriptor(state_->image, get_cell(*record, nk::security)).value_or(ByteView());
}

std::vector<Hive::NamedValue> Hive::values(Key key) const {
    std::vector<NamedValue> out;
    const auto record = state_->key(key);
    if (!record) return out;
    const ValueList list = value_list(state_->image, *record);
    for (size_t i = 0; i < list.count; ++i) {
        const auto value = value_record(state_->image, list.value(i));
        if (!value) continue;
        auto data = value_data(state_->image, *value);
        out.push_back(
            {value_name(*value).text(), value_type(*value), data.value_or(Bytes{}), data.has_value()});
    }
    return out;
}

std::optional<Value> Hive::value(Key key, std::u16string_view name) const {
    const auto record = state_->key(key);
    const auto at = record ? find_value(state_->image, *record, name) : std::nullopt;
    if (!at) return std::nullopt;
    const CellView found = *value_record(state_->image, *at);
    auto data = value_data(state_->image, found);
    if (!data) return std::nullopt;
    return Value{value_type(found), std::move(*data)};
}

// --- edits

namespace {

/// What the lists of one key can take, written anew at their longest.
constexpr uint64_t longest_lists = uint64_t{1} << 20;

Error missing(const std::string& what) { return {ErrorKind::missing, what}; }

bool is_key_name(std::u16string_view name) {
    return !name.empty() && name.size() <= longest_key_name && name.find(u'\\') == std::u16string_view::npos;
}

}  // namespace

std::u16string Hive::path_of(Key key) const {
    std::u16string path;
    for (CellOffset at = key.cell; at != state_->image.root();) {
        const CellView record = key_record(state_->image, at).value();
        if (!path.empty()) path.insert(0, 1, u'\\');
        path.insert(0, key_name(record).text());
        at = get_cell(record, nk::parent);
    }
    return path;
}

uint32_t Hive::depth_of(Key key) const {
    uint32_t depth = 1;
    for (CellOffset at = key.cell; at != state_->image.root();
         at = get_cell(key_record(state_->image, at).value(), nk::parent))
        ++depth;
    return depth;
}

/// What every edit of a key asks first: may the hive be written, is the key there, is room for `size` bytes
/// in `cells` cells?
std::optional<Error> Hive::refuse_edit(Key key, uint64_t size, uint64_t cells) const {
    if (!state_->read_only_reason.empty()) return Error{ErrorKind::unsupported, state_->read_only_reason};
    const auto record = state_->key(key);
    if (!record) return missing("no such key");
    if (get16(*record, nk::flags) & (nk::predefined_handle | nk::is_mount_point)) {
        return Error{ErrorKind::refused, "a key that belongs to another hive"};
    }
    if (!state_->image.has_room_for(size, cells))
        return Error{ErrorKind::no_space, "a hive cannot grow beyond 2 GiB"};
    return std::nullopt;
}

/// An edit that meets a cell where there is none closes the hive: nothing of it is ever written.
std::optional<Error> Hive::edit(const std::function<void(Editor&)>& work) {
    try {
        state_->begin_editing();
        Editor editor(state_->image);
        work(editor);
        return std::nullopt;
    } catch (const std::bad_optional_access&) {
        state_->read_only_reason = "the hive is damaged where it was to be changed";
        return Error{ErrorKind::damaged, state_->read_only_reason};
    }
}

Result<Key> Hive::create_subkey(Key parent, std::u16string_view name, FileTime now) {
    return create_below(parent, {name}, now, nullptr);
}

Result<Key> Hive::create(std::u16string_view path, FileTime now, bool* created) {
    return create_below(root(), parts_of(path), now, created);
}

Result<Key> Hive::create_below(Key key, std::vector<std::u16string_view> names, FileTime now, bool* created) {
    if (auto error = refuse_edit(key, 0, 0)) return *error;
    auto missing_from = names.begin();
    for (; missing_from != names.end(); ++missing_from) {
        const auto next = find_subkey(key, *missing_from);
        if (!next) break;
        key = *next;
    }
    names.erase(names.begin(), missing_from);
    if (created) *created = false;
    if (names.empty()) return key;

    for (const std::u16string_view name : names) {
        if (!is_key_name(name)) return Error{ErrorKind::invalid, "not a name for a key: " + printable(name)};
    }
    if (auto error = refuse_edit(key, names.size() * longest_lists, names.size() * 6)) return *error;
    if (depth_of(key) + names.size() > deepest_level)
        return Error{ErrorKind::invalid, "no key can lie below 512 levels"};
    state_->last_found.reset();
    for (const std::u16string_view name : names) {
        const auto add = [&](Editor& editor) { key = {editor.add_key(key.cell, name, now)}; };
        if (auto error = edit(add)) return *error;
        state_->changes.push_back({Change::Kind::create_key, path_of(key), {}, {}, now});
    }
    if (created) *created = true;
    return key;
}

Result<Done> Hive::set_value(Key key, std::u16string_view name, const Value& value, FileTime now) {
    if (name.size() > longest_value_name) return Error{ErrorKind::invalid, "a value's name is too long"};
    if (minor_version() < db::first_minor_version && value.data.size() > largest_single_cell)
        return Error{ErrorKind::invalid, "a value of more than 1 MB in a hive of the standard format"};
    if (auto error = refuse_edit(key, 0, 0)) return *error;
    if (this->value(key, name) == value) return Done{};
    const uint64_t list_bytes = uint64_t{get32(*state_->key(key), nk::value_count)} * 8;
    const uint64_t segments = value.data.size() / db::segment_data + 1;
    if (auto error = refuse_edit(key, list_bytes + value.data.size() + name.size() * 2, segments + 5))
        return *error;
    if (auto error = edit([&](Editor& editor) { editor.set_value(key.cell, name, value, now); }))
        return *error;
    state_->changes.push_back({Change::Kind::set_value, path_of(key), std::u16string(name), value, now});
    return Done{};
}

Result<Done> Hive::delete_value(Key key, std::u16string_view name, FileTime now) {
    if (auto error = refuse_edit(key, 0, 0)) return *error;
    const auto at = find_value(state_->image, *state_->key(key), name);
    if (!at) return missing("no value " + printable(name));
    if (auto error = edit([&](Editor& editor) { editor.remove_value(key.cell, *at, now); })) return *error;
    state_->changes.push_back({Change::Kind::delete_value, path_of(key), std::u16string(name), {}, now});
    return Done{};
}

Result<Done> Hive::delete_key(Key key, FileTime now) {
    if (auto error = refuse_edit(key, 0, 0)) return *error;
    if (key == root()) return Error{ErrorKind::refused, "the root of a hive cannot be deleted"};
    std::vector<Key> doomed{key};
    for (size_t i = 0; i < doomed.size(); ++i) {
        if (flags(doomed[i]) & (nk::no_delete | nk::is_mount_point | nk::predefined_handle)) {
            return Error{ErrorKind::refused,
                         "the key " + printable(path_of(doomed[i])) + " may not be deleted"};
        }
        const auto below = subkeys(doomed[i]);
        doomed.insert(doomed.end(), below.begin(), below.end());
    }
    Change change{Change::Kind::delete_key, path_of(key), {}, {}, now};
    state_->last_found.reset();
    if (auto error = edit([&](Editor& editor) { editor.remove_key(key.cell, now); })) return *error;
    state_->changes.push_back(std::move(change));
    return Done{};
}

Result<Done> Hive::apply(const Change& change) {
    if (change.kind == Change::Kind::create_key) {
        auto made = create(change.path, change.when);
        return made ? Result<Done>(Done{}) : Result<Done>(made.error());
    }
    const auto key = find(change.path);
    if (!key) return missing("no key " + printable(change.path));
    switch (change.kind) {
        case Change::Kind::set_value:
            return set_value(*key, change.name, change.value, change.when);
        case Change::Kind::delete_value:
            return delete_value(*key, change.name, change.when);
        case Change::Kind::delete_key:
            return delete_key(*key, change.when);
        case Change::Kind::create_key:
            break;
    }
    return Error{ErrorKind::invalid, "not a change"};
}

// --- sealing

Result<Hive::Sealed> Hive::seal(FileTime now) {
    if (!state_->read_only_reason.empty()) return Error{ErrorKind::unsupported, state_->read_only_reason};
    state_->begin_editing();
    const Image& opened = *state_->opened;
    const auto head = state_->image.base_block();
    const uint32_t sequence = std::max(get32(opened.base_block(), base_block::primary_sequence),
                                       get32(opened.base_block(), base_block::secondary_sequence)) +
                              1;
    put32(head, base_block::primary_sequence, sequence);
    put32(head, base_block::secondary_sequence, sequence);
    if (get64(head, base_block::last_written) != 0)  // later systems leave it at 0, and that of the first bin
        put64(head, base_block::last_written, now);
    state_->image.set_time_of_first_bin(now);
    put32(head, base_block::checksum, base_block_checksum(head));

    Sealed sealed{opened.bytes(), state_->image.bytes(), state_->image.touched_pages(), 0};
    std::erase_if(sealed.changed_pages, [&](uint32_t page) {
        const size_t at = size_t{page} * bin_unit;
        return at + bin_unit <= sealed.opened.size() &&
               std::ranges::equal(sealed.opened.subspan(at, bin_unit), sealed.image.subspan(at, bin_unit));
    });
    const Verdict verdict =
        judge({opened, state_->image, sealed.changed_pages, state_->changes, state_->corrected_counts});
    sealed.differences = verdict.differences;
    if (verdict.fault.empty()) return sealed;
    return Error{ErrorKind::damaged,
                 "the new hive would differ in more than was asked for, or be damaged: " + verdict.fault};
}

FileTime current_file_time() {
    constexpr uint64_t steps_per_second = 10'000'000;
    constexpr uint64_t seconds_from_1601_to_1970 = 11'644'473'600;
    std::timespec now{};
    (void)std::timespec_get(&now, TIME_UTC);
    return (static_cast<uint64_t>(now.tv_sec) + seconds_from_1601_to_1970) * steps_per_second +
           static_cast<uint64_t>(now.tv_nsec) / 100;
}

}  // namespace regf
