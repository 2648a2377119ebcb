// The time of one `get` that is answered in many parts: against as many pauses of a millisecond, of which the
// client makes one to hand over each part, or against a `get` of fewer parts, which shows whether the time
// grows with their number. Prints milliseconds.
#include "benchmarks/connected_client.h"
#include "benchmarks/patience.h"
#include "benchmarks/raw_dds.h"

#include <cstdlib>
#include <optional>

namespace {

constexpr int ROUNDS = 5;
constexpr std::uint32_t PAUSE_NANOSECONDS = 1'000'000;

// A client, and the answer that the responder in its domain gives.
class Get {
public:
    Get(const char* domainId, int parts, int characters)
        : wanted_(static_cast<std::size_t>(parts) * static_cast<std::size_t>(characters)),
          client_(std::atoi(domainId)) {}
    double milliseconds() {
        const auto start = Clock::now();
        if (client_.getDocument() != wanted_) {
            raw::fail("a get was not answered with all its parts");
        }
        return microsecondsSince(start) / 1000;
    }

private:
    std::size_t wanted_;
    ConnectedClient client_;
};

double millisecondsOfPauses(int count) {
    const auto start = Clock::now();
    for (int i = 0; i < count; ++i) {
        ZULSleep(0, PAUSE_NANOSECONDS);
    }
    return microsecondsSince(start) / 1000;
}

} // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 5 && argumentCount != 7) {
        std::fprintf(stderr,
                     "usage: %s <name of the figure> <characters of a part> <domain id> <parts> "
                     "[<domain id of fewer> <fewer parts>]\n",
                     arguments[0]);
        return 2;
    }
    const int characters = std::atoi(arguments[2]);
    const int parts = std::atoi(arguments[4]);
    Get get(arguments[3], parts, characters);
    std::optional<Get> fewer;
    if (argumentCount == 7) {
        fewer.emplace(arguments[5], std::atoi(arguments[6]), characters);
    }
    for (int round = 0; round < ROUNDS; ++round) {
        const double ours = get.milliseconds();
        printRound(arguments[1], ours, fewer ? fewer->milliseconds() : millisecondsOfPauses(parts));
    }
    return 0;
}
