// Waits are cut into short ones, so that the end of the program is never held up.
#include "practice_router/endpoints/responder.h"

#include "practice_router/actions/answer.h"

namespace zul::practice {

namespace {

using std::chrono::milliseconds;

// How long to wait for the reader of a client's answers: its announcement may come just after the
// client's first request.
constexpr milliseconds READER_WAIT{1000};
constexpr milliseconds READER_POLL{1};
constexpr milliseconds WRITE_WAIT{5000};
constexpr std::size_t MAX_WRITERS_ONLY = 256; // remembered

} // namespace

// A response written before the middleware knows the client's reader would be lost.
void Responder::awaitReader(const WriterGuid& client) {
    const auto deadline = std::chrono::steady_clock::now() + READER_WAIT;
    while (!endpoints_.knowsReader(client) && !writersOnly_.contains(client)) {
        if (std::chrono::steady_clock::now() >= deadline) {
            if (writersOnly_.size() >= MAX_WRITERS_ONLY) {
                writersOnly_.clear();
            }
            writersOnly_.insert(client);
        } else if (!queue_.pause(READER_POLL)) {
            return;
        }
    }
}

// Tries to write again while readers have not acknowledged earlier samples, within a bound: a dead shell must
// not hold up the others. False when the bound is reached, the write fails or the program ends.
template <class Write>
bool Responder::writePatiently(Write write) {
    const auto deadline = std::chrono::steady_clock::now() + WRITE_WAIT;
    DDS_ReturnCode_t written = DDS_RETCODE_TIMEOUT;
    while (written == DDS_RETCODE_TIMEOUT && !queue_.isClosed() &&
           std::chrono::steady_clock::now() < deadline) {
        written = write();
    }
    return written == DDS_RETCODE_OK;
}

bool Responder::write(const RequestId& id, ZUL_RoutingService_Administration_CommandResponseKind kind,
                      std::string_view text, bool isFinal) {
    return writePatiently([&] { return endpoints_.write(id, kind, text, isFinal); });
}

bool Responder::writeFaultsAhead(const RequestId& id) {
    for (std::int32_t i = 0; i < faults_.garbage; ++i) {
        const auto bytes = garbage_.next(id);
        if (!writePatiently([&] { return endpoints_.writeRaw(bytes); })) {
            return false;
        }
    }
    if (!faults_.wrongInvocation) {
        return true;
    }
    // Computed as unsigned, so that the first invocation of all has a predecessor too.
    const RequestId before{id.host, id.app,
                           static_cast<std::int32_t>(static_cast<std::uint32_t>(id.invocation) - 1)};
    return write(before, ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_OK, "this answers another request", true);
}

bool Responder::send(const Request& request, const Answer& answer) {
    awaitReader(request.writer);
    if (!writeFaultsAhead(request.id)) {
        return false;
    }
    const auto parts = answerParts(answer.text, static_cast<std::size_t>(faults_.parts));
    const int copies = faults_.duplicates ? 2 : 1;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        for (int copy = 0; copy < copies; ++copy) {
            if (!write(request.id, answer.kind, parts[i], i + 1 == parts.size())) {
                return false;
            }
        }
    }
    return true;
}

} // namespace zul::practice
