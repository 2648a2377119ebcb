// Putting the pieces of long XML texts together. The pieces of one text carry one id and kind; all but the
// last are marked as not final. Clients are told apart by their writer, and by host and app as well; whatever
// else arrives from a client drops its unfinished upload, which is therefore never applied by half. One
// thread at a time.
#pragma once

#include "practice_router/actions/request.h"
#include "practice_router/document/xml.h"

#include <cstddef>
#include <deque>
#include <optional>
#include <string>

constexpr std::size_t PRACTICE_UPLOAD_MAX_SIZE = PRACTICE_XML_MAX_SIZE + 16; // bytes: a document in its URL
constexpr std::size_t PRACTICE_MAX_PENDING_UPLOADS = 16; // beyond it the one that rested longest is dropped

struct PracticeUpload {
    PracticeWriterGuid writer{};
    PracticeRequestId id{};
    ZUL_RoutingService_Administration_CommandKind kind{};
    std::string entity;    // as the first piece names it
    std::string text;      // empty when only bytes are counted, or when it is too large
    std::size_t bytes = 0; // received, whether kept or not
    std::size_t pieces = 0;
    bool isTooLarge = false;
};

struct PracticeUploads {
    bool countsOnly = false; // no text is kept, and none is too large
    std::deque<PracticeUpload> pending;
};

// Takes in one piece. Returns the upload when this was its last piece.
std::optional<PracticeUpload> PracticeUploads_add(PracticeUploads& self, const PracticeRequest& piece);
// The unfinished upload that a piece has just been added to; null when there is none. Valid until the next
// call.
const PracticeUpload* PracticeUploads_find(const PracticeUploads& self, const PracticeRequest& piece);
// Drops the unfinished upload of a client that has sent `other`, which is no piece for this router.
void PracticeUploads_interrupt(PracticeUploads& self, const PracticeRequest& other);
