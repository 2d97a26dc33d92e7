#include "tools/mpuevent/Jobs.h"

#include <cstring>
#include <utility>

namespace Pegasus::tool {

namespace {

constexpr std::size_t kBatch =
    std::size_t{256} * 1024; // bytes of messages; more than the longest message

} // namespace

ParallelWriter::ParallelWriter(const EventOptions& options, unsigned jobs, Output& output,
                               Part part)
    : options_(options), output_(output), filter_(options.filter.ofSink()),
      printer_(options.printer(output)), part_(part),
      left_(options.filter.ofSink().limit.value_or(UINT64_MAX)), ring_(2 * jobs + 1) {
    if (part_.isFirst())
        printer_->begin(output.text());
    try {
        while (workers_.size() < jobs)
            workers_.emplace_back([this] { work(); });
    } catch (const std::system_error&) { // as many as the system lets us have
        if (workers_.empty())
            throw;
    }
}

ParallelWriter::~ParallelWriter() {
    stop();
}

void ParallelWriter::stop() {
    {
        const std::lock_guard lock(mutex_);
        stopped_ = true;
    }
    waiting_.notify_all();
    for (std::thread& worker : workers_)
        worker.join();
    workers_.clear();
}

bool ParallelWriter::take(const Message& message) {
    if (!filter_.passes(message))
        return more_;
    const std::size_t size = message.header.size() + message.record.size();
    if (ring_[filling_].bytes.size() + size > kBatch)
        submit();
    Batch& batch = ring_[filling_];
    batch.bytes.reserve(kBatch); // the spans stay
    const std::uint8_t* const header = batch.bytes.data() + batch.bytes.size();
    batch.bytes.insert(batch.bytes.end(), message.header.begin(), message.header.end());
    batch.bytes.insert(batch.bytes.end(), message.record.begin(), message.record.end());
    if (std::exchange(gap_, false))
        batch.gaps.push_back(batch.messages.size());
    batch.messages.push_back({message.offset,
                              {header, message.header.size()},
                              {header + message.header.size(), message.record.size()},
                              message.claim,
                              message.input});
    return more_;
}

void ParallelWriter::complaint(Status status, const std::string& text) {
    ring_[filling_].status = status;
    ring_[filling_].complaint = text;
    submit();
}

Status ParallelWriter::finish() {
    submitAll();
    stop();
    if (part_.isLast())
        printer_->end(output_.text());
    return std::max(status_, output_.finish(status_));
}

// The last one, and all before it.
void ParallelWriter::submitAll() {
    for (std::size_t i = 0; i < ring_.size(); ++i)
        submit();
}

// Gives the batch to the workers and takes over the oldest one.
void ParallelWriter::submit() {
    {
        const std::lock_guard lock(mutex_);
        ring_[filling_].state = Batch::Waiting;
        queue_.push_back(&ring_[filling_]);
    }
    waiting_.notify_one();
    filling_ = (filling_ + 1) % ring_.size();
    Batch& oldest = ring_[filling_];
    {
        std::unique_lock lock(mutex_);
        done_.wait(lock, [&] { return oldest.state != Batch::Waiting; });
    }
    retire(oldest);
}

void ParallelWriter::retire(Batch& batch) {
    if (batch.state == Batch::Done && more_) {
        if (batch.failure)
            std::rethrow_exception(batch.failure);
        const std::uint64_t events = std::min<std::uint64_t>(batch.ends.size(), left_);
        left_ -= events;
        if (events != 0)
            more_ = output_.write(
                batch.text.view().substr(0, batch.ends[static_cast<std::size_t>(events - 1)]));
        more_ = more_ && left_ != 0;
        if (more_ && !batch.complaint.empty()) {
            status_ = std::max(status_, batch.status);
            output_.flush();
            complain(batch.complaint);
        }
    }
    batch.state = Batch::Free;
    batch.bytes.clear();
    batch.messages.clear();
    batch.gaps.clear();
    batch.status = kFine;
    batch.complaint.clear();
    batch.text.clear();
    batch.ends.clear();
}

void ParallelWriter::work() {
    std::unique_ptr<Printer> printer;
    std::optional<Filter> filter;
    for (;;) {
        Batch* batch = nullptr;
        {
            std::unique_lock lock(mutex_);
            waiting_.wait(lock, [this] { return stopped_ || !queue_.empty(); });
            if (stopped_)
                return;
            batch = queue_.front();
            queue_.pop_front();
        }
        try {
            if (!printer) {
                printer = options_.printer(output_);
                filter.emplace(options_.filter.ofSink(), options_.decoding());
            }
            decode(*batch, *filter, *printer);
        } catch (...) { // no memory: the reader's to tell
            batch->failure = std::current_exception();
        }
        {
            const std::lock_guard lock(mutex_);
            batch->state = Batch::Done;
        }
        done_.notify_one();
    }
}

void ParallelWriter::decode(Batch& batch, Filter& filter, Printer& printer) const {
    std::size_t gap = 0;
    for (std::size_t i = 0; i < batch.messages.size(); ++i) {
        for (; gap < batch.gaps.size() && batch.gaps[gap] == i; ++gap)
            printer.gap(batch.text);
        const Message& message = batch.messages[i];
        const DecodedEvent* event = filter.decode(message);
        if (!event)
            continue;
        printer.print(*event, batch.text);
        batch.ends.push_back(batch.text.view().size());
    }
}

} // namespace Pegasus::tool
