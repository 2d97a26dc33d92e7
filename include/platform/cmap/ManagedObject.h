// Objects of the management protocol, as they travel in messages and records.
#pragma once

#include "event/Export.h"

#include <Pegasus/Common/String.h>

namespace Pegasus {

class ManagedObject;

// Makes an object of one class: `new SomeObject`. May throw; null stands for one that renders as
// nothing.
using ManagedObjectFactory = ManagedObject* (*)();

// The base of all object classes, and itself the class of objects that have none of their own.
// Decoders show an object as render() of its class does.
class MPUEVENT_EXPORT ManagedObject {
public:
    ManagedObject() : ManagedObject(0) {}
    virtual ~ManagedObject();

    // The object encoded in the `length` bytes at `data`, as a flat run of elements with a blank
    // after each: ClassName, the attributes whose places are known, and Hex with all bytes. Texts
    // stand as the object has them.
    virtual String render(const void* data, unsigned int length) const;

    // Sets the class of an identifier that is not among those below; null takes it away. False, and
    // no change, for one that is. What it renders is shown up to its first NUL, made safe with the
    // body around it. Decoding threads may run meanwhile: each object is rendered by the class that
    // is set when it starts.
    static bool registerClass(unsigned char classId, ManagedObjectFactory factory);

protected:
    explicit ManagedObject(unsigned char classId) : classId_(classId) {}

private:
    unsigned char classId_;
};

// Class identifiers and their classes.
#define MPUEVENT_MANAGED_OBJECTS(X)                                                                \
    X(1, CMAPiComplex)                                                                             \
    X(2, CMAPRedundantPair)                                                                        \
    X(3, CMAPLoadGroup)                                                                            \
    X(4, CMAPController)                                                                           \
    X(5, CMAPEventSubscription)                                                                    \
    X(8, CMAPNetworkLag)                                                                           \
    X(9, CMAPNetworkPortal)                                                                        \
    X(10, CMAPNetworkPort)                                                                         \
    X(11, CMAPNetworkRoute)                                                                        \
    X(13, CMAPInitiator)                                                                           \
    X(14, CMAPTarget)                                                                              \
    X(15, CMAPLogicalUnit)                                                                         \
    X(16, CMAPConnection)                                                                          \
    X(17, CMAPSession)                                                                             \
    X(34, CMAPConnectionSettings)                                                                  \
    X(35, CMAPSessionSettings)                                                                     \
    X(36, CMAPiSNS)                                                                                \
    X(37, CMAPIpParams)                                                                            \
    X(38, CMAPTcpParams)                                                                           \
    X(40, CMAPiScsiParams)                                                                         \
    X(41, CMAPNetworkPortStats)                                                                    \
    X(42, CMAPNetworkLagStats)                                                                     \
    X(43, CMAPNetworkRvlStats)                                                                     \
    X(44, CMAPNetworkTcpStats)                                                                     \
    X(45, CMAPNetworkOutbandStats)                                                                 \
    X(46, CMAPNetworkOutbandPort)                                                                  \
    X(47, CMAPLoginStats)                                                                          \
    X(48, CMAPSessionFailureStats)                                                                 \
    X(54, CMAPTask)                                                                                \
    X(55, CMAPPool)                                                                                \
    X(56, CMAPDrive)                                                                               \
    X(57, CMAPExtent)                                                                              \
    X(58, CMAPVolume)

// NOLINTBEGIN(bugprone-macro-parentheses): a class name takes none
#define MPUEVENT_MANAGED_OBJECT(ID, CLASS)                                                         \
    class CLASS : public ManagedObject {                                                           \
    public:                                                                                        \
        CLASS() : ManagedObject(ID) {}                                                             \
    };
MPUEVENT_MANAGED_OBJECTS(MPUEVENT_MANAGED_OBJECT)
#undef MPUEVENT_MANAGED_OBJECT
// NOLINTEND(bugprone-macro-parentheses)

} // namespace Pegasus
