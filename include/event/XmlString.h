// A run of XML elements under construction.
#pragma once

#include "event/Export.h"

#include <string>

namespace Pegasus {

// Each operation appends "<name>value</name>". Names and values are taken as they are: they must
// be valid and safe already. Hexadecimal values are lower-case with "0x" and at least two digits a
// byte, but eight for the 64-bit forms, as their readers expect.
class MPUEVENT_EXPORT XmlString : public std::string {
public:
    void addHexElement(std::string name, unsigned char value);
    void addHexElement(std::string name, unsigned short value);
    void addHexElement(std::string name, unsigned int value);
    void addHexElement(std::string name, unsigned long long value);
    void addHexElement(std::string name, unsigned int high, unsigned int low);
    void addDecimalElement(std::string name, unsigned int value);
    void addStringElement(std::string name, std::string value);
};

} // namespace Pegasus
