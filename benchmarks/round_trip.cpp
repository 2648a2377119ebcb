// The time of one `enable` through the client, against the same bytes to the same responder and back over the
// bare library. Blocks of the two alternate. Both pause between commands, so the millisecond for which the
// client keeps a delivered response does not count. Prints microseconds.
#include "benchmarks/connected_client.h"
#include "benchmarks/patience.h"
#include "benchmarks/raw_client.h"
#include "benchmarks/samples.h"

#include <algorithm>
#include <cstdlib>
#include <thread>
#include <vector>

namespace {

constexpr int ROUNDS = 5;
constexpr int BLOCKS = 10;   // of each side in a round
constexpr int COMMANDS = 50; // in a block: 2500 of each side in all
constexpr std::chrono::milliseconds SPACING{3};

template <class Exchange>
void runBlock(std::vector<double>& times, const char* unanswered, Exchange exchange) {
    for (int i = 0; i < COMMANDS; ++i) {
        const auto start = Clock::now();
        if (!exchange()) {
            raw::fail(unanswered);
        }
        times.push_back(microsecondsSince(start));
        std::this_thread::sleep_until(start + SPACING);
    }
}

double percentile(std::vector<double>& sorted, int percent) {
    return sorted[sorted.size() * static_cast<std::size_t>(percent) / 100];
}

} // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 2) {
        std::fprintf(stderr, "usage: %s <domain id>\n", arguments[0]);
        return 2;
    }
    const int domainId = std::atoi(arguments[1]);
    const raw::Bytes request = samples::encoded(*samples::enableRequest(1));
    ConnectedClient client(domainId);
    raw::Client baseline(domainId, request);
    for (int round = 0; round < ROUNDS; ++round) {
        std::vector<double> ours;
        std::vector<double> theirs;
        for (int block = 0; block < BLOCKS; ++block) {
            runBlock(ours, "an enable was not answered", [&] { return client.enable(); });
            runBlock(theirs, "an echo was not answered",
                     [&] { return baseline.write(request) && baseline.awaitAnswer(ANSWER_SECONDS); });
        }
        std::sort(ours.begin(), ours.end());
        std::sort(theirs.begin(), theirs.end());
        printRound("round_trip_p50", percentile(ours, 50), percentile(theirs, 50));
        printRound("round_trip_p99", percentile(ours, 99), percentile(theirs, 99));
    }
    return 0;
}
