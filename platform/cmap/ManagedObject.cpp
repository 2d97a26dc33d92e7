#include "platform/cmap/ManagedObject_Layouts.h"

namespace Pegasus {

using namespace mpu;

void mpu::writeObject(TextWriter& out, std::uint8_t classId, RecordView data) {
    out.put("<ClassName>");
    kObjectClasses.put(out, classId);
    out.put("</ClassName> ");
    if (const Layout* layout = objectLayout(classId))
        write(out, *layout, data);
    out.put("<Hex>").hexBytes(data.bytes(0)).put("</Hex> ");
}

ManagedObject::~ManagedObject() = default;

String ManagedObject::render(const void* data, unsigned int length) const {
    BodyWriter out;
    writeObject(out, classId_, {data, length});
    return out.string();
}

} // namespace Pegasus
