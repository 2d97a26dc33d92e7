// The decoded event and base class of every decoder.
#pragma once

#include "event/EmpEvLogMsg_s.h"
#include "event/EventBasis.h"
#include "event/Export.h"

#include <Pegasus/Common/String.h>

namespace Pegasus {

namespace mpu {
class Record;
struct Draft;
using DecodeFunction = void (*)(const Record& record, Draft& draft);
} // namespace mpu

// Built whole by its constructor and independent of the record afterwards. The order of the
// virtual functions is part of the binary interface.
class MPUEVENT_EXPORT Avrel_Event {
public:
    // Decodes the common header of `record`, whose memory must hold
    // max(length, 152 + evStructLength) bytes. `length` is the record length that the message
    // announced; one that differs from 152 + evStructLength is traced and changes nothing. A null
    // record leaves all texts empty and all numbers 0. Throws nothing but allocation failure.
    Avrel_Event(const EmpEvLogMsg_s* record, unsigned int length);

    virtual ~Avrel_Event();
    virtual String getEnclosureSerialNumber() const;
    virtual void setEnclosureSerialNumber(String);
    virtual unsigned int getControllerSlotID() const;
    virtual void setControllerSlotID(unsigned int);
    virtual String getControllerSerialNumber() const;
    virtual void setControllerSerialNumber(String);
    virtual unsigned int getEventLogInstanceNumber() const;
    virtual void setEventLogInstanceNumber(unsigned int);
    virtual unsigned int getSequenceID() const;
    virtual void setSequenceID(unsigned int);
    virtual unsigned int getTimestamp() const; // raw firmware time
    virtual void setTimestamp(unsigned int);
    virtual String getSource() const; // name of the module that wrote the record
    virtual void setSource(String);
    virtual String getCategory() const;
    virtual void setCategory(String);
    virtual String getEventType();             // "Informational" .. "Eng Error", "Unknown"
    virtual unsigned int getEventType() const; // 1, 2, 3, 101, 102, 103, or 0 for unknown
    virtual void setEventType(unsigned int);
    virtual String getEventID() const; // title of the event
    virtual void setEventID(String);
    virtual String getSummary() const; // one line
    virtual void setSummary(String);
    virtual String getBody() const; // flat run of XML elements, text or hexadecimal dump
    virtual void setBody(String);
    // All fields on one line; the numbers as signed ones, the body whole.
    virtual String str() const;

    // What the texts rest on: how well the record's layout is known, what of the record is missing,
    // what of its payload nothing was read from. Of an event that has no decoder all of the payload
    // is unread; so it is with a decoder that is not ours, unless that says more.
    const EventBasis& getBasis() const { return basis_; }
    void setBasis(const EventBasis& basis) { basis_ = basis; }

    // The header's codes as text or number. An unknown one is traced and given back as its decimal
    // number, an unknown event type as 0.
    unsigned int eventTypeFromEmpValue(unsigned int value) const;
    String categoryFromEmpValue(unsigned int value) const;
    String sourceFromEmpValue(unsigned int value) const;

    // Two upper-case hexadecimal digits per byte and a NUL; `out` has room for 2 * count + 1
    // characters. A count of 0 or less writes the NUL alone.
    static void hexified(char* out, const char* bytes, long count);
    static String hexifiedString(const char* bytes, long count);
    // Groups of 16 bytes: "0x0010=0011223344556677 | 8899AABBCCDDEEFF;", without line breaks.
    static String hexifiedStringForBody(const char* bytes, long count);

    // "<tag>value</tag>", nothing escaped. Bytes that are not UTF-8 become "?".
    static String xmlize(const char* tag, const char* value);
    static String xmlizeString(const char* tag, String value);

    // Rewrites `text` in place into an element name: blanks become "_", all but letters, digits and
    // "_" is dropped. With a `count`, exactly that many characters are examined and a NUL is
    // written after the kept ones when some were dropped. With 0 the text runs to its NUL and no
    // NUL is written: what was after the kept characters stays there ("a-b" becomes "abb").
    static void makeSafeKeyname(char* text, int count);
    // `text` with everything outside well-formed elements restricted to letters, digits, blanks and
    // common punctuation; "=" becomes ": ", all else "?". Tags pass as they are, the content of
    // an element is made safe likewise; an element without closing tag is text. `count` bytes, or
    // up to the NUL when it is 0. The closing tag of an element is the first "</" after its opening
    // tag that ">" or the name follows. Time linear in the length, constant stack.
    static String makeSafeString(const char* text, int count);

protected:
    // Takes title, summary and body from `decode`, unless `record` is null.
    MPUEVENT_LOCAL void take(const EmpEvLogMsg_s* record, int length, mpu::DecodeFunction decode);
    MPUEVENT_LOCAL void take(const mpu::Draft& draft);

    String enclosureSerialNumber_;
    String controllerSerialNumber_;
    unsigned int controllerSlotID_ = 0;
    unsigned int eventLogInstanceNumber_ = 0;
    unsigned int sequenceID_ = 0;
    unsigned int timestamp_ = 0;
    String source_;
    String category_;
    unsigned int eventType_ = 0;
    String eventID_;
    String summary_;
    String body_;

private:
    EventBasis basis_;
};

} // namespace Pegasus
