// The captures named on the command line.
#pragma once

#include "capture/Capture.h"
#include "tools/mpuevent/Choices.h"
#include "tools/mpuevent/Output.h"
#include "tools/mpuevent/Part.h"

#include <algorithm>

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

namespace Pegasus::tool {

// Takes what the captures hold, in order.
class Sink {
public:
    virtual ~Sink() = default;
    // The messages and the damage of another input follow; it, or its part, had as many bytes.
    virtual void onBegin(const std::string&) {}
    virtual void onEnd(std::uint64_t) {}
    // Returns false when it wants no more.
    virtual bool take(const Message& message) = 0;
    // Others were between the last message and the next.
    virtual void onGap() {}
    // So many events were read that no filter let through, as far as take() did not see them.
    virtual void onLeftOut(std::uint64_t) {}
    // What is to be said of an input at this place, and what it makes of the exit status.
    virtual void complaint(Status status, const std::string& text) = 0;
    virtual void onDamage(const std::string& input, const Damage& damage) {
        complaint(kDamaged, input + ": " + damage.str());
    }
    // The input has nothing more for now: what it had is to be shown.
    virtual void onIdle() {}
};

// Hands everything on.
class Relay : public Sink {
public:
    explicit Relay(Sink& to) : to_(to) {}
    void onBegin(const std::string& name) override { to_.onBegin(name); }
    void onEnd(std::uint64_t bytes) override { to_.onEnd(bytes); }
    bool take(const Message& message) override { return to_.take(message); }
    void onGap() override { to_.onGap(); }
    void complaint(Status status, const std::string& text) override { to_.complaint(status, text); }
    void onDamage(const std::string& input, const Damage& damage) override {
        to_.onDamage(input, damage);
    }
    void onIdle() override { to_.onIdle(); }

protected:
    Sink& to_;
};

// Complains at once.
class SerialSink : public Sink {
public:
    explicit SerialSink(Output& output) : output_(output) {}
    void complaint(Status status, const std::string& text) override {
        raise(status);
        output_.flush();
        complain(text);
    }
    void onIdle() override { output_.flush(); }
    // Of the inputs and of the output, which ends here.
    Status finish() { return std::max(status_, output_.finish(status_)); }

protected:
    void raise(Status status) { status_ = std::max(status_, status); }

    Output& output_;

private:
    Status status_ = kFine;
};

// How inputs are read.
struct InputOptions {
    std::string kind = "auto"; // what they hold
    std::uint64_t maxReports = 20;
    Part part;
};

class Inputs {
public:
    // `ordered`: what each input holds is told by itself, in full.
    void addOptions(CLI::App& app, bool ordered = false);
    // After those that don't go together with it.
    void addPart(CLI::App& app);
    const Part& part() const { return options_.part; }

    // Hands over every message of every file, in order or as the options say. Faults are passed
    // over; many of a file are counted instead of being told. Returns their number. Shows progress.
    std::uint64_t read(Sink& sink) const;

    // Reports a file to be written that is one of the inputs too.
    bool spares(const std::string& output) const;
    // Opens it, but for one that is an input. Reports what is wrong.
    Status openOutput(const std::string& path, Output& output) const {
        return !spares(path) ? kUsage : output.open(path) ? kFine : kFailed;
    }

private:
    std::uint64_t readAll(Sink& sink) const;

    std::vector<std::string> files_{"-"};
    InputOptions options_;
    bool merged_ = false;
    bool unique_ = false;
};

// As people are told of it; the text lives as long as `path` does.
inline const char* nameOf(const std::string& path) {
    return path == "-" ? "standard input" : path.c_str();
}

inline void addOutput(CLI::App& app, std::string& file) {
    app.add_option("--output,-o", file, "Where to write; \"-\": standard output")
        ->type_name("FILE")
        ->capture_default_str();
}

} // namespace Pegasus::tool
