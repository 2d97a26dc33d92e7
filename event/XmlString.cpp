#include "event/XmlString.h"

#include "event/StringFormat.h"

namespace Pegasus {

void XmlString::addHexElement(std::string name, unsigned char value) {
    addStringElement(name, StringFormat::hex(value, 2));
}

void XmlString::addHexElement(std::string name, unsigned short value) {
    addStringElement(name, StringFormat::hex(value, 4));
}

void XmlString::addHexElement(std::string name, unsigned int value) {
    addStringElement(name, StringFormat::hex(value, 8));
}

void XmlString::addHexElement(std::string name, unsigned long long value) {
    addStringElement(name, StringFormat::hex(value, 8));
}

void XmlString::addHexElement(std::string name, unsigned int high, unsigned int low) {
    addStringElement(name, StringFormat::hex(high, low, 8));
}

void XmlString::addDecimalElement(std::string name, unsigned int value) {
    addStringElement(name, StringFormat::decimal(value));
}

void XmlString::addStringElement(std::string name, std::string value) {
    append("<").append(name).append(">").append(value).append("</").append(name).append(">");
}

} // namespace Pegasus
