// Putting the pieces of long XML texts together. The pieces of one text carry one id and kind; all but the
// last are marked as not final. Clients are told apart by their writer, and by host and app as well; whatever
// else arrives from a client drops its unfinished upload, which is therefore never applied in part. One
// thread at a time.
#pragma once

#include "plan/document/xml.h"
#include "practice_router/actions/request.h"

#include <cstddef>
#include <deque>
#include <optional>
#include <string>

namespace zul::practice {

constexpr std::size_t MAX_UPLOAD_SIZE = plan::MAX_DOCUMENT_SIZE + 16; // bytes: a document in its URL
constexpr std::size_t MAX_PENDING_UPLOADS = 16; // then the one that has waited longest is dropped

struct Upload {
    WriterGuid writer{};
    RequestId id{};
    ZUL_RoutingService_Administration_CommandKind kind{};
    std::string entity;    // as the first piece names it
    std::string text;      // empty when only bytes are counted, or when it is too large
    std::size_t bytes = 0; // received, whether kept or not
    std::size_t pieces = 0;
    bool isTooLarge = false;
};

class Uploads {
public:
    // When only counting, no text is kept, and none is too large.
    explicit Uploads(bool countsOnly = false) : countsOnly_(countsOnly) {}

    // Takes in one piece. Returns the upload when this was its last piece.
    std::optional<Upload> add(const Request& piece);
    // The unfinished upload that a piece has just been added to; null when there is none. Valid until the
    // next call.
    const Upload* find(const Request& piece) const;
    // Drops the unfinished upload of a client that has sent `other`, which is no piece for this router.
    void interrupt(const Request& other);

    bool countsOnly() const { return countsOnly_; }
    std::size_t pending() const { return pending_.size(); }

private:
    Upload continued(const Request& piece);
    // Any unfinished upload may lack a piece that was lost.
    void dropAfterLoss(const Request& next);

    bool countsOnly_;
    std::deque<Upload> pending_;
};

} // namespace zul::practice
