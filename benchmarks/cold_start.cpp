// A cold start: the time from the beginning of `main` until a peer's reader and writer are matched, for the
// client or for a bare participant with the same endpoints. One start a process, as a user's are. With "echo"
// the bare participant sends one request when it has matched, waits for the answer, and ends at once: the
// least that a command of one process can take.
#include "benchmarks/patience.h"
#include "benchmarks/raw_dds.h"
#include "benchmarks/samples.h"
#include "remote_config/client.h"
#include "remote_config/exchange.h"

#include <atomic>
#include <cstdlib>
#include <fastdds/dds/core/status/PublicationMatchedStatus.hpp>
#include <fastdds/dds/core/status/SubscriptionMatchedStatus.hpp>
#include <string_view>
#include <thread>

namespace {

constexpr std::chrono::microseconds POLL{100};
constexpr std::chrono::seconds GIVE_UP{20};

// Milliseconds from `start` until `isMatched`.
template <class IsMatched>
double untilMatched(Clock::time_point start, IsMatched isMatched) {
    while (!isMatched()) {
        if (Clock::now() - start > GIVE_UP) {
            raw::fail("find the peer");
        }
        std::this_thread::sleep_for(POLL);
    }
    return microsecondsSince(start) / 1000;
}

double startClient(int domain, Clock::time_point start) {
    ROUTERRemoteConfigClient* client = ROUTERRemoteConfigClient_new(domain, 1);
    if (client == nullptr) {
        raw::fail("create the client");
    }
    const double took =
        untilMatched(start, [&] { return ROUTERRemoteConfigClient_hasMatchingServer(client); });
    ROUTERRemoteConfigClient_delete(client);
    return took;
}

double startBare(int domain, Clock::time_point start, bool isEcho) {
    std::atomic<bool> isAnswered{false};
    raw::Listener listener([&isAnswered](const raw::Bytes&) { isAnswered = true; });
    raw::Participant participant(domain);
    auto* writer =
        participant.createWriter(raw::ADMINISTRATION.request, raw::ADMINISTRATION.requestType, {1, 0});
    auto* reader =
        participant.createReader(raw::ADMINISTRATION.response, raw::ADMINISTRATION.responseType, &listener);
    const double matched = untilMatched(start, [&] {
        eprosima::fastdds::dds::PublicationMatchedStatus publication;
        eprosima::fastdds::dds::SubscriptionMatchedStatus subscription;
        writer->get_publication_matched_status(publication);
        reader->get_subscription_matched_status(subscription);
        return publication.current_count > 0 && subscription.current_count > 0;
    });
    if (isEcho) {
        if (!raw::write(writer, samples::encoded(*samples::enableRequest(1)))) {
            raw::fail("write a request");
        }
        untilMatched(start, [&isAnswered] { return isAnswered.load(); });
        std::_Exit(0); // neither side of a comparison waits for the library's clean-up
    }
    return matched;
}

} // namespace

int main(int argumentCount, char** arguments) {
    const auto start = Clock::now();
    const std::string_view side = argumentCount == 3 ? arguments[1] : "";
    if (side != "client" && side != "bare" && side != "echo") {
        std::fprintf(stderr, "usage: %s client|bare|echo <domain id>\n", arguments[0]);
        return 2;
    }
    const int domain = std::atoi(arguments[2]);
    std::printf("%.3f\n",
                side == "client" ? startClient(domain, start) : startBare(domain, start, side == "echo"));
    return 0;
}
