#include "provider/EventLog.h"

namespace Pegasus::provider {

namespace {

// Engineers' events count like those for customers; one of an unknown type is never sent.
bool reaches(const Entry& entry, unsigned severity) {
    const unsigned type = entry.header().eventType;
    const bool known = (type >= 1 && type <= 3) || (type >= 101 && type <= 103);
    return severity != 0 && known && type % 100 >= severity;
}

} // namespace

EventLog::EventLog(const Settings& settings, capture::FaultHandler onFault)
    : settings_(settings), onFault_(std::move(onFault)),
      ring_(settings_.maxEvents, settings_.maxBytes),
      spool_(settings_.spool, settings_.framing, [this](const std::string& what) { fault(what); }) {
}

EventLog::~EventLog() {
    {
        const std::scoped_lock lock(mutex_);
        stopping_ = true;
    }
    stopped_.notify_all();
    if (thread_.joinable())
        thread_.join();
}

void EventLog::start() {
    poll();
    thread_ = std::thread([this] { run(); });
}

void EventLog::run() {
    std::unique_lock lock(mutex_);
    while (!stopped_.wait_for(lock, settings_.interval, [this] { return stopping_; })) {
        lock.unlock();
        try {
            poll();
        } catch (const std::exception& e) { // out of memory: the rest is read next time
            fault(e.what());
        }
        lock.lock();
    }
}

void EventLog::poll() {
    spool_.poll([this](std::span<const std::uint8_t> record) {
        const EntryPointer entry = ring_.add(record);
        if (!entry || first_ || !reaches(*entry, settings_.alertSeverity))
            return;
        const std::scoped_lock lock(takerMutex_);
        if (listener_)
            listener_(*entry);
    });
    first_ = false;
}

void EventLog::setListener(Listener listener) {
    const std::scoped_lock lock(takerMutex_);
    listener_ = std::move(listener);
}

SpoolState EventLog::state() const {
    const std::scoped_lock lock(mutex_);
    return state_;
}

void EventLog::fault(const std::string& what) {
    {
        const std::scoped_lock lock(mutex_);
        ++state_.faults;
        state_.lastFault = what;
    }
    onFault_(what);
}

} // namespace Pegasus::provider
