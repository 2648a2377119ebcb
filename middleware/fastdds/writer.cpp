// Data writer: a write waits for room in slices, within its blocking time; matches are counted as they come.
#include "middleware/fastdds/entities.h"
#include "middleware/fastdds/library_call.h"
#include "middleware/fastdds/qos_mapping.h"

namespace fast = eprosima::fastdds::dds;

namespace {
constexpr DDS_UnsignedLong NANOSECONDS_PER_SECOND = 1'000'000'000;
} // namespace

void DDS_DataWriter::on_publication_matched(fast::DataWriter* /*writer*/,
                                            const fast::PublicationMatchedStatus& status) {
    zul::inCallback(__func__, [&] {
        matched.update(zul::toHandle(status.last_subscription_handle), status.current_count_change);
    });
    if (listener.on_publication_matched != nullptr) {
        listener.on_publication_matched(listener.listener_data, this);
    }
}

DDS_DataWriter* DDS_Publisher_create_datawriter(DDS_Publisher* self, DDS_Topic* topic,
                                                const DDS_DataWriterQos* qos,
                                                const DDS_DataWriterListener* listener, DDS_StatusMask mask) {
    return zul::createInLibrary(__func__, nullptr, [&]() -> DDS_DataWriter* {
        auto writer = std::make_unique<DDS_DataWriter>();
        writer->adapter = topic->adapter;
        if (listener != nullptr && (mask & DDS_PUBLICATION_MATCHED_STATUS) != 0) {
            writer->listener = *listener;
        }
        writer->wait = zul::boundedWait(qos->reliability.max_blocking_time);
        auto libraryQos = zul::toLibrary(*qos);
        libraryQos.reliability().max_blocking_time =
            eprosima::fastrtps::Duration_t(0, static_cast<DDS_UnsignedLong>(writer->wait.slice.count()));
        // Nothing may fail once the wrapper is its entity's listener.
        self->owner->writers.reserve(self->owner->writers.size() + 1);
        writer->writer = self->publisher->create_datawriter(topic->topic, libraryQos, writer.get(),
                                                            fast::StatusMask::publication_matched());
        return writer->writer == nullptr
                   ? nullptr
                   : zul::adoptEndpoint(self->owner->writers, std::move(writer),
                                        self->publisher->is_enabled(), [self](const DDS_DataWriter& failed) {
                                            self->publisher->delete_datawriter(failed.writer);
                                        });
    });
}

DDS_ReturnCode_t DDS_DataWriter_write(DDS_DataWriter* self, const void* sample,
                                      const DDS_InstanceHandle_t* handle) {
    if (handle == nullptr) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    const DDS_WriteParams_t params{.handle = *handle, .source_timestamp = DDS_TIME_INVALID};
    return DDS_DataWriter_write_w_params(self, sample, &params);
}

DDS_ReturnCode_t DDS_DataWriter_write_w_params(DDS_DataWriter* self, const void* sample,
                                               const DDS_WriteParams_t* params) {
    // Keyless topics have one instance, and no handle names it.
    if (self == nullptr || sample == nullptr || params == nullptr || params->handle.isValid != 0) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    const DDS_Long seconds = params->source_timestamp.sec;
    const DDS_UnsignedLong nanoseconds = params->source_timestamp.nanosec;
    const bool isNow = seconds == DDS_TIME_INVALID.sec && nanoseconds == DDS_TIME_INVALID.nanosec;
    if (!isNow && (seconds < 0 || nanoseconds >= NANOSECONDS_PER_SECOND)) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    auto* const data = const_cast<void*>(sample); // the library only reads it
    const auto write = [&] {
        return zul::toReturnCode(
            isNow ? self->writer->write(data, fast::HANDLE_NIL)
                  : self->writer->write_w_timestamp(data, fast::HANDLE_NIL,
                                                    eprosima::fastrtps::Time_t(seconds, nanoseconds)));
    };
    // A write that waits for room is woken with an early time-out when all its samples are acknowledged at
    // once, because the library then looks for a sample to remove and finds none: there is room, try again.
    // It waits a slice at a time, so that all tries together stay within the blocking time.
    return zul::callLibrary(__func__, DDS_RETCODE_OUT_OF_RESOURCES, [&] {
        return zul::attemptWithin(self->wait, write, std::chrono::steady_clock::now);
    });
}

DDS_ReturnCode_t DDS_DataWriter_get_matched_subscriptions(DDS_DataWriter* self,
                                                          DDS_InstanceHandleSeq* handles) {
    return self == nullptr || handles == nullptr ? DDS_RETCODE_BAD_PARAMETER : self->matched.copyTo(handles);
}

const char* DDS_DataWriter_get_plugin_type_name(const DDS_DataWriter* self) {
    return self == nullptr ? nullptr : self->adapter->plugin().typeName;
}
