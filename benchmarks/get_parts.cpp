// The time of one `get` that is answered in many parts, against as many of the pauses of a millisecond with
// which the client must hand each part over. Prints milliseconds.
#include "benchmarks/connected_client.h"
#include "benchmarks/patience.h"
#include "benchmarks/raw_dds.h"

#include <cstdlib>

namespace {
constexpr int ROUNDS = 5;
constexpr std::uint32_t PAUSE_NANOSECONDS = 1'000'000;
} // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 5) {
        std::fprintf(stderr, "usage: %s <domain id> <parts> <characters of a part> <name of the figure>\n",
                     arguments[0]);
        return 2;
    }
    const int parts = std::atoi(arguments[2]);
    const auto wanted = static_cast<std::size_t>(parts) * static_cast<std::size_t>(std::atoi(arguments[3]));
    ConnectedClient client(std::atoi(arguments[1]));
    for (int round = 0; round < ROUNDS; ++round) {
        auto start = Clock::now();
        if (client.getDocument() != wanted) {
            raw::fail("a get was not answered with all its parts");
        }
        const double ours = microsecondsSince(start) / 1000;
        start = Clock::now();
        for (int part = 0; part < parts; ++part) {
            ZULSleep(0, PAUSE_NANOSECONDS);
        }
        printRound(arguments[4], ours, microsecondsSince(start) / 1000);
    }
    return 0;
}
