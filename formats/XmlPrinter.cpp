// All events as one XML document; docs/events.xsd is its schema.
#include "formats/Basis.h"
#include "formats/Body.h"
#include "formats/Columns.h"
#include "formats/Printer.h"
#include "formats/Utf8.h"

#include <fmt/format.h>

namespace Pegasus::formats {

namespace {

class XmlPrinter : public Printer {
public:
    explicit XmlPrinter(const PrintOptions& options) : options_(options) {
        for (const Column& column : kColumns)
            if (isShown(column, options))
                elements_.push_back({column, fmt::format("  <{}>", column.name),
                                     fmt::format("</{}>\n", column.name)});
    }

    void begin(mpu::TextWriter& out) override {
        out.literal("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<events formatVersion=\"");
        out.decimal(kFormatVersion).literal("\">\n");
    }
    void end(mpu::TextWriter& out) override { out.literal("</events>\n"); }

    void print(const DecodedEvent& event, mpu::TextWriter& out) override {
        out.literal("<event>\n");
        for (const Element& element : elements_) {
            out.literal(element.open);
            if (element.column.text)
                putXml(out, event.*element.column.text);
            else
                element.column.putNumber(event, out);
            out.literal(element.close);
        }
        if (options_.raw) {
            putPayload(out.literal("  <raw>"), event);
            out.literal("</raw>\n");
        }
        if (options_.fields)
            fields(out, parser_.parse(event.body), event.fields);
        out.literal("</event>\n");
    }

private:
    struct Element {
        const Column& column;
        std::string open;
        std::string close;
    };

    static void fields(mpu::TextWriter& out, const std::vector<BodyItem>& items,
                       std::span<const FieldBasis> basis) {
        out.literal("  <fields>\n");
        std::size_t depth = 2;
        for (std::size_t index = 0; index < items.size(); ++index) {
            const BodyItem& item = items[index];
            depth -= item.type == BodyItem::End;
            for (std::size_t i = 0; i < depth; ++i)
                out.literal("  ");
            switch (item.type) {
            case BodyItem::Text: // outside elements
            case BodyItem::Element:
                putXml(out.literal("<field name=\""), item.name);
                out.literal("\"");
                if (index < basis.size())
                    rest(out, basis[index]);
                putXml(out.literal(">"), item.text);
                out.literal("</field>\n");
                break;
            case BodyItem::Group:
                putXml(out.literal("<group name=\""), item.name);
                out.literal("\">\n");
                ++depth;
                break;
            case BodyItem::End:
                out.literal("</group>\n");
                break;
            }
        }
        out.literal("  </fields>\n");
    }

    static void rest(mpu::TextWriter& out, const FieldBasis& basis) {
        if (basis.layout != Provenance::Documented)
            out.literal(" layout=\"").literal(nameOf(basis.layout)).literal("\"");
        if (basis.missingBytes != 0)
            out.literal(" missingBytes=\"").decimal(basis.missingBytes).literal("\"");
    }

    const PrintOptions options_;
    std::vector<Element> elements_; // of the columns that are shown
    BodyParser parser_;
};

} // namespace

std::unique_ptr<Printer> makeXmlPrinter(const PrintOptions& options) {
    return std::make_unique<XmlPrinter>(options);
}

} // namespace Pegasus::formats
