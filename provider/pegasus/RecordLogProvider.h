// The event log as CIM instances, associations and indications, for OpenPegasus.
#pragma once

#include "provider/EventLog.h"

#include <Pegasus/Provider/CIMAssociationProvider.h>
#include <Pegasus/Provider/CIMIndicationProvider.h>
#include <Pegasus/Provider/CIMInstanceProvider.h>

namespace Pegasus::provider {

// Serves MPU_RecordLog, MPU_LogEntry, MPU_LogManagesRecord and MPU_AlertIndication, all of them
// read-only.
class RecordLogProvider : public CIMInstanceProvider,
                          public CIMAssociationProvider,
                          public CIMIndicationProvider {
public:
    void initialize(CIMOMHandle& server) override;
    void terminate() override;

    void getInstance(const OperationContext&, const CIMObjectPath& reference, Boolean, Boolean,
                     const CIMPropertyList&, InstanceResponseHandler&) override;
    void enumerateInstances(const OperationContext&, const CIMObjectPath& reference, Boolean,
                            Boolean, const CIMPropertyList&, InstanceResponseHandler&) override;
    void enumerateInstanceNames(const OperationContext&, const CIMObjectPath& reference,
                                ObjectPathResponseHandler&) override;
    void modifyInstance(const OperationContext&, const CIMObjectPath&, const CIMInstance&, Boolean,
                        const CIMPropertyList&, ResponseHandler&) override;
    void createInstance(const OperationContext&, const CIMObjectPath&, const CIMInstance&,
                        ObjectPathResponseHandler&) override;
    void deleteInstance(const OperationContext&, const CIMObjectPath&, ResponseHandler&) override;

    void associators(const OperationContext&, const CIMObjectPath& object,
                     const CIMName& association, const CIMName& resultClass, const String& role,
                     const String& resultRole, Boolean, Boolean, const CIMPropertyList&,
                     ObjectResponseHandler&) override;
    void associatorNames(const OperationContext&, const CIMObjectPath& object,
                         const CIMName& association, const CIMName& resultClass, const String& role,
                         const String& resultRole, ObjectPathResponseHandler&) override;
    void references(const OperationContext&, const CIMObjectPath& object,
                    const CIMName& resultClass, const String& role, Boolean, Boolean,
                    const CIMPropertyList&, ObjectResponseHandler&) override;
    void referenceNames(const OperationContext&, const CIMObjectPath& object,
                        const CIMName& resultClass, const String& role,
                        ObjectPathResponseHandler&) override;

    void enableIndications(IndicationResponseHandler&) override;
    void disableIndications() override;
    void createSubscription(const OperationContext&, const CIMObjectPath&,
                            const Array<CIMObjectPath>&, const CIMPropertyList&, Uint16) override;
    void modifySubscription(const OperationContext&, const CIMObjectPath&,
                            const Array<CIMObjectPath>&, const CIMPropertyList&, Uint16) override;
    void deleteSubscription(const OperationContext&, const CIMObjectPath&,
                            const Array<CIMObjectPath>&) override;

private:
    // Instances are made in the namespace and for the host of a request.
    struct Scope;

    CIMInstance logInstance(const Scope& scope) const;
    CIMInstance entryInstance(const Entry& entry, const Scope& scope) const;
    EntryPointer entryOf(const CIMObjectPath& path) const;
    std::vector<EntryPointer> linkedEntries(const CIMObjectPath& object, bool& fromLog) const;

    std::unique_ptr<EventLog> log_;
};

} // namespace Pegasus::provider
