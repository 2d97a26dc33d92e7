// Who takes events one by one, instead of a file.
#pragma once

#include "formats/Printer.h"

#include <memory>
#include <string>

namespace Pegasus::tool {

using namespace formats;

class Receiver {
public:
    enum class Result : std::uint8_t {
        Delivered,
        Waiting, // all is under way
        Failed,  // another call begins anew
    };

    virtual ~Receiver() = default;
    // Keeps the event until it is delivered.
    virtual void add(const DecodedEvent& event) = 0;
    // Delivers what it keeps; some of it may wait for more to come where `all` does not say so.
    // Nothing is lost on failure: an event may come twice.
    virtual Result deliver(bool all) = 0;
    // Events that it keeps.
    virtual std::size_t kept() const = 0;

    const std::string& name() const { return name_; }
    // Why it failed.
    const std::string& error() const { return error_; }

protected:
    explicit Receiver(std::string name) : name_(std::move(name)) {}
    Result fail(std::string error) {
        error_ = std::move(error);
        return Result::Failed;
    }

private:
    const std::string name_;
    std::string error_;
};

// What is wrong with the name of a receiver; empty if nothing is.
std::string faultOfReceiver(const std::string& name);

// Of a name that has no fault. Throws when it can't be reached.
std::unique_ptr<Receiver> makeReceiver(const std::string& name, const PrintOptions& options);

} // namespace Pegasus::tool
