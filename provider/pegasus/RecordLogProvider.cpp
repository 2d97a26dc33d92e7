#include "provider/pegasus/RecordLogProvider.h"

#include "platform/trace/ProviderTraceServices.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <syslog.h>

namespace Pegasus::provider {

namespace {

constexpr char kProviderName[] = "MPU_RecordLogProvider";
constexpr char kNamespace[] = "root/cimv2"; // that the indications come from

constexpr char kRecordLog[] = "MPU_RecordLog";
constexpr char kLogEntry[] = "MPU_LogEntry";
constexpr char kLogManagesRecord[] = "MPU_LogManagesRecord";
constexpr char kAlertIndication[] = "MPU_AlertIndication";

constexpr char kLogRole[] = "Log";
constexpr char kRecordRole[] = "Record";

// Each class with its superclasses, for requests that name one of these.
constexpr const char* kRecordLogs[] = {kRecordLog,
                                       "CIM_RecordLog",
                                       "CIM_Log",
                                       "CIM_EnabledLogicalElement",
                                       "CIM_LogicalElement",
                                       "CIM_ManagedSystemElement",
                                       "CIM_ManagedElement"};
constexpr const char* kLogEntries[] = {kLogEntry, "CIM_LogEntry", "CIM_RecordForLog",
                                       "CIM_ManagedElement"};
constexpr const char* kLogManagesRecords[] = {kLogManagesRecord, "CIM_LogManagesRecord"};

bool is(const CIMName& name, const char* wanted) {
    return name.equal(CIMName(wanted));
}

// Whether a request asks for one of `names`, or for anything.
template <std::size_t N>
bool wants(const CIMName& name, const char* const (&names)[N]) {
    return name.isNull() ||
           std::any_of(names, names + N, [&](const char* own) { return is(name, own); });
}
bool wants(const String& role, const char* own) {
    return role.size() == 0 || String::equalNoCase(role, own);
}

void log(const std::string& what) {
    ::syslog(LOG_DAEMON | LOG_WARNING, "%s: %s", kProviderName, what.c_str());
}

Settings readSettings() {
    const char* path = std::getenv("MPUEVENT_PROVIDER_CONF"); // NOLINT(concurrency-mt-unsafe)
    if (path == nullptr)
        path = MPUEVENT_PROVIDER_CONF;
    std::ifstream file(path);
    if (!file)
        log(std::string(path) + ": not there; defaults are used");
    return provider::readSettings(
        file, [path](const std::string& what) { log(std::string(path) + ": " + what); });
}

CIMValue toCimValue(const String& v) {
    return CIMValue(v);
}
CIMValue toCimValue(const DateTime& v) {
    return CIMValue(CIMDateTime(String(v.text.c_str())));
}
CIMValue toCimValue(std::uint16_t v) {
    return CIMValue(Uint16(v));
}
CIMValue toCimValue(std::uint32_t v) {
    return CIMValue(Uint32(v));
}
CIMValue toCimValue(std::uint64_t v) {
    return CIMValue(Uint64(v));
}

CIMInstance toInstance(const char* className, const Properties& properties) {
    CIMInstance instance{CIMName(className)};
    for (const Property& property : properties)
        instance.addProperty(
            CIMProperty(CIMName(property.name),
                        std::visit([](const auto& v) { return toCimValue(v); }, property.value)));
    return instance;
}

// The value of a key, empty when the path has none of that name.
String keyOf(const CIMObjectPath& path, const char* name) {
    const Array<CIMKeyBinding>& keys = path.getKeyBindings();
    for (Uint32 i = 0; i < keys.size(); ++i)
        if (is(keys[i].getName(), name))
            return keys[i].getValue();
    return String();
}

bool isLog(const CIMObjectPath& path) {
    return is(path.getClassName(), kRecordLog) && keyOf(path, "InstanceID") == kLogInstanceID;
}

[[noreturn]] void notFound(const CIMObjectPath& path) {
    throw CIMObjectNotFoundException(path.toString());
}

[[noreturn]] void readOnly() {
    throw CIMNotSupportedException("the event log is read-only");
}

} // namespace

struct RecordLogProvider::Scope {
    explicit Scope(const CIMObjectPath& request)
        : host(request.getHost()), name(request.getNameSpace()) {}

    const String& host;
    const CIMNamespaceName& name;

    CIMObjectPath path(const char* className, const Array<CIMKeyBinding>& keys) const {
        return CIMObjectPath(host, name, CIMName(className), keys);
    }
    CIMObjectPath path(const char* className, const String& instanceID) const {
        Array<CIMKeyBinding> keys;
        keys.append(CIMKeyBinding(CIMName("InstanceID"), instanceID, CIMKeyBinding::STRING));
        return path(className, keys);
    }
    CIMObjectPath log() const { return path(kRecordLog, String(kLogInstanceID)); }
    CIMObjectPath entry(const Entry& entry) const {
        return path(kLogEntry, String(instanceIDOf(entry).c_str()));
    }
    CIMObjectPath link(const Entry& linked) const {
        Array<CIMKeyBinding> keys;
        keys.append(CIMKeyBinding(CIMName(kLogRole), CIMValue(log())));
        keys.append(CIMKeyBinding(CIMName(kRecordRole), CIMValue(entry(linked))));
        return path(kLogManagesRecord, keys);
    }
    CIMInstance linkInstance(const Entry& linked) const {
        CIMInstance instance{CIMName(kLogManagesRecord)};
        instance.addProperty(
            CIMProperty(CIMName(kLogRole), CIMValue(log()), 0, CIMName(kRecordLog)));
        instance.addProperty(
            CIMProperty(CIMName(kRecordRole), CIMValue(entry(linked)), 0, CIMName(kLogEntry)));
        instance.setPath(link(linked));
        return instance;
    }
};

void RecordLogProvider::initialize(CIMOMHandle& server) {
    ProviderTraceServices::ptsSetTraceSuppressForPid(1); // standard output is the server's
    log_ = std::make_unique<EventLog>(readSettings(), say);
    log_->start();
    server.disallowProviderUnload(); // an idle one would read the spool anew
}

void RecordLogProvider::terminate() {
    delete this;
}

// ---- instances
// -----------------------------------------------------------------------------------

CIMInstance RecordLogProvider::logInstance(const Scope& scope) const {
    CIMInstance instance =
        toInstance(kRecordLog, recordLog(log_->ring().size(), log_->state(), log_->settings()));
    instance.setPath(scope.log());
    return instance;
}

CIMInstance RecordLogProvider::entryInstance(const Entry& entry, const Scope& scope) const {
    CIMInstance instance = toInstance(kLogEntry, logEntry(entry, log_->settings()));
    instance.setPath(scope.entry(entry));
    return instance;
}

EntryPointer RecordLogProvider::entryOf(const CIMObjectPath& path) const {
    if (!is(path.getClassName(), kLogEntry))
        return nullptr;
    const CString id = keyOf(path, "InstanceID").getCString();
    const std::optional<std::uint64_t> number = entryIDOf(static_cast<const char*>(id));
    return number ? log_->ring().find(*number) : nullptr;
}

void RecordLogProvider::getInstance(const OperationContext&, const CIMObjectPath& reference,
                                    Boolean, Boolean, const CIMPropertyList&,
                                    InstanceResponseHandler& handler) {
    const Scope scope(reference);
    handler.processing();
    if (isLog(reference)) {
        handler.deliver(logInstance(scope));
    } else if (const EntryPointer entry = entryOf(reference)) {
        handler.deliver(entryInstance(*entry, scope));
    } else if (is(reference.getClassName(), kLogManagesRecord)) {
        const EntryPointer linked = entryOf(CIMObjectPath(keyOf(reference, kRecordRole)));
        if (!linked || !isLog(CIMObjectPath(keyOf(reference, kLogRole))))
            notFound(reference);
        handler.deliver(scope.linkInstance(*linked));
    } else {
        notFound(reference);
    }
    handler.complete();
}

void RecordLogProvider::enumerateInstances(const OperationContext&, const CIMObjectPath& reference,
                                           Boolean, Boolean, const CIMPropertyList&,
                                           InstanceResponseHandler& handler) {
    const Scope scope(reference);
    handler.processing();
    if (is(reference.getClassName(), kRecordLog))
        handler.deliver(logInstance(scope));
    else if (is(reference.getClassName(), kLogEntry))
        for (const EntryPointer& entry : log_->ring().all())
            handler.deliver(entryInstance(*entry, scope));
    else if (is(reference.getClassName(), kLogManagesRecord))
        for (const EntryPointer& entry : log_->ring().all())
            handler.deliver(scope.linkInstance(*entry));
    handler.complete();
}

void RecordLogProvider::enumerateInstanceNames(const OperationContext&,
                                               const CIMObjectPath& reference,
                                               ObjectPathResponseHandler& handler) {
    const Scope scope(reference);
    handler.processing();
    if (is(reference.getClassName(), kRecordLog))
        handler.deliver(scope.log());
    else if (is(reference.getClassName(), kLogEntry))
        for (const EntryPointer& entry : log_->ring().all())
            handler.deliver(scope.entry(*entry));
    else if (is(reference.getClassName(), kLogManagesRecord))
        for (const EntryPointer& entry : log_->ring().all())
            handler.deliver(scope.link(*entry));
    handler.complete();
}

void RecordLogProvider::modifyInstance(const OperationContext&, const CIMObjectPath&,
                                       const CIMInstance&, Boolean, const CIMPropertyList&,
                                       ResponseHandler&) {
    readOnly();
}

void RecordLogProvider::createInstance(const OperationContext&, const CIMObjectPath&,
                                       const CIMInstance&, ObjectPathResponseHandler&) {
    readOnly();
}

void RecordLogProvider::deleteInstance(const OperationContext&, const CIMObjectPath&,
                                       ResponseHandler&) {
    readOnly();
}

// ---- associations
// ----------------------------------------------------------------------------------

// The entries on the far ends of the links of `object`: all of the log's, or the one that it is.
std::vector<EntryPointer> RecordLogProvider::linkedEntries(const CIMObjectPath& object,
                                                           bool& fromLog) const {
    fromLog = isLog(object);
    if (fromLog)
        return log_->ring().all();
    if (EntryPointer entry = entryOf(object))
        return {std::move(entry)};
    notFound(object);
}

void RecordLogProvider::associators(const OperationContext&, const CIMObjectPath& object,
                                    const CIMName& association, const CIMName& resultClass,
                                    const String& role, const String& resultRole, Boolean, Boolean,
                                    const CIMPropertyList&, ObjectResponseHandler& handler) {
    const Scope scope(object);
    bool fromLog = false;
    const std::vector<EntryPointer> entries = linkedEntries(object, fromLog);
    handler.processing();
    if (wants(association, kLogManagesRecords) && wants(role, fromLog ? kLogRole : kRecordRole) &&
        wants(resultRole, fromLog ? kRecordRole : kLogRole)) {
        if (fromLog && wants(resultClass, kLogEntries))
            for (const EntryPointer& entry : entries)
                handler.deliver(CIMObject(entryInstance(*entry, scope)));
        else if (!fromLog && wants(resultClass, kRecordLogs))
            handler.deliver(CIMObject(logInstance(scope)));
    }
    handler.complete();
}

void RecordLogProvider::associatorNames(const OperationContext&, const CIMObjectPath& object,
                                        const CIMName& association, const CIMName& resultClass,
                                        const String& role, const String& resultRole,
                                        ObjectPathResponseHandler& handler) {
    const Scope scope(object);
    bool fromLog = false;
    const std::vector<EntryPointer> entries = linkedEntries(object, fromLog);
    handler.processing();
    if (wants(association, kLogManagesRecords) && wants(role, fromLog ? kLogRole : kRecordRole) &&
        wants(resultRole, fromLog ? kRecordRole : kLogRole)) {
        if (fromLog && wants(resultClass, kLogEntries))
            for (const EntryPointer& entry : entries)
                handler.deliver(scope.entry(*entry));
        else if (!fromLog && wants(resultClass, kRecordLogs))
            handler.deliver(scope.log());
    }
    handler.complete();
}

void RecordLogProvider::references(const OperationContext&, const CIMObjectPath& object,
                                   const CIMName& resultClass, const String& role, Boolean, Boolean,
                                   const CIMPropertyList&, ObjectResponseHandler& handler) {
    const Scope scope(object);
    bool fromLog = false;
    const std::vector<EntryPointer> entries = linkedEntries(object, fromLog);
    handler.processing();
    if (wants(resultClass, kLogManagesRecords) && wants(role, fromLog ? kLogRole : kRecordRole))
        for (const EntryPointer& entry : entries)
            handler.deliver(CIMObject(scope.linkInstance(*entry)));
    handler.complete();
}

void RecordLogProvider::referenceNames(const OperationContext&, const CIMObjectPath& object,
                                       const CIMName& resultClass, const String& role,
                                       ObjectPathResponseHandler& handler) {
    const Scope scope(object);
    bool fromLog = false;
    const std::vector<EntryPointer> entries = linkedEntries(object, fromLog);
    handler.processing();
    if (wants(resultClass, kLogManagesRecords) && wants(role, fromLog ? kLogRole : kRecordRole))
        for (const EntryPointer& entry : entries)
            handler.deliver(scope.link(*entry));
    handler.complete();
}

// ---- indications
// -----------------------------------------------------------------------------------

void RecordLogProvider::enableIndications(IndicationResponseHandler& handler) {
    log_->setListener([this, &handler](const Entry& entry) {
        CIMInstance indication = toInstance(kAlertIndication, alert(entry, log_->settings()));
        indication.addProperty(
            CIMProperty(CIMName("IndicationTime"), CIMValue(CIMDateTime::getCurrentDateTime())));
        indication.setPath(
            CIMObjectPath(String(), CIMNamespaceName(kNamespace), CIMName(kAlertIndication)));
        try {
            handler.deliver(indication);
        } catch (const Exception& e) {
            const CString message = e.getMessage().getCString();
            log("an indication could not be sent: " +
                std::string(static_cast<const char*>(message)));
        }
    });
}

void RecordLogProvider::disableIndications() {
    log_->setListener(nullptr);
}

// The server sends an indication to the subscriptions that it fits: nothing is kept of them here.

void RecordLogProvider::createSubscription(const OperationContext&, const CIMObjectPath&,
                                           const Array<CIMObjectPath>&, const CIMPropertyList&,
                                           Uint16) {}

void RecordLogProvider::modifySubscription(const OperationContext&, const CIMObjectPath&,
                                           const Array<CIMObjectPath>&, const CIMPropertyList&,
                                           Uint16) {}

void RecordLogProvider::deleteSubscription(const OperationContext&, const CIMObjectPath&,
                                           const Array<CIMObjectPath>&) {}

} // namespace Pegasus::provider

// What the server calls when it has loaded the library.
extern "C" __attribute__((visibility("default"))) Pegasus::CIMProvider*
PegasusCreateProvider(const Pegasus::String& name) {
    if (Pegasus::String::equalNoCase(name, Pegasus::provider::kProviderName))
        return new Pegasus::provider::RecordLogProvider;
    return nullptr;
}
