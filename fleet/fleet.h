// Many routers at once: who is there, one request each, what they answered, and why the others did not.
// Prints nothing.
//
// One thread. Every wait ends when what it waits for is there, when its time is up, or with an interrupt of
// the wakeup; nothing sleeps.
#pragma once

#include "fleet/cause.h"
#include "fleet/domain.h"

#include <functional>
#include <map>

namespace zul::fleet {

struct Settings {
    Product product = Product::ROUTING;
    Clock::duration timeout = std::chrono::seconds(15);  // for an answer, from its request or its last part
    Clock::duration discovery = std::chrono::seconds(3); // longest look for routers
    Clock::duration longest = std::chrono::hours(24 * 365); // for all answers, however their parts come
};

// What became of a command at one router.
struct Result {
    std::string router{};
    CommandKind command{};
    std::string entity{};
    Status status = Status::NO_ANSWER;
    std::string message{}; // the router's, or the cause of its silence
    std::size_t parts = 0;
    std::chrono::milliseconds took{};
    std::string guid{};   // prefix of the router's participant; empty when it is not known
    bool wasSent = false; // it may have acted, whatever the status is
    bool isWhole = true;  // else the error is not the router's: what it answered was lost
};
using OnResult = std::function<void(Result&&)>;

// How far an upload to a router, or its answer, has come.
struct Progress {
    std::string router{};
    std::size_t bytes = 0;
    std::size_t total = 0; // of an upload; 0: this is an answer, whose length nobody knows yet
    std::size_t parts = 0; // of an answer
};
using OnProgress = std::function<void(const Progress&)>;

// A router that is there.
struct RouterRow {
    std::string name{}; // empty when it tells none
    std::int32_t domain = 0;
    Product product{};
    std::string participant{};
    std::string host{};
    std::string guid{};
    bool answers = false;
    bool isDuplicate = false; // another one of its domain and product has its name
};

// Whether a name matches a pattern, in which * stands for any text and ? for any one byte.
bool matches(const std::string& pattern, const std::string& name);
bool isPattern(const std::string& word);

class Fleet {
public:
    // The domain and the wakeup must outlive this.
    Fleet(Domain& domain, Wakeup& wakeup, const Settings& settings)
        : domain_(domain), wakeup_(wakeup), settings_(settings) {}

    // Looks for routers and returns their names, sorted: the names among the words, there or not, and those
    // that match a pattern among them. Without patterns, returns as soon as all are there and matched both
    // ways. Otherwise looks for the discovery time: from now while one of the names is not there, else from
    // when the domain was joined, or the last router came that is meant and not matched.
    std::vector<std::string> find(const std::vector<std::string>& words);

    // Sends each router one request, and hands over the results as they come. A router that cannot be reached
    // is not asked. The command must be one that `refusal` lets pass. From `left`, if it is given, each name
    // is erased right before its request is sent; so whatever is thrown, those that remain were sent none.
    void ask(const std::vector<std::string>& names, const Command& command, const OnResult& onResult,
             std::set<std::string>* left = nullptr);

    // From now on `ask` tells how far uploads and answers of several samples are.
    void onProgress(OnProgress callback) { onProgress_ = std::move(callback); }

    // Looks for the router, asks it when it can be asked, and says why it is silent, or that it is not.
    // `others` are domains that may have it instead.
    Cause why(const std::string& name, const std::vector<Domain*>& others);

private:
    struct Reach {
        std::vector<GuidPrefix> routers{}; // of that name, matched both ways
        bool isWhole = false;    // there are some, and no others of that name, and all are sure to hear
        bool isNameless = false; // some router that can be asked does not tell its name
        bool isUnsure = false;   // some router of that name is matched, but may not have matched us
    };
    Reach reach(const Picture& picture, const std::string& name) const;
    Picture picture() const;
    Clock::time_point greet(const Picture& picture, const std::vector<std::string>& names);
    void noteGreetings();
    void gather(Gathering& gathering, const Command& command, Clock::time_point end,
                const OnResult& onResult);
    void awaitRoom(Gathering& gathering, const Command& command, Clock::time_point end,
                   const OnResult& onResult);
    void drain(Gathering& gathering, const Command& command, const OnResult& onResult);
    Result toResult(Answer&& answer, const Command& command) const;
    Result unsent(const std::string& name, const Command& command) const;

    Domain& domain_;
    Wakeup& wakeup_;
    Settings settings_;
    OnProgress onProgress_{};
    std::map<std::int32_t, std::string> greetings_; // names that were greeted, by invocation
    Clock::time_point nextGreeting_{};
};

// Looks for routers of both products in all the domains at once, for the discovery time from when each was
// joined or a router came that is not matched, and asks each whether it answers. Sorted by domain and name.
std::vector<RouterRow> list(const std::vector<Domain*>& domains, Wakeup& wakeup, const Settings& settings);

} // namespace zul::fleet
