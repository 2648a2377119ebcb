// What commands have in common while they run: the domains that were joined, how one of them ends early, and
// the exit status of several results.
#pragma once

#include "zulctl/arguments.h"

#include <bitset>
#include <exception>
#include <map>
#include <memory>
#include <span>
#include <string>

namespace zul::ctl {

// An exception's words for standard error.
std::string wordsOf(const std::exception& failure);

// What ends a command early, with words for standard error.
struct Failure {
    int status; // of ExitStatus
    std::string message;
};

// The exit status of several results: the first that applies, in the order of its documentation.
class Outcome {
public:
    void add(fleet::Status status);
    void add(int status) { seen_.set(static_cast<std::size_t>(status)); }
    int status() const;

private:
    std::bitset<8> seen_; // by status; needs no memory, which may have run out
};

// Throws a Failure if it cannot be joined.
std::unique_ptr<fleet::Domain> join(std::int32_t id, std::span<const fleet::Product> products,
                                    fleet::Wakeup& wakeup);

class Session {
public:
    // `wakeup` must outlive this; it may be interrupted at any moment. A lasting one joins a domain for both
    // products at once, so that one participant serves all commands.
    explicit Session(fleet::Wakeup& wakeup, bool isLasting = false)
        : wakeup_(wakeup), isLasting_(isLasting) {}

    fleet::Wakeup& wakeup() { return wakeup_; }
    // A domain and the routers of one product in it, joined when first asked for and kept. Throws a Failure.
    fleet::Domain& domain(std::int32_t id, fleet::Product product);
    // One that is there already, for both products. Null: none is.
    fleet::Domain* known(std::int32_t id) const;

private:
    fleet::Wakeup& wakeup_;
    bool isLasting_;
    std::map<std::pair<std::int32_t, fleet::Product>, std::unique_ptr<fleet::Domain>> domains_;
};

} // namespace zul::ctl
