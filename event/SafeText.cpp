#include "event/SafeText.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <vector>

namespace Pegasus::mpu {

namespace {

using Position = std::uint32_t;
constexpr Position kNone = ~Position{0};

// Of a run of characters, so that hash(ab) = hash(a) * kBase ^ length(b) + hash(b).
constexpr std::uint32_t kBase = 0x9E3779B1;
constexpr std::uint32_t hashWith(std::uint32_t hash, char c) {
    return (hash + static_cast<unsigned char>(c) + 1) * kBase;
}

// By definition an element is found from its opening tag: its closing tag is the first "</" after
// it that ">" or its name follows (and one more character, which passes for the ">"); what is
// between is a text of its own; without a closing tag it is no element, and all from its "<" to the
// end of the text around it has no elements. Searching so costs the square of the text.
//
// The same found from the closing tags, in one pass: opening tags are pushed as they come. A "</"
// closes the outermost open element that it can, since that one searched first; those opened inside
// it have no closing tag, and what was found from the first of them on is dropped. "</>" closes the
// outermost of all. For names:
//
// - An element whose name begins with the name of an element around it never closes: that one takes
//   every closing tag that it could. It isn't pushed, and nothing after it opens.
// - So of several names that a "</" continues with, the longest is the outermost.
// - Names hold no ">" but for a first character, which no closing tag can name.
//
// A name is looked up by the hashes of what follows the "</", character by character up to the next
// "</", so each character is hashed once. Only names that hold a "</" themselves go beyond; they
// are looked up by their lengths, which are few: different ones add up to no more than the text.
class Markup {
public:
    Markup(TextWriter& out, std::string_view text)
        : out_(out), text_(text), size_(static_cast<Position>(text.size())) {}

    void put() {
        for (Position at = find('<', 0); at < size_; at = find('<', at + 1)) {
            if (bracket_ < at + 2)
                bracket_ = find('>', at + 2);
            if (open_ != kNone && close(at))
                continue;
            if (at >= resume_)
                open(at);
            if (open_ == kNone && resume_ == size_)
                break;
        }
        if (open_ != kNone)
            elements_.clear();
        write(size_);
    }

private:
    struct Element {
        Position start;  // of the opening tag
        Position parent; // the open element around it
        union {
            std::uint32_t hash; // while it is open: of its name
            Position closer;    // then: where the closing tag begins
        };
        union {
            Position next;      // while it is open: another one in its bucket, opened before
            Position closerEnd; // then: where the closing tag ends
        };
    };
    struct Match {
        Position element = kNone;
        Position length = 0; // of its name
    };
    // A length of names that hold a "</".
    struct Length {
        Position length;
        std::uint32_t power; // kBase ^ length
        Position element;    // that brought it
    };

    Position find(char c, Position from) const {
        return static_cast<Position>(std::min(text_.find(c, from), text_.size()));
    }
    Position count() const { return static_cast<Position>(elements_.size()); }
    Position& bucket(std::uint32_t hash) { return buckets_[hash >> shift_]; }

    // The open element with this name.
    Match lookUp(std::uint32_t hash, Position at, Position length) {
        for (Position i = bucket(hash); i != kNone; i = elements_[i].next) {
            const Position name = elements_[i].start + 1;
            if (elements_[i].hash == hash && text_[name + length] == '>' &&
                std::memcmp(text_.data() + name, text_.data() + at, length) == 0)
                return {i, length};
        }
        return {};
    }

    // The open element with the longest name, or any one, that the text at `at` begins with.
    Match match(Position at, Position end, bool any) {
        Match found;
        std::uint32_t hash = 0;
        Position i = at;
        while (i < end && !(i > at && text_[i] == '/' && text_[i - 1] == '<')) {
            hash = hashWith(hash, text_[i++]);
            if (const Match match = lookUp(hash, at, i - at); match.element != kNone) {
                found = match;
                if (any)
                    return found;
            }
        }
        if (i < end)
            for (const Length& one : lengths_)
                if (one.length > found.length && one.length <= end - at)
                    if (const Match match = lookUp(hashOf(at, one), at, one.length);
                        match.element != kNone)
                        found = match;
        return found;
    }

    // The hash of a run that ends before the next ">".
    std::uint32_t hashOf(Position at, const Length& run) {
        if (at >= hashedEnd_) {
            hashedFrom_ =
                at - 1; // a "</" that closes nothing is looked at again, as an opening tag
            hashedEnd_ = bracket_;
            hashes_.assign(hashedEnd_ - hashedFrom_ + 1, 0);
            for (Position i = 0; i < hashedEnd_ - hashedFrom_; ++i)
                hashes_[i + 1] = hashWith(hashes_[i], text_[hashedFrom_ + i]);
        }
        const std::uint32_t* before = hashes_.data() + (at - hashedFrom_);
        return before[run.length] - before[0] * run.power;
    }

    void open(Position at) {
        if (open_ == kNone) {
            write(at);
            if (leaf(at))
                return;
        }
        last_ = count();
        resume_ = size_;
        if (bracket_ == size_ || (open_ != kNone && match(at + 1, bracket_, true).element != kNone))
            return; // it never closes
        resume_ = bracket_ + 1;

        if (2 * live_ >= buckets_.size())
            grow();
        const std::string_view name = text_.substr(at + 1, bracket_ - at - 1);
        std::uint32_t hash = 0;
        std::uint32_t power = 1;
        for (char c : name) {
            hash = hashWith(hash, c);
            power *= kBase;
        }
        elements_.push_back({at, open_, {hash}, {bucket(hash)}});
        open_ = bucket(hash) = last_;
        ++live_;
        if (name.find("</") != std::string_view::npos) {
            const Position length = bracket_ - at - 1;
            for (const Length& one : lengths_)
                if (one.length == length)
                    return;
            lengths_.push_back({length, power, open_});
        }
    }

    // Most elements are closed by the next "<", and nothing is open around them that it could
    // close.
    bool leaf(Position at) {
        const Position closer = find('<', bracket_ + 1);
        const Position length = bracket_ - at - 1;
        if (size_ - closer < 3 + length || text_[closer + 1] != '/' || text_[closer + 2] == '>' ||
            std::memcmp(&text_[closer + 2], &text_[at + 1], length) != 0)
            return false;
        last_ = 0;
        resume_ = closer + 3 + length;
        elements_.push_back({at, kNone, {closer}, {resume_}});
        return true;
    }

    bool close(Position at) {
        if (size_ - at < 3 || text_[at + 1] != '/')
            return false;
        Match closed;
        if (text_[at + 2] != '>')
            closed = match(at + 2, std::min(bracket_, size_ - 1), false);
        else if (at >= resume_ || last_ != 0) // not inside of the outermost opening tag
            closed.element = 0;
        if (closed.element == kNone)
            return false;

        // Without a closing tag are those inside, and the last one if this is inside its tags.
        Position kept = at < resume_ ? last_ : count();
        for (Position i = open_;; i = elements_[i].parent) {
            bucket(elements_[i].hash) = elements_[i].next;
            --live_;
            if (!lengths_.empty() && lengths_.back().element == i)
                lengths_.pop_back();
            if (i == closed.element)
                break;
            kept = i;
        }
        elements_.erase(elements_.begin() + kept, elements_.end());
        last_ = closed.element;
        open_ = elements_[last_].parent;
        resume_ = at + 3 + closed.length;
        elements_[last_].closer = at;
        elements_[last_].closerEnd = resume_;
        return true;
    }

    [[gnu::cold]] void grow() {
        buckets_.assign(std::max<std::size_t>(2 * buckets_.size(), 64), kNone);
        shift_ = 32u - static_cast<unsigned>(std::countr_zero(buckets_.size()));
        // Newest first, as they were pushed.
        for (Position i = open_; i != kNone; i = elements_[i].parent) {
            Position* link = &bucket(elements_[i].hash);
            while (*link != kNone)
                link = &elements_[*link].next;
            *link = i;
            elements_[i].next = kNone;
        }
    }

    // Writes the text up to `end`, before which nothing is open.
    void write(Position end) {
        Position inside = kNone;
        for (Position next = 0; next < count() || inside != kNone;) {
            if (inside == kNone ||
                (next < count() && elements_[next].start < elements_[inside].closer)) {
                inside = next++;
                put(elements_[inside].start, find('>', elements_[inside].start + 2) + 1);
            } else {
                put(elements_[inside].closer, elements_[inside].closerEnd);
                inside = elements_[inside].parent;
            }
        }
        put(end, end);
        elements_.clear();
    }

    // Writes up to a tag, and the tag.
    void put(Position tag, Position tagEnd) {
        out_.commit(putSafeRun(out_.reserve(2 * std::size_t{tag - written_}),
                               text_.substr(written_, tag - written_)));
        out_.literal(text_.substr(tag, tagEnd - tag));
        written_ = tagEnd;
    }

    TextWriter& out_;
    std::string_view text_;
    Position size_;
    Position written_ = 0;
    Position bracket_ = 0;  // the first ">" that can end a tag at the place that is looked at
    Position resume_ = 0;   // where a tag can open: after the last one
    Position last_ = 0;     // the element whose tag ends there
    Position open_ = kNone; // the innermost open element
    std::size_t live_ = 0;  // open elements
    std::vector<Element> elements_; // open or closed, by their opening tags
    std::vector<Position> buckets_; // the newest open element by hash
    unsigned shift_ = 0;
    std::vector<Length> lengths_;
    std::vector<std::uint32_t> hashes_; // of what is between hashedFrom_ and each place up to
    Position hashedFrom_ = 0;           // hashedEnd_
    Position hashedEnd_ = 0;
};

} // namespace

void putSafe(TextWriter& out, std::string_view text) {
    Markup(out, text).put();
}

} // namespace Pegasus::mpu
