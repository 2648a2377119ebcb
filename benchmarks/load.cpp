// The rate of an upload of a local file through the client, against the same bytes written to the same
// counting responder over the bare library. Prints megabytes of the file a second.
#include "benchmarks/connected_client.h"
#include "benchmarks/patience.h"
#include "benchmarks/raw_client.h"
#include "benchmarks/samples.h"

#include <cstdlib>
#include <filesystem>
#include <string>

namespace {
constexpr int ROUNDS = 21;          // of a second or so: the two sides and the responder share few processors
constexpr std::size_t OVERHEAD = 8; // characters of scheme and quotes around the file
} // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 3) {
        std::fprintf(stderr, "usage: %s <domain id> <file>\n", arguments[0]);
        return 2;
    }
    std::error_code error;
    const std::size_t size = std::filesystem::file_size(arguments[2], error);
    if (error) {
        raw::fail("the file cannot be read");
    }
    const int domainId = std::atoi(arguments[1]);
    const std::string content(admin::XML_CONTENT_BOUND, 'x');
    const raw::Bytes piece = samples::encoded(*samples::loadRequest(1, content, false));
    const raw::Bytes last = samples::encoded(*samples::loadRequest(1, "\"", true));
    const std::size_t fullPieces = (size + OVERHEAD - 1) / admin::XML_CONTENT_BOUND;

    ConnectedClient client(domainId);
    raw::Client baseline(domainId, last);
    for (int round = 0; round < ROUNDS; ++round) {
        auto start = Clock::now();
        if (!client.load(arguments[2])) {
            raw::fail("an upload was not taken");
        }
        const double ours = static_cast<double>(size) / microsecondsSince(start);
        start = Clock::now();
        for (std::size_t i = 0; i < fullPieces; ++i) {
            if (!baseline.write(piece)) {
                raw::fail("the baseline's piece was not taken");
            }
        }
        if (!baseline.write(last) || !baseline.awaitAnswer(ANSWER_SECONDS)) {
            raw::fail("the baseline's upload was not answered");
        }
        printRound("load_rate", ours, static_cast<double>(size) / microsecondsSince(start));
    }
    return 0;
}
