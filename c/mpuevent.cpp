// The C interface: nothing of C++ crosses it, exceptions included.
#include "c/mpuevent.h"

#include "capture/Input.h"
#include "formats/Columns.h"
#include "formats/Objects.h"
#include "platform/trace/ProviderTraceServices.h"

#include <algorithm>
#include <cerrno>
#include <fmt/format.h>
#include <memory_resource>
#include <mutex>
#include <system_error>

using namespace Pegasus;
using namespace Pegasus::capture;
using namespace Pegasus::formats;

namespace {

constexpr std::size_t kColumnCount = std::size(kColumns);
constexpr std::size_t kBatchEvents = 1024;
constexpr std::size_t kBatchBytes = std::size_t{8} << 20; // of texts and records, but for one event
constexpr std::size_t kMaxDamage = 65536;
// Epochs that give every timestamp a year of four digits.
constexpr std::int64_t kFirstEpoch = -62167219200; // 0000-01-01
constexpr std::int64_t kLastEpoch = 253402300799 - std::int64_t{UINT32_MAX};

constexpr auto kPublicColumns = [] {
    std::array<mpuevent_column, kColumnCount> all{};
    for (std::size_t i = 0; i < kColumnCount; ++i)
        all[i] = {kColumns[i].name, kColumns[i].meaning,
                  kColumns[i].text     ? MPUEVENT_TEXT
                  : kColumns[i].number ? MPUEVENT_UINT32
                                       : MPUEVENT_UINT64};
    return all;
}();

static_assert(int{BodyItem::Text} == MPUEVENT_FIELD_TEXT &&
              int{BodyItem::Element} == MPUEVENT_FIELD_ELEMENT &&
              int{BodyItem::Group} == MPUEVENT_FIELD_GROUP &&
              int{BodyItem::End} == MPUEVENT_FIELD_END);

thread_local std::string lastError;

mpuevent_status fail(mpuevent_status status, std::string_view why) {
    lastError = why;
    return status;
}

template <class Call>
mpuevent_status guarded(Call call) noexcept {
    try {
        return call();
    } catch (const std::bad_alloc&) {
        lastError = "out of memory"; // short enough to need none
        return MPUEVENT_NO_MEMORY;
    } catch (...) {
        lastError = "internal error";
        return MPUEVENT_INTERNAL;
    }
}

// What readers and their batches have in common.
struct Settings {
    std::string name; // of the input
    DecodeOptions decoding;
};

struct Details {
    std::vector<mpuevent_field> fields;
    std::vector<mpuevent_object> objects;
};

// Finds the details of one event after the other.
struct DetailFinder {
    explicit DetailFinder(DecodeOptions options) : decoder((options.fieldBasis = true, options)) {}

    EventDecoder decoder;
    ObjectFinder objects;
};

} // namespace

struct mpuevent_batch {
    explicit mpuevent_batch(std::shared_ptr<const Settings> of) : settings(std::move(of)) {}

    bool isEmpty() const { return records.empty() && damage.empty(); }
    void add(const DecodedEvent& event, std::span<const std::uint8_t> record);
    void add(const Damage& found);
    void addFault(std::uint64_t position, std::string_view what);
    void finish();
    const Details& detailsOf(std::size_t event);

    struct Column {
        std::vector<std::uint32_t> numbers;
        std::vector<std::uint64_t> numbers64;
        std::vector<mpuevent_text> texts;
    };
    std::array<Column, kColumnCount> columns;
    std::vector<std::span<const std::uint8_t>> records;
    std::vector<mpuevent_damage> damage;
    std::uint64_t untold = 0; // faults after kMaxDamage
    std::size_t bytes = 0;    // of texts and records

private:
    char* keep(const void* from, std::size_t size);
    mpuevent_text keep(std::string_view text) {
        return {keep(text.data(), text.size()), text.size()};
    }

    const std::shared_ptr<const Settings> settings;
    std::pmr::monotonic_buffer_resource memory;
    std::mutex mutex; // guards the memory once the batch is handed out, and what follows
    std::unique_ptr<DetailFinder> finder;
    std::vector<std::unique_ptr<Details>> details; // of those events whose were asked for
};

struct mpuevent_reader {
    mpuevent_reader(const char* path, const mpuevent_options& options, InputHints hints);

    mpuevent_status failure() const;
    mpuevent_status next(mpuevent_batch** result);

    const std::shared_ptr<const Settings> settings;
    const std::size_t batchEvents;
    const InputFile file;
    FileSource bytes;
    EventDecoder decoder;
    std::unique_ptr<mpuevent_batch> batch; // that is being filled; null when memory ran out
    std::optional<Input> input;            // null when the file can't be opened
    bool hasEnded = false;
};

// With a zero byte after it.
char* mpuevent_batch::keep(const void* from, std::size_t size) {
    char* const kept = static_cast<char*>(memory.allocate(size + 1, 1));
    if (size != 0)
        std::memcpy(kept, from, size);
    kept[size] = '\0';
    bytes += size + 1;
    return kept;
}

void mpuevent_batch::add(const DecodedEvent& event, std::span<const std::uint8_t> record) {
    for (std::size_t i = 0; i < kColumnCount; ++i) {
        Column& column = columns[i];
        if (kColumns[i].number) {
            column.numbers.push_back(event.*kColumns[i].number);
        } else if (kColumns[i].number64) {
            column.numbers64.push_back(event.*kColumns[i].number64);
        } else {
            const std::string_view text = event.*kColumns[i].text;
            const bool isSame =
                !column.texts.empty() &&
                text == std::string_view(column.texts.back().data, column.texts.back().size);
            column.texts.push_back(isSame ? column.texts.back() : keep(text));
        }
    }
    const char* const kept = keep(record.data(), record.size());
    records.emplace_back(reinterpret_cast<const std::uint8_t*>(kept), record.size());
}

void mpuevent_batch::add(const Damage& found) {
    if (damage.size() == kMaxDamage)
        ++untold;
    else
        damage.push_back({found.offset, found.passedOver, found.resumed, 0, keep(found.reason),
                          keep(found.str())});
}

void mpuevent_batch::addFault(std::uint64_t position, std::string_view what) {
    if (damage.size() == kMaxDamage) {
        ++untold;
        return;
    }
    const mpuevent_text text = keep(what);
    damage.push_back({position, 0, true, 1, text, text});
}

void mpuevent_batch::finish() {
    if (untold == 0)
        return;
    const mpuevent_text text = keep(fmt::format("{} more faults", untold));
    damage.push_back({damage.back().offset, 0, true, 1, text, text});
}

const Details& mpuevent_batch::detailsOf(std::size_t index) {
    const std::lock_guard lock(mutex);
    details.resize(records.size());
    if (details[index])
        return *details[index];
    if (!finder)
        finder = std::make_unique<DetailFinder>(settings->decoding);
    const DecodedEvent& event = finder->decoder.decode(records[index]);
    const std::vector<ObjectReference>& objects = finder->objects.of(event);
    const std::vector<BodyItem>& items = finder->objects.items();
    auto found = std::make_unique<Details>();
    for (std::size_t i = 0; i < items.size(); ++i) {
        const FieldBasis basis = event.fields.empty() ? FieldBasis() : event.fields[i];
        found->fields.push_back({static_cast<mpuevent_field_kind>(items[i].type),
                                 keep(items[i].name), keep(items[i].text),
                                 keep(nameOf(basis.layout)), basis.missingBytes});
    }
    for (const ObjectReference& object : objects) {
        const bool isDrive = object.kind == DriveKind;
        found->objects.push_back(
            {keep(kObjectKinds[object.kind].name), keep(object.id), object.isAssumed,
             keep(isDrive ? finder->objects.model() : std::string_view()),
             keep(isDrive ? finder->objects.serialNumber() : std::string_view())});
    }
    details[index] = std::move(found);
    return *details[index];
}

namespace {

std::shared_ptr<const Settings> settingsOf(const char* path, const mpuevent_options& options) {
    Settings settings{path, {}};
    settings.decoding.knownOnly = options.known_only != 0;
    if (options.has_epoch != 0)
        settings.decoding.time.epoch = options.epoch;
    return std::make_shared<const Settings>(std::move(settings));
}

} // namespace

mpuevent_reader::mpuevent_reader(const char* path, const mpuevent_options& options,
                                 InputHints hints)
    : settings(settingsOf(path, options)),
      batchEvents(options.batch_events != 0 ? options.batch_events : kBatchEvents), file(path),
      bytes(file.descriptor()), decoder(settings->decoding),
      batch(std::make_unique<mpuevent_batch>(settings)) {
    if (file.error() == 0)
        input.emplace(
            bytes, hints,
            [this](const std::string& what) {
                batch->addFault(input ? input->position() : 0, what);
            },
            [this](const Damage& damage) { batch->add(damage); },
            ByteRange{options.begin, options.end});
}

// Of opening or reading the file; the end if there is none.
mpuevent_status mpuevent_reader::failure() const {
    const std::string& name = settings->name;
    const bool isRefused = input && !input->recognised().refusal().empty();
    const int error = input ? bytes.failure() : file.error();
    if (error == 0)
        return isRefused ? fail(MPUEVENT_NO_CAPTURE,
                                fmt::format("{}: {}", name, input->recognised().refusal()))
                         : MPUEVENT_END;
    const std::string reason = std::generic_category().message(error);
    fail(MPUEVENT_IO, input && !isRefused
                          ? fmt::format("{}: offset {}: {}", name, input->position(), reason)
                          : fmt::format("{}: {}", name, reason));
    errno = error;
    return MPUEVENT_IO;
}

mpuevent_status mpuevent_reader::next(mpuevent_batch** result) {
    if (!batch)
        throw std::bad_alloc();
    try {
        Message message;
        while (!hasEnded && batch->records.size() < batchEvents && batch->bytes < kBatchBytes) {
            if (input->next(message))
                batch->add(decoder.decode(message.record, {settings->name, message.offset}),
                           message.record);
            else
                hasEnded = true;
        }
        if (batch->isEmpty())
            return failure();
        batch->finish();
        auto following = std::make_unique<mpuevent_batch>(settings);
        *result = batch.release();
        batch = std::move(following);
        return MPUEVENT_OK;
    } catch (...) {
        batch.reset();
        throw;
    }
}

// ---- the functions ------------------------------------------------------------------------------

const char* mpuevent_version() {
    return MPUEVENT_VERSION;
}

const char* mpuevent_last_error() {
    return lastError.c_str();
}

size_t mpuevent_column_count() {
    return kColumnCount;
}

const mpuevent_column* mpuevent_column_at(size_t column) {
    return column < kColumnCount ? &kPublicColumns[column] : nullptr;
}

size_t mpuevent_column_find(const char* name) {
    const auto* const found =
        std::find_if(kPublicColumns.begin(), kPublicColumns.end(), [&](const mpuevent_column& one) {
            return std::string_view(one.name) == name;
        });
    return static_cast<size_t>(found - kPublicColumns.begin());
}

mpuevent_status mpuevent_open(const char* path, const mpuevent_options* options,
                              mpuevent_reader** reader) {
    return guarded([&] {
        mpuevent_options chosen = MPUEVENT_OPTIONS_INIT;
        if (options)
            chosen = *options;
        if (!path || !reader)
            return fail(MPUEVENT_INVALID, "mpuevent_open: a null pointer");
        if (chosen.size != sizeof chosen)
            return fail(MPUEVENT_INVALID, "mpuevent_open: options of another version");
        if (chosen.begin > chosen.end)
            return fail(MPUEVENT_INVALID, "mpuevent_open: the range ends before it begins");
        if (chosen.has_epoch != 0 && (chosen.epoch < kFirstEpoch || chosen.epoch > kLastEpoch))
            return fail(MPUEVENT_INVALID, "mpuevent_open: an epoch with years beyond 0 to 9999");
        const std::string_view kind = chosen.input ? chosen.input : "auto";
        const auto* const row =
            std::find_if(std::begin(kInputKinds), std::end(kInputKinds),
                         [&](const InputKind& one) { return one.name == kind; });
        if (row == std::end(kInputKinds))
            return fail(MPUEVENT_INVALID,
                        fmt::format("mpuevent_open: \"{}\" is no kind of input", kind));
        ProviderTraceServices::ptsSetTraceSuppressForPid(1); // of this library's own copy
        auto opened = std::make_unique<mpuevent_reader>(path, chosen, row->hints);
        if (!opened->input || !opened->input->recognised().refusal().empty())
            return opened->failure();
        *reader = opened.release();
        return MPUEVENT_OK;
    });
}

void mpuevent_close(mpuevent_reader* reader) {
    delete reader;
}

const char* mpuevent_reader_description(const mpuevent_reader* reader) {
    return reader->input->recognised().description().c_str();
}

int mpuevent_reader_is_plain(const mpuevent_reader* reader) {
    return reader->input->recognised().isPlain();
}

mpuevent_status mpuevent_next(mpuevent_reader* reader, mpuevent_batch** batch) {
    return guarded([&] { return reader->next(batch); });
}

void mpuevent_batch_free(mpuevent_batch* batch) {
    delete batch;
}

size_t mpuevent_batch_size(const mpuevent_batch* batch) {
    return batch->records.size();
}

const uint32_t* mpuevent_batch_uint32(const mpuevent_batch* batch, size_t column) {
    return column < kColumnCount && kPublicColumns[column].type == MPUEVENT_UINT32
               ? batch->columns[column].numbers.data()
               : nullptr;
}

const uint64_t* mpuevent_batch_uint64(const mpuevent_batch* batch, size_t column) {
    return column < kColumnCount && kPublicColumns[column].type == MPUEVENT_UINT64
               ? batch->columns[column].numbers64.data()
               : nullptr;
}

const mpuevent_text* mpuevent_batch_text(const mpuevent_batch* batch, size_t column) {
    return column < kColumnCount && kPublicColumns[column].type == MPUEVENT_TEXT
               ? batch->columns[column].texts.data()
               : nullptr;
}

template <class Item>
static mpuevent_status detailsOf(mpuevent_batch* batch, size_t event,
                                 std::vector<Item> Details::*kind, const char* caller,
                                 const Item** items, size_t* count) {
    return guarded([&] {
        if (event >= batch->records.size())
            return fail(MPUEVENT_INVALID, std::string(caller) + ": no such event");
        const std::vector<Item>& details = batch->detailsOf(event).*kind;
        *items = details.data();
        *count = details.size();
        return MPUEVENT_OK;
    });
}

mpuevent_status mpuevent_batch_fields(mpuevent_batch* batch, size_t event,
                                      const mpuevent_field** fields, size_t* count) {
    return detailsOf(batch, event, &Details::fields, "mpuevent_batch_fields", fields, count);
}

mpuevent_status mpuevent_batch_objects(mpuevent_batch* batch, size_t event,
                                       const mpuevent_object** objects, size_t* count) {
    return detailsOf(batch, event, &Details::objects, "mpuevent_batch_objects", objects, count);
}

const mpuevent_damage* mpuevent_batch_damage(const mpuevent_batch* batch, size_t* count) {
    *count = batch->damage.size();
    return batch->damage.data();
}
