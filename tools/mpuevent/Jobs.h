// Decoding on several threads.
#pragma once

#include "tools/mpuevent/Events.h"

#include <condition_variable>
#include <deque>
#include <exception>
#include <mutex>
#include <thread>

namespace Pegasus::tool {

// Writes what an EventWriter would, byte by byte. The reader, who is the writer too, hands batches
// of raw messages to the workers and takes the texts back in order. A fixed number of batches is
// under way.
class ParallelWriter : public Sink {
public:
    ParallelWriter(const EventOptions& options, unsigned jobs, Output& output, Part part = {});
    ~ParallelWriter() override;
    bool take(const Message& message) override;
    void complaint(Status status, const std::string& text) override;
    void onGap() override { gap_ = true; }
    void onIdle() override { submitAll(); }
    // Of the inputs and of the output, which ends here.
    Status finish();

private:
    struct Batch {
        enum { Free, Waiting, Done } state = Free;
        std::vector<std::uint8_t> bytes; // of the messages
        std::vector<Message> messages;   // their spans point into it
        std::vector<std::size_t> gaps;   // indices of those after a gap
        std::string complaint;           // after the messages
        Status status = kFine;           // that it makes
        mpu::StackWriter<64> text;       // of the events
        std::vector<std::size_t> ends;   // of each of them in the text
        std::exception_ptr failure;
    };

    void work();
    void decode(Batch& batch, Filter& filter, Printer& printer) const;
    void submit();
    void submitAll();
    void retire(Batch& batch);
    void stop();

    const EventOptions& options_;
    Output& output_;
    const Filter filter_; // the reader's, for headers
    const std::unique_ptr<Printer> printer_;
    const Part part_;
    std::uint64_t left_; // of the events to write
    bool more_ = true;   // is wanted
    Status status_ = kFine;

    std::deque<Batch> ring_; // of the reader's; workers have those that wait
    std::size_t filling_ = 0;
    bool gap_ = false; // before the next message

    std::mutex mutex_; // guards the states and what follows
    std::condition_variable waiting_;
    std::condition_variable done_;
    std::deque<Batch*> queue_;
    bool stopped_ = false;
    std::vector<std::thread> workers_;
};

} // namespace Pegasus::tool
