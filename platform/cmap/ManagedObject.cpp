#include "platform/cmap/ManagedObject_Layouts.h"

#include <atomic>
#include <memory>

namespace Pegasus {

using namespace mpu;

namespace {

constinit std::atomic<ManagedObjectFactory> registered[256]{};

// As an object of the library's own classes renders.
void writeKnown(TextWriter& out, std::uint8_t classId, const RecordView& data) {
    out.literal("<ClassName>");
    kObjectClasses.put(out, classId);
    out.literal("</ClassName> ");
    if (const Layout* layout = objectLayout(classId))
        write(out, *layout, data);
    out.literal("<Hex>").hexBytes(data.bytes(0)).literal("</Hex> ");
}

} // namespace

void mpu::writeObject(TextWriter& out, std::uint8_t classId, const RecordView& data) {
    const ManagedObjectFactory factory = registered[classId].load(std::memory_order_acquire);
    if (!factory) {
        writeKnown(out, classId, data);
    } else if (const std::unique_ptr<const ManagedObject> object{factory()}) {
        const String text = object->render(data.data(), static_cast<unsigned int>(data.size()));
        out.untrusted(Untrusted(static_cast<const char*>(text.getCString())));
    }
}

ManagedObject::~ManagedObject() = default;

String ManagedObject::render(const void* data, unsigned int length) const {
    BodyWriter out;
    writeKnown(out, classId_, {data, length});
    return out.string();
}

bool ManagedObject::registerClass(unsigned char classId, ManagedObjectFactory factory) {
    if (!kObjectClasses.find(classId).empty())
        return false;
    registered[classId].store(factory, std::memory_order_release);
    return true;
}

} // namespace Pegasus
