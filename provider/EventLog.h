// The log that the provider serves: what came into the spool, read by a thread of its own.
#pragma once

#include "provider/EventRing.h"
#include "provider/Mapping.h"
#include "provider/Spool.h"

#include <condition_variable>
#include <thread>

namespace Pegasus::provider {

// May be used from several threads.
class EventLog {
public:
    // Faults are reported from whatever thread finds them.
    EventLog(const Settings& settings, capture::FaultHandler onFault);
    ~EventLog();
    EventLog(const EventLog&) = delete;
    EventLog& operator=(const EventLog&) = delete;

    // Reads what is there, then goes on in a thread.
    void start();
    // One look at the spool, from one thread at a time.
    void poll();

    // Who takes events of alertSeverity and above, in the thread that reads; none is nobody. What
    // was in the spool at the first look is no news. Once this returns the former one is not
    // running any more. Must not be called by the listener itself.
    using Listener = std::function<void(const Entry&)>;
    void setListener(Listener listener);

    const Settings& settings() const { return settings_; }
    const EventRing& ring() const { return ring_; }
    SpoolState state() const;

private:
    void run();
    void fault(const std::string& what);

    const Settings settings_;
    const capture::FaultHandler onFault_;
    EventRing ring_;
    Spool spool_;
    bool first_ = true;

    std::mutex takerMutex_;
    Listener listener_;

    mutable std::mutex mutex_; // of what follows
    SpoolState state_;
    bool stopping_ = false;
    std::condition_variable stopped_;
    std::thread thread_;
};

} // namespace Pegasus::provider
