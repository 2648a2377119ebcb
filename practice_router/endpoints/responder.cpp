#include "practice_router/endpoints/responder.h"

#include "practice_router/actions/answer_parts.h"

#include <algorithm>
#include <cstring>

namespace {

using std::chrono::milliseconds;

// How long the reader of a client's answers is awaited: its announcement may come just after the first
// request.
constexpr milliseconds READER_WAIT{1000};
constexpr milliseconds READER_POLL{1};
constexpr milliseconds WRITE_WAIT{5000};
constexpr std::size_t MAX_WRITERS_ONLY = 256; // remembered

// A response written before the middleware knows the client's reader would be lost.
void awaitReader(PracticeResponder& self, const PracticeWriterGuid& client) {
    const auto deadline = std::chrono::steady_clock::now() + READER_WAIT;
    while (!PracticeEndpoints_knowsReader(self.endpoints, client)) {
        if (self.writersOnly.contains(client)) {
            return;
        }
        if (std::chrono::steady_clock::now() >= deadline) {
            if (self.writersOnly.size() >= MAX_WRITERS_ONLY) {
                self.writersOnly.clear();
            }
            self.writersOnly.insert(client);
            return;
        }
        if (!PracticeRequestQueue_pause(self.queue, READER_POLL)) {
            return;
        }
    }
}

// Writes, however long readers take to acknowledge earlier samples, up to a bound: a dead shell must not hold
// up the others. False when the bound is reached or the program ends.
template <class Write>
bool writePatiently(PracticeResponder& self, Write write) {
    const auto deadline = std::chrono::steady_clock::now() + WRITE_WAIT;
    DDS_ReturnCode_t written = DDS_RETCODE_TIMEOUT;
    while (written == DDS_RETCODE_TIMEOUT && !PracticeRequestQueue_isClosed(self.queue) &&
           std::chrono::steady_clock::now() < deadline) {
        written = write();
    }
    return written == DDS_RETCODE_OK;
}

bool write(PracticeResponder& self, const PracticeRequestId& id,
           ZUL_RoutingService_Administration_CommandResponseKind kind, std::string_view text, bool isFinal) {
    auto& response = *self.endpoints.response;
    response.id = {.host = id.host, .app = id.app, .invocation = id.invocation};
    response.kind = kind;
    response.is_final = isFinal ? 1 : 0;
    std::copy(text.begin(), text.end(), response.message);
    response.message[text.size()] = '\0';
    return writePatiently(self, [&] { return PracticeEndpoints_writeResponse(self.endpoints); });
}

bool writeFaultsAhead(PracticeResponder& self, const PracticeRequestId& id) {
    for (std::int32_t i = 0; i < self.faults.garbage; ++i) {
        const auto bytes = PracticeGarbage_next(self.garbage, id);
        if (!writePatiently(self, [&] { return PracticeEndpoints_writeRaw(self.endpoints, bytes); })) {
            return false;
        }
    }
    if (!self.faults.wrongInvocation) {
        return true;
    }
    // Computed without sign, so that the first invocation of all has a predecessor too.
    const PracticeRequestId before{id.host, id.app,
                                   static_cast<std::int32_t>(static_cast<std::uint32_t>(id.invocation) - 1)};
    return write(self, before, ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_OK, "this answers another request", true);
}

} // namespace

bool PracticeResponder_send(PracticeResponder& self, const PracticeRequest& request,
                            const PracticeAnswer& answer) {
    awaitReader(self, request.writer);
    if (!writeFaultsAhead(self, request.id)) {
        return false;
    }
    const auto parts = PracticeAnswerParts_split(answer.text, static_cast<std::size_t>(self.faults.parts));
    const int copies = self.faults.duplicates ? 2 : 1;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        for (int copy = 0; copy < copies; ++copy) {
            if (!write(self, request.id, answer.kind, parts[i], i + 1 == parts.size())) {
                return false;
            }
        }
    }
    return true;
}
