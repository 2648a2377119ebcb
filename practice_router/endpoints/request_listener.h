// The listener of the request reader: copies every request that arrives into a queue.
#pragma once

#include "middleware/dds/dds.h"
#include "practice_router/endpoints/request_queue.h"

namespace zul::practice {

// The queue must outlive the reader.
DDS_DataReaderListener requestListener(RequestQueue& queue);

} // namespace zul::practice
