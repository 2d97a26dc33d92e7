#include "formats/Objects.h"

#include "formats/Severity.h"
#include "formats/Utf8.h"

#include <algorithm>
#include <charconv>

namespace Pegasus::formats {

namespace {

constexpr std::size_t kMaxObjects = 65536;
constexpr std::size_t kMaxSteps = 64;
constexpr std::size_t kMaxId = 256; // an iSCSI name has at most 223 bytes
constexpr std::size_t kMaxText = 200;

const ObjectElement* rowOf(std::string_view element) {
    const auto* found = std::find_if(std::begin(kObjectElements), std::end(kObjectElements),
                                     [&](const ObjectElement& row) { return row.name == element; });
    return found == std::end(kObjectElements) ? nullptr : found;
}

// Hexadecimal numbers become decimal ones.
std::string idOf(const ObjectElement& row, std::string_view value) {
    value = shortened(trimmed(value), kMaxId);
    if (row.form == ObjectElement::None)
        return {};
    if (row.form == ObjectElement::Lag)
        return "LAG " + std::string(value);
    if (row.form == ObjectElement::Bracketed) {
        value.remove_prefix(std::min(value.find('[') + 1, value.size()));
        value = value.substr(0, value.find(']'));
    }
    std::uint32_t number = 0;
    const char* const end = value.data() + value.size();
    if (value.starts_with("0x") && std::from_chars(value.data() + 2, end, number, 16).ptr == end)
        return std::to_string(number);
    return std::string(value);
}

} // namespace

void ObjectFinder::add(ObjectKindIndex kind, std::string_view id, bool isAssumed) {
    const auto found = std::find_if(found_.begin(), found_.end(), [&](const ObjectReference& one) {
        return one.kind == kind && one.id == id;
    });
    if (found == found_.end())
        found_.push_back({kind, std::string(id), isAssumed});
    else
        found->isAssumed = found->isAssumed && isAssumed;
}

const std::vector<ObjectReference>& ObjectFinder::of(const DecodedEvent& event) {
    found_.clear();
    model_ = serialNumber_ = {};
    add(ControllerKind, event.controllerSerialNumber, false);
    add(EnclosureKind, event.enclosureSerialNumber, false);
    const std::vector<BodyItem>& items = parser_.parse(event.body);
    items_ = &items;
    for (std::size_t i = 0; i < items.size(); ++i) {
        const FieldBasis basis = event.fields.empty() ? FieldBasis() : event.fields[i];
        if (items[i].type != BodyItem::Element || basis.missingBytes != 0)
            continue;
        if (const ObjectElement* row = rowOf(items[i].name)) {
            add(row->kind, idOf(*row, items[i].text), basis.layout == Provenance::Assumed);
        } else if (items[i].name == "Model" || items[i].name == "ModelNumber") {
            model_ = trimmed(items[i].text);
        } else if (items[i].name == "Serial_Number") {
            serialNumber_ = trimmed(items[i].text);
        }
    }
    if (std::count_if(found_.begin(), found_.end(),
                      [](const ObjectReference& one) { return one.kind == DriveKind; }) != 1)
        model_ = serialNumber_ = {};
    return found_;
}

std::string Object::name() const {
    std::string all(kObjectKinds[kind].title);
    if (!id.empty())
        all.append(" ").append(id);
    for (const std::string& of : {enclosure, controller})
        if (!of.empty() && (of != id || kind < ControllerKind))
            all.append(", ").append(of);
    return all;
}

const std::vector<ObjectReference>& Objects::add(const DecodedEvent& event) {
    const std::vector<ObjectReference>& named = finder_.of(event);
    for (const ObjectReference& one : named) {
        Key key(one.kind, event.enclosureSerialNumber,
                kObjectKinds[one.kind].perController ? event.controllerSerialNumber
                                                     : std::string_view(),
                one.id);
        auto found = objects_.find(key);
        if (found == objects_.end()) {
            if (objects_.size() == kMaxObjects) {
                ++others_;
                continue;
            }
            Kept kept;
            kept.object.kind = one.kind;
            kept.object.id = one.id;
            kept.object.enclosure = event.enclosureSerialNumber;
            kept.object.controller = std::get<2>(key);
            found = objects_.emplace(std::move(key), std::move(kept)).first;
        }
        Object& object = found->second.object;
        object.assumed += one.isAssumed;
        if (one.kind == DriveKind) {
            if (!finder_.model().empty())
                object.model = finder_.model();
            if (!finder_.serialNumber().empty())
                object.serialNumber = finder_.serialNumber();
        }
        tell(found->second, event);
    }
    return named;
}

void Objects::tell(Kept& kept, const DecodedEvent& event) {
    Object& object = kept.object;
    const unsigned severity = severityOf(event.eventType);
    ++object.events;
    ++object.severities[severity];
    object.time.add(event.timestamp);
    std::vector<StoryStep>& story = object.story;
    const std::string_view title = shortened(event.eventID, kMaxText);
    if (severity > kept.worst) {
        kept.worst = severity;
        kept.phase = story.size();
    }
    auto step = std::find_if(story.begin() + static_cast<std::ptrdiff_t>(kept.phase), story.end(),
                             [&](const StoryStep& one) {
                                 return one.severity == severity && one.title == title &&
                                        one.source == event.source;
                             });
    if (step == story.end()) {
        if (story.size() == kMaxSteps) {
            ++object.untold;
            return;
        }
        story.push_back({std::string(event.source),
                         std::string(title),
                         std::string(shortened(event.summary, kMaxText)),
                         severity,
                         0,
                         {},
                         event.sequenceID,
                         event.sequenceID});
        step = story.end() - 1;
    }
    ++step->count;
    step->time.add(event.timestamp);
    step->lastSequence = event.sequenceID;
}

std::vector<const Object*> Objects::worstFirst(std::optional<ObjectKindIndex> kind) const {
    std::vector<const Object*> all;
    for (const auto& [key, kept] : objects_)
        if (kind ? kept.object.kind == *kind : kept.object.kind < ControllerKind)
            all.push_back(&kept.object);
    // By errors, then by warnings, then by others; else drives before fans, 9 before 10.
    std::stable_sort(all.begin(), all.end(), [](const Object* a, const Object* b) {
        const auto rank = [](const Object* one) {
            const SeverityCounts& counts = one->severities;
            return std::tuple(counts[3], counts[2], counts[1], counts[0]);
        };
        if (rank(a) != rank(b))
            return rank(a) > rank(b);
        return std::tuple(a->kind, std::string_view(a->enclosure), std::string_view(a->controller),
                          a->id.size(), std::string_view(a->id)) <
               std::tuple(b->kind, std::string_view(b->enclosure), std::string_view(b->controller),
                          b->id.size(), std::string_view(b->id));
    });
    return all;
}

} // namespace Pegasus::formats
