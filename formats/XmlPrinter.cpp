// All events as one XML document; docs/events.xsd is its schema.
#include "formats/Body.h"
#include "formats/Columns.h"
#include "formats/Printer.h"
#include "formats/Utf8.h"

namespace Pegasus::formats {

namespace {

class XmlPrinter : public Printer {
public:
    explicit XmlPrinter(const PrintOptions& options) : fields_(options.fields) {}

    void begin(mpu::TextWriter& out) override {
        out.put("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<events formatVersion=\"");
        out.decimal(kFormatVersion).put("\">\n");
    }
    void end(mpu::TextWriter& out) override { out.put("</events>\n"); }

    void print(const DecodedEvent& event, mpu::TextWriter& out) override {
        out.put("<event>\n");
        for (const Column& column : kColumns) {
            out.put("  <").put(column.name).put(">");
            if (column.number) {
                out.decimal(event.*column.number);
            } else {
                putXml(out, event.*column.text);
            }
            out.put("</").put(column.name).put(">\n");
        }
        if (fields_)
            fields(out, parser_.parse(event.body));
        out.put("</event>\n");
    }

private:
    static void fields(mpu::TextWriter& out, const std::vector<BodyItem>& items) {
        out.put("  <fields>\n");
        std::size_t depth = 2;
        for (const BodyItem& item : items) {
            depth -= item.type == BodyItem::End;
            for (std::size_t i = 0; i < depth; ++i)
                out.put("  ");
            switch (item.type) {
            case BodyItem::Text: // outside elements
            case BodyItem::Element:
                putXml(out.put("<field name=\""), item.name);
                putXml(out.put("\">"), item.text);
                out.put("</field>\n");
                break;
            case BodyItem::Group:
                putXml(out.put("<group name=\""), item.name);
                out.put("\">\n");
                ++depth;
                break;
            case BodyItem::End:
                out.put("</group>\n");
                break;
            }
        }
        out.put("  </fields>\n");
    }

    const bool fields_;
    BodyParser parser_;
};

} // namespace

std::unique_ptr<Printer> makeXmlPrinter(const PrintOptions& options) {
    return std::make_unique<XmlPrinter>(options);
}

} // namespace Pegasus::formats
