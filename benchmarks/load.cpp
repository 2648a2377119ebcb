// The rate of an upload of a local file through the client, against the same number of bytes written to the
// same counting responder over the bare library: once the same bytes all the time, once read from the file as
// well. Prints megabytes of the file a second.
#include "benchmarks/connected_client.h"
#include "benchmarks/patience.h"
#include "benchmarks/raw_client.h"
#include "benchmarks/samples.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
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
    const auto writeLast = [&] {
        if (!baseline.write(last) || !baseline.awaitAnswer(ANSWER_SECONDS)) {
            raw::fail("the baseline's upload was not answered");
        }
    };
    const auto writePieces = [&] {
        for (std::size_t i = 0; i < fullPieces; ++i) {
            if (!baseline.write(piece)) {
                raw::fail("the baseline's piece was not taken");
            }
        }
        writeLast();
    };
    raw::Bytes filled = piece;
    const auto contentAt = std::search_n(filled.begin(), filled.end(), content.size(), 'x');
    const auto writeFile = [&] {
        const std::unique_ptr<std::FILE, decltype(&std::fclose)> file(std::fopen(arguments[2], "rb"),
                                                                      &std::fclose);
        while (file != nullptr && std::fread(&*contentAt, 1, content.size(), file.get()) > 0) {
            if (!baseline.write(filled)) {
                raw::fail("the baseline's piece was not taken");
            }
        }
        writeLast();
    };
    const auto rateOf = [size](const auto& upload) {
        const auto start = Clock::now();
        upload();
        return static_cast<double>(size) / microsecondsSince(start);
    };
    const auto writeOurs = [&] {
        if (!client.load(arguments[2])) {
            raw::fail("an upload was not taken");
        }
    };
    for (int round = 0; round < ROUNDS; ++round) {
        const double ours = rateOf(writeOurs);
        printRound("load_rate", ours, rateOf(writePieces));
        printRound("load_rate_of_file", ours, rateOf(writeFile));
    }
    return 0;
}
