// All events as one XML document; docs/events.xsd is its schema.
#include "formats/Body.h"
#include "formats/Columns.h"
#include "formats/Printer.h"
#include "formats/Utf8.h"

namespace Pegasus::formats {

namespace {

class XmlPrinter : public Printer {
public:
    explicit XmlPrinter(const Style& style) : fields_(style.fields) {}

    void begin(mpu::TextWriter& out) override {
        out.put("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<events formatVersion=\"");
        out.decimal(kFormatVersion).put("\">\n");
    }
    void end(mpu::TextWriter& out) override { out.put("</events>\n"); }

    void print(Avrel_Event& event, mpu::TextWriter& out) override {
        out.put("<event>\n");
        for (const Key& row : kKeys) {
            out.put("  <").put(row.name).put(">");
            if (row.number) {
                out.decimal(row.number(event));
            } else {
                utf8_.clear();
                putUtf8(utf8_, row.text(event));
                putXml(out, utf8_.view());
            }
            out.put("</").put(row.name).put(">\n");
        }
        if (fields_) // the body was the last text
            fields(out, parser_.parse(utf8_.view()));
        out.put("</event>\n");
    }

private:
    static void fields(mpu::TextWriter& out, const std::vector<Piece>& pieces) {
        out.put("  <fields>\n");
        std::size_t depth = 2;
        for (const Piece& piece : pieces) {
            depth -= piece.kind == Piece::End;
            for (std::size_t i = 0; i < depth; ++i)
                out.put("  ");
            switch (piece.kind) {
            case Piece::Text: // outside elements
            case Piece::Element:
                putXml(out.put("<field name=\""), piece.name);
                putXml(out.put("\">"), piece.text);
                out.put("</field>\n");
                break;
            case Piece::Group:
                putXml(out.put("<group name=\""), piece.name);
                out.put("\">\n");
                ++depth;
                break;
            case Piece::End:
                out.put("</group>\n");
                break;
            }
        }
        out.put("  </fields>\n");
    }

    const bool fields_;
    mpu::BodyWriter utf8_;
    BodyParser parser_;
};

} // namespace

std::unique_ptr<Printer> makeXmlPrinter(const Style& style) {
    return std::make_unique<XmlPrinter>(style);
}

} // namespace Pegasus::formats
