// The native part of the Python package: what libmpuevent-c hands out becomes objects of Python and
// numpy. The interpreter is free for other threads while captures are read and decoded.
#include <mpuevent.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <deque>
#include <memory>
#include <optional>
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>
#include <string_view>
#include <unordered_map>

namespace py = pybind11;
using namespace py::literals;

namespace {

constexpr std::size_t kIteratedEvents = 256; // of a batch: one event that is kept keeps it all
constexpr std::size_t kFrameEvents = 4096;
constexpr const char* kDrive = "drive"; // a column of frames alone

std::string_view viewOf(const mpuevent_text& text) {
    return {text.data, text.size};
}

py::str toPython(const mpuevent_text& text) {
    return py::reinterpret_steal<py::str>(
        PyUnicode_DecodeUTF8(text.data, static_cast<Py_ssize_t>(text.size), "replace"));
}

py::object typeOf(const char* name) {
    return py::module_::import("mpuevent._types").attr(name);
}

// A named tuple, past its constructor: that is a function of Python, which takes longer than all
// else.
template <class... Values>
py::object named(const py::object& type, Values&&... values) {
    const py::tuple all = py::make_tuple(py::make_tuple(std::forward<Values>(values)...));
    auto* const made =
        PyTuple_Type.tp_new(reinterpret_cast<PyTypeObject*>(type.ptr()), all.ptr(), nullptr);
    if (!made)
        throw py::error_already_set();
    return py::reinterpret_steal<py::object>(made);
}

// A path as the file system has it, of str, bytes or os.PathLike.
std::string pathOf(const py::handle& path) {
    PyObject* bytes = nullptr;
    if (!PyUnicode_FSConverter(path.ptr(), &bytes))
        throw py::error_already_set();
    return py::reinterpret_steal<py::bytes>(bytes);
}

py::object nameOf(const std::string& path) {
    return py::reinterpret_steal<py::object>(
        PyUnicode_DecodeFSDefaultAndSize(path.data(), static_cast<Py_ssize_t>(path.size())));
}

// What a call of the C interface told when it failed.
struct Failure {
    mpuevent_status status;
    int number;
    std::string text;

    explicit Failure(mpuevent_status of) : status(of), number(errno), text(mpuevent_last_error()) {}

    [[noreturn]] void raise(const std::string& path) const {
        switch (status) {
        case MPUEVENT_IO: { // Python chooses FileNotFoundError and the like by the number
            const std::string reason = text.substr(std::min(text.size(), path.size() + 2));
            PyErr_SetObject(PyExc_OSError, py::make_tuple(number, reason, nameOf(path)).ptr());
            break;
        }
        case MPUEVENT_NO_CAPTURE:
            PyErr_SetString(typeOf("Error").ptr(), text.c_str());
            break;
        case MPUEVENT_INVALID:
            PyErr_SetString(PyExc_ValueError, text.c_str());
            break;
        case MPUEVENT_NO_MEMORY:
            PyErr_NoMemory();
            break;
        default:
            PyErr_SetString(PyExc_SystemError, text.c_str());
        }
        throw py::error_already_set();
    }
};

struct Options {
    std::uint64_t begin;
    std::optional<std::uint64_t> end;
    std::string input;
    bool knownOnly;
    std::optional<std::int64_t> epoch;
};

using Batch = std::shared_ptr<mpuevent_batch>;

// A reader of the C interface.
class Capture {
public:
    Capture(const std::string& path, const Options& options, std::size_t batchEvents)
        : path_(path) {
        mpuevent_options all = MPUEVENT_OPTIONS_INIT;
        all.begin = options.begin;
        all.end = options.end.value_or(UINT64_MAX);
        all.input = options.input.c_str();
        all.batch_events = batchEvents;
        all.known_only = options.knownOnly;
        all.has_epoch = options.epoch.has_value();
        all.epoch = options.epoch.value_or(0);
        std::optional<Failure> failure;
        mpuevent_reader* reader = nullptr;
        {
            const py::gil_scoped_release others;
            if (const mpuevent_status status = mpuevent_open(path.c_str(), &all, &reader);
                status != MPUEVENT_OK)
                failure.emplace(status);
        }
        if (failure)
            failure->raise(path_);
        reader_.reset(reader, mpuevent_close);
    }

    // Null at the end.
    Batch next() {
        std::optional<Failure> failure;
        Batch batch;
        {
            const py::gil_scoped_release others;
            mpuevent_batch* next = nullptr;
            const mpuevent_status status = mpuevent_next(reader_.get(), &next);
            if (status == MPUEVENT_OK)
                batch.reset(next, mpuevent_batch_free);
            else if (status != MPUEVENT_END)
                failure.emplace(status);
        }
        if (failure)
            failure->raise(path_);
        return batch;
    }
    const std::string& path() const { return path_; }
    const mpuevent_reader* reader() const { return reader_.get(); }

private:
    const std::string path_;
    std::shared_ptr<mpuevent_reader> reader_;
};

void addDamage(py::list& to, const Batch& batch, const py::object& file) {
    std::size_t count = 0;
    const mpuevent_damage* const all = mpuevent_batch_damage(batch.get(), &count);
    for (const mpuevent_damage* one = all; one != all + count; ++one)
        to.append(named(typeOf("Damage"), file, one->offset, one->passed_over, one->resumed != 0,
                        toPython(one->reason), toPython(one->message)));
}

// ---- objects of Python
// ---------------------------------------------------------------------------

// The result of a call, or the exception that it threw, as Python wants it.
template <class Call>
PyObject* guarded(Call call) {
    try {
        return py::object(call()).release().ptr();
    } catch (py::error_already_set& error) {
        error.restore();
    } catch (const py::builtin_exception& error) {
        error.set_error();
    } catch (const std::bad_alloc&) {
        PyErr_NoMemory();
    } catch (const std::exception& error) {
        PyErr_SetString(PyExc_SystemError, error.what());
    }
    return nullptr;
}

// A type of Python that holds a value of C++. Made by hand: reading an attribute takes a quarter of
// the time that pybind11's do, and there is no way to an object without a value.
template <class Value>
class Type {
public:
    // The arrays stay.
    static void add(py::module_& module, const char* name, const char* doc, PyGetSetDef* attributes,
                    std::vector<PyType_Slot> slots) {
        slots.push_back({Py_tp_doc, const_cast<char*>(doc)});
        slots.push_back({Py_tp_getset, attributes});
        slots.push_back({Py_tp_dealloc, reinterpret_cast<void*>(&free)});
        slots.push_back({0, nullptr});
        PyType_Spec spec{name, sizeof(Box), 0,
                         Py_TPFLAGS_DEFAULT | Py_TPFLAGS_DISALLOW_INSTANTIATION, slots.data()};
        type_ = reinterpret_cast<PyTypeObject*>(PyType_FromSpec(&spec));
        if (!type_)
            throw py::error_already_set();
        module.add_object(std::strrchr(name, '.') + 1, reinterpret_cast<PyObject*>(type_));
    }
    template <class... Arguments>
    static py::object make(Arguments&&... arguments) {
        Value value(std::forward<Arguments>(arguments)...);
        Box* const box = PyObject_New(Box, type_);
        if (!box)
            throw std::bad_alloc();
        new (&box->value) Value(std::move(value));
        return py::reinterpret_steal<py::object>(reinterpret_cast<PyObject*>(box));
    }
    static Value& of(PyObject* self) { return reinterpret_cast<Box*>(self)->value; }
    // A member function as an attribute.
    template <auto member>
    static PyObject* get(PyObject* self, void*) {
        return guarded([self] { return (of(self).*member)(); });
    }

private:
    struct Box {
        PyObject_HEAD Value value;
    };

    static void free(PyObject* self) {
        PyTypeObject* const type = Py_TYPE(self);
        of(self).~Value();
        PyObject_Free(self);
        Py_DECREF(type);
    }

    static inline PyTypeObject* type_ = nullptr;
};

class Event {
public:
    Event(Batch batch, std::size_t index) : batch_(std::move(batch)), index_(index) {}

    py::object column(std::size_t column) const {
        switch (mpuevent_column_at(column)->type) {
        case MPUEVENT_UINT32:
            return py::int_(mpuevent_batch_uint32(batch_.get(), column)[index_]);
        case MPUEVENT_UINT64:
            return py::int_(mpuevent_batch_uint64(batch_.get(), column)[index_]);
        default:
            return toPython(mpuevent_batch_text(batch_.get(), column)[index_]);
        }
    }
    py::object fields() const {
        const mpuevent_field* next = nullptr;
        std::size_t count = 0;
        if (const mpuevent_status status =
                mpuevent_batch_fields(batch_.get(), index_, &next, &count);
            status != MPUEVENT_OK)
            Failure(status).raise({});
        return nested(typeOf("Field"), next, next + count);
    }
    py::object objects() const {
        const py::object type = typeOf("Object");
        py::list all;
        for (const mpuevent_object& one : found())
            all.append(named(type, toPython(one.kind), toPython(one.id), one.is_assumed != 0,
                             toPython(one.model), toPython(one.serial_number)));
        return all;
    }
    py::object drive() const {
        for (const mpuevent_object& one : found())
            if (viewOf(one.kind) == kDrive)
                return toPython(one.id);
        return py::none();
    }

    static PyObject* column(PyObject* self, void* column) {
        return guarded(
            [&] { return Type<Event>::of(self).column(reinterpret_cast<std::size_t>(column)); });
    }
    static PyObject* repr(PyObject* self) {
        return guarded([self] {
            const auto value = [self](const char* name) {
                return Type<Event>::of(self).column(mpuevent_column_find(name));
            };
            return py::str("<mpuevent.Event {} {}: {}>")
                .format(value("sequenceID"), value("source"), value("eventID"));
        });
    }

private:
    struct Objects {
        const mpuevent_object* first;
        std::size_t count;
        const mpuevent_object* begin() const { return first; }
        const mpuevent_object* end() const { return first + count; }
    };
    Objects found() const {
        Objects all{};
        if (const mpuevent_status status =
                mpuevent_batch_objects(batch_.get(), index_, &all.first, &all.count);
            status != MPUEVENT_OK)
            Failure(status).raise({});
        return all;
    }
    // Groups are nested as deep as the parser of bodies allows.
    static py::list nested(const py::object& type, const mpuevent_field*& next,
                           const mpuevent_field* end) {
        py::list all;
        for (; next != end && next->kind != MPUEVENT_FIELD_END; ++next) {
            const mpuevent_field& field = *next;
            const bool isGroup = field.kind == MPUEVENT_FIELD_GROUP;
            const py::list inner = isGroup ? nested(type, ++next, end) : py::list();
            all.append(named(type, toPython(field.name),
                             isGroup ? py::none() : py::object(toPython(field.value)), inner,
                             toPython(field.layout), field.missing_bytes));
        }
        return all;
    }

    Batch batch_;
    std::size_t index_;
};

class Reader {
public:
    Reader(const py::handle& path, const Options& options)
        : capture_(std::in_place, pathOf(path), options, kIteratedEvents),
          file_(nameOf(capture_->path())),
          description_(mpuevent_reader_description(capture_->reader())),
          isPlain_(mpuevent_reader_is_plain(capture_->reader()) != 0) {}

    // Null at the end.
    py::object next() {
        while (index_ == size_) {
            refuseOthers();
            if (!capture_)
                throw py::value_error("the reader is closed");
            batch_.reset();
            index_ = size_ = 0;
            const Reading reading(isReading_);
            batch_ = capture_->next();
            if (!batch_)
                return {};
            size_ = mpuevent_batch_size(batch_.get());
            addDamage(damage_, batch_, file_);
        }
        return Type<Event>::make(batch_, index_++);
    }
    py::object close() {
        refuseOthers();
        batch_.reset();
        index_ = size_ = 0;
        capture_.reset();
        return py::none();
    }
    py::object damage() const { return damage_; }
    py::object description() const { return py::str(description_); }
    py::object isPlain() const { return py::bool_(isPlain_); }

    static PyObject* self(PyObject* self, PyObject*) { return Py_NewRef(self); }
    static PyObject* iter(PyObject* self) { return Py_NewRef(self); }
    static PyObject* next(PyObject* self) {
        return guarded([self] { return Type<Reader>::of(self).next(); });
    }
    static PyObject* close(PyObject* self, PyObject*) {
        return guarded([self] { return Type<Reader>::of(self).close(); });
    }

private:
    // While the interpreter's lock is free.
    struct Reading {
        explicit Reading(bool& flag) : isReading(flag) { isReading = true; }
        ~Reading() { isReading = false; }
        bool& isReading;
    };
    void refuseOthers() const {
        if (isReading_)
            throw py::value_error("the reader is in use by another thread");
    }

    std::optional<Capture> capture_;
    py::object file_;
    std::string description_;
    bool isPlain_;
    py::list damage_;
    Batch batch_;
    std::size_t index_ = 0; // of the next event in it
    std::size_t size_ = 0;
    bool isReading_ = false;
};

// ---- all events as columns
// -----------------------------------------------------------------------

// Without a copy.
template <class Number>
py::array toArray(std::vector<Number>&& numbers) {
    auto kept = std::make_unique<std::vector<Number>>(std::move(numbers));
    const py::capsule owner(kept.get(),
                            [](void* of) { delete static_cast<std::vector<Number>*>(of); });
    const auto* const all = kept.release();
    return py::array_t<Number>(static_cast<py::ssize_t>(all->size()), all->data(), owner);
}

class Column {
public:
    virtual ~Column() = default;
    // Without the interpreter's lock.
    virtual void add(mpuevent_batch*, std::size_t) {}
    // With it.
    virtual void addObjects(mpuevent_batch*, std::size_t) {}
    virtual py::object finish() = 0;
};

template <class Number, const Number* (*Values)(const mpuevent_batch*, std::size_t)>
class NumberColumn : public Column {
public:
    explicit NumberColumn(std::size_t column) : column_(column) {}
    void add(mpuevent_batch* batch, std::size_t count) override {
        const Number* const values = Values(batch, column_);
        values_.insert(values_.end(), values, values + count);
    }
    py::object finish() override { return toArray(std::move(values_)); }

private:
    const std::size_t column_;
    std::vector<Number> values_;
};
using Uint32Column = NumberColumn<std::uint32_t, mpuevent_batch_uint32>;
using Uint64Column = NumberColumn<std::uint64_t, mpuevent_batch_uint64>;

// Seconds of Unix time.
class TimeColumn : public Column {
public:
    explicit TimeColumn(std::int64_t epoch) : epoch_(epoch) {}
    void add(mpuevent_batch* batch, std::size_t count) override {
        const std::uint32_t* const values = mpuevent_batch_uint32(batch, column_);
        for (std::size_t i = 0; i < count; ++i)
            values_.push_back(values[i] + epoch_);
    }
    py::object finish() override { return toArray(std::move(values_)); }

private:
    const std::size_t column_ = mpuevent_column_find("timestamp");
    const std::int64_t epoch_;
    std::vector<std::int64_t> values_;
};

// Texts that repeat: (codes, categories), -1 for none.
class Categories {
public:
    void add(std::string_view text) {
        // Of the event before, most often: then it is the same memory.
        if (text.data() != last_.data() || text.size() != last_.size()) {
            const auto found = codeOf_.find(text);
            code_ = found != codeOf_.end() ? found->second : addCategory(text);
            last_ = text;
        }
        codes_.push_back(code_);
    }
    void addNone() { codes_.push_back(-1); }
    // Memory of the texts so far may be used again.
    void forget() { last_ = {}; }
    py::object finish() {
        py::list categories;
        for (const std::string& text : categories_)
            categories.append(toPython({text.data(), text.size()}));
        return py::make_tuple(toArray(std::move(codes_)), categories);
    }

private:
    std::int32_t addCategory(std::string_view text) {
        const auto code = static_cast<std::int32_t>(categories_.size());
        codeOf_.emplace(categories_.emplace_back(text), code);
        return code;
    }

    std::vector<std::int32_t> codes_;
    std::deque<std::string> categories_; // stay where they are
    std::unordered_map<std::string_view, std::int32_t> codeOf_;
    std::string_view last_;
    std::int32_t code_ = 0; // of it
};

class CategoryColumn : public Column {
public:
    explicit CategoryColumn(std::size_t column) : column_(column) {}
    void add(mpuevent_batch* batch, std::size_t count) override {
        const mpuevent_text* const texts = mpuevent_batch_text(batch, column_);
        all_.forget();
        for (std::size_t i = 0; i < count; ++i)
            all_.add(viewOf(texts[i]));
    }
    py::object finish() override { return all_.finish(); }

private:
    const std::size_t column_;
    Categories all_;
};

class DriveColumn : public Column {
public:
    void add(mpuevent_batch* batch, std::size_t count) override {
        all_.forget();
        for (std::size_t i = 0; i < count; ++i) {
            const mpuevent_object* objects = nullptr;
            std::size_t found = 0;
            if (mpuevent_batch_objects(batch, i, &objects, &found) != MPUEVENT_OK)
                throw std::bad_alloc();
            const mpuevent_object* const drive =
                std::find_if(objects, objects + found,
                             [](const mpuevent_object& one) { return viewOf(one.kind) == kDrive; });
            drive != objects + found ? all_.add(viewOf(drive->id)) : all_.addNone();
        }
    }
    py::object finish() override { return all_.finish(); }

private:
    Categories all_;
};

// Texts that are long and many.
class ObjectColumn : public Column {
public:
    explicit ObjectColumn(std::size_t column) : column_(column) {}
    void addObjects(mpuevent_batch* batch, std::size_t count) override {
        const mpuevent_text* const texts = mpuevent_batch_text(batch, column_);
        for (std::size_t i = 0; i < count; ++i)
            values_.push_back(i != 0 && texts[i].data == texts[i - 1].data ? values_.back()
                                                                           : toPython(texts[i]));
    }
    py::object finish() override {
        py::array all(py::dtype("O"),
                      std::vector<py::ssize_t>{static_cast<py::ssize_t>(values_.size())});
        auto* const to = static_cast<PyObject**>(all.mutable_data());
        for (std::size_t i = 0; i < values_.size(); ++i)
            Py_XSETREF(to[i], values_[i].release().ptr());
        return all;
    }

private:
    const std::size_t column_;
    std::vector<py::object> values_;
};

std::unique_ptr<Column> makeColumn(const std::string& name, std::optional<std::int64_t> epoch) {
    if (name == kDrive)
        return std::make_unique<DriveColumn>();
    const std::size_t column = mpuevent_column_find(name.c_str());
    const mpuevent_column* const found = mpuevent_column_at(column);
    if (!found)
        throw py::value_error("no column \"" + name + "\"");
    if (name == "time") {
        if (!epoch)
            throw py::value_error("the column \"time\" needs an epoch");
        return std::make_unique<TimeColumn>(*epoch);
    }
    switch (found->type) {
    case MPUEVENT_UINT32:
        return std::make_unique<Uint32Column>(column);
    case MPUEVENT_UINT64:
        return std::make_unique<Uint64Column>(column);
    default:
        if (name == "summary" || name == "body")
            return std::make_unique<ObjectColumn>(column);
        return std::make_unique<CategoryColumn>(column);
    }
}

py::tuple columns(const py::list& paths, const std::vector<std::string>& names, std::uint64_t begin,
                  std::optional<std::uint64_t> end, const std::string& input, bool knownOnly,
                  std::optional<std::int64_t> epoch) {
    std::vector<std::unique_ptr<Column>> all;
    for (const std::string& name : names)
        all.push_back(makeColumn(name, epoch));
    py::list damage;
    for (const py::handle& path : paths) {
        Capture capture(pathOf(path), {begin, end, input, knownOnly, epoch}, kFrameEvents);
        const py::object file = nameOf(capture.path());
        while (const Batch batch = capture.next()) {
            const std::size_t count = mpuevent_batch_size(batch.get());
            {
                const py::gil_scoped_release others;
                for (const std::unique_ptr<Column>& column : all)
                    column->add(batch.get(), count);
            }
            for (const std::unique_ptr<Column>& column : all)
                column->addObjects(batch.get(), count);
            addDamage(damage, batch, file);
            if (PyErr_CheckSignals() != 0)
                throw py::error_already_set();
        }
    }
    py::dict found;
    for (std::size_t i = 0; i < names.size(); ++i)
        found[py::str(names[i])] = all[i]->finish();
    return py::make_tuple(found, damage);
}

// What help() says of a column.
std::string describe(const mpuevent_column& column) {
    const std::string_view name = column.name;
    if (name == "time")
        return "str: the timestamp as RFC 3339 in UTC, with an epoch; else empty.";
    if (name == "file")
        return "str: path of the capture.";
    if (name == "offset")
        return "int: of its first byte, in bytes of the messages, after unpacking and decoding of "
               "text.";
    return (column.type == MPUEVENT_TEXT ? "str: " : "int: ") + std::string(column.meaning) + ".";
}

// For as long as the process runs.
std::vector<PyGetSetDef> eventAttributes;
std::deque<std::string> descriptions;

PyGetSetDef readerAttributes[] = {
    {"damage", &Type<Reader>::get<&Reader::damage>, nullptr,
     "list of Damage: what was found so far.\n\n"
     "The list grows as events are read, up to 255 events ahead of the one handed out.",
     nullptr},
    {"description", &Type<Reader>::get<&Reader::description>, nullptr,
     "str: what was recognised, from the outside in; empty for plain messages.", nullptr},
    {"isPlain", &Type<Reader>::get<&Reader::isPlain>, nullptr,
     "bool: whether the messages are in the file as they are, so that its size bounds their "
     "offsets.",
     nullptr},
    {},
};
PyMethodDef readerMethods[] = {
    {"__enter__", &Reader::self, METH_NOARGS, nullptr},
    {"__exit__", static_cast<PyCFunction>(&Reader::close), METH_VARARGS, nullptr},
    {"close", static_cast<PyCFunction>(&Reader::close), METH_NOARGS,
     "Closes the file; events that were handed out stay."},
    {},
};

} // namespace

PYBIND11_MODULE(_mpuevent, module) {
    module.attr("__version__") = mpuevent_version();
    py::list names;
    for (std::size_t i = 0; i < mpuevent_column_count(); ++i) {
        const mpuevent_column& column = *mpuevent_column_at(i);
        names.append(column.name);
        eventAttributes.push_back({column.name, &Event::column, nullptr,
                                   descriptions.emplace_back(describe(column)).c_str(),
                                   reinterpret_cast<void*>(i)});
    }
    module.attr("COLUMNS") = py::tuple(names);
    const auto attribute = [](const char* name, getter get, const char* doc) {
        eventAttributes.push_back({name, get, nullptr, doc, nullptr});
    };
    attribute("fields", &Type<Event>::get<&Event::fields>,
              "list of Field: the elements of the body, in order.");
    attribute("objects", &Type<Event>::get<&Event::objects>,
              "list of Object: what the event is about, each once.");
    attribute("drive", &Type<Event>::get<&Event::drive>,
              "str: id of the first drive that the event names, or None.");
    eventAttributes.push_back({});
    Type<Event>::add(module, "mpuevent.Event", R"(A decoded event.

Its attributes are those of mpuevent.COLUMNS, and fields, objects and drive, which take longer: the
event is decoded once more when one of them is asked for the first time. Events outlive their reader,
and may be used by any thread. They share memory with up to 255 events beside them.)",
                     eventAttributes.data(), {{Py_tp_repr, reinterpret_cast<void*>(&Event::repr)}});
    Type<Reader>::add(module, "mpuevent.Reader", R"(An open capture: an iterator over its events.

Made by mpuevent.open(). One thread at a time can use it. Leaving a `with` statement closes it.)",
                      readerAttributes,
                      {{Py_tp_iter, reinterpret_cast<void*>(&Reader::iter)},
                       {Py_tp_iternext, reinterpret_cast<void*>(
                                            static_cast<PyObject* (*)(PyObject*)>(&Reader::next))},
                       {Py_tp_methods, readerMethods}});
    module.def("open",
               [](const py::object& path, std::uint64_t begin, std::optional<std::uint64_t> end,
                  const std::string& input, bool knownOnly, std::optional<std::int64_t> epoch) {
                   return Type<Reader>::make(path, Options{begin, end, input, knownOnly, epoch});
               });
    module.def("columns", &columns, "What mpuevent.frame() is made of.");
}
