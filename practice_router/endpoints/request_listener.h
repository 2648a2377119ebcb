// The listener of the request reader: copies every request that arrives into a queue.
#pragma once

#include "middleware/dds/dds.h"
#include "practice_router/endpoints/request_queue.h"

// The queue must outlive the reader.
DDS_DataReaderListener PracticeRequestListener_make(PracticeRequestQueue& queue);
