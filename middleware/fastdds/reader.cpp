// Data reader: what the library reports is noted for the delivery thread.
#include "middleware/fastdds/entities.h"
#include "middleware/fastdds/library_call.h"
#include "middleware/fastdds/qos_mapping.h"

#include <fastrtps/xmlparser/XMLProfileManager.h>
#include <string>

namespace fast = eprosima::fastdds::dds;
namespace rtps = eprosima::fastrtps::rtps;

namespace {

// Most samples of one read or take of a reader without a limit of its own.
constexpr DDS_Long DEFAULT_MAX_SAMPLES_PER_READ = 32;

} // namespace

void DDS_DataReader::note(DDS_StatusMask status) {
    if (delivery != nullptr) {
        delivery->notify(status);
    }
}

// A full reader refuses samples, and a reliable writer sends them again when the reader asks. Inside a
// process the library hands samples over directly, and there no reader asks: the sample is lost, nothing
// after the gap is delivered, and the reader stays silent. So its limit is also a limit on what such a writer
// may send between two takes.
void DDS_DataReader::tellOfLoss() {
    using eprosima::fastrtps::xmlparser::XMLProfileManager;
    const rtps::GUID_t own = reader->guid();
    const auto isNear = [&own](const DDS_InstanceHandle_t& handle) {
        rtps::GUID_t writer;
        std::copy_n(handle.value, rtps::GuidPrefix_t::size, writer.guidPrefix.value);
        return own.is_on_same_process_as(writer);
    };
    if (XMLProfileManager::library_settings().intraprocess_delivery != eprosima::fastrtps::INTRAPROCESS_OFF &&
        matched.any(isNear) && !hasToldOfLoss.exchange(true)) {
        const std::string message =
            "a reader is full (" + std::to_string(maxSamples) +
            " samples); what a writer in its own process sends now is lost, and all that follows: raise "
            "max_samples, or set intraprocess_delivery to OFF in the library's profile file";
        ZULLog_middleware(ZUL_LOG_LEVEL_ERROR, "DDS_DataReader", ZUL_LOG_ANY_s, std::string_view(message));
    }
}

void DDS_DataReader::on_subscription_matched(Reader*, const fast::SubscriptionMatchedStatus& status) {
    zul::inCallback(__func__, [&] {
        matched.update(zul::toHandle(status.last_publication_handle), status.current_count_change);
    });
    note(DDS_SUBSCRIPTION_MATCHED_STATUS);
}

void DDS_DataReader::on_sample_rejected(Reader*, const eprosima::fastrtps::SampleRejectedStatus&) {
    zul::inCallback(__func__, [this] { tellOfLoss(); });
    note(DDS_SAMPLE_REJECTED_STATUS);
}

DDS_DataReader* DDS_Subscriber_create_datareader(DDS_Subscriber* self, DDS_Topic* topic,
                                                 const DDS_DataReaderQos* qos,
                                                 const DDS_DataReaderListener* listener,
                                                 DDS_StatusMask mask) {
    return zul::createInLibrary(__func__, nullptr, [&]() -> DDS_DataReader* {
        auto reader = std::make_unique<DDS_DataReader>();
        reader->adapter = topic->adapter;
        // What a full reader means for a writer in the same process is at tellOfLoss.
        reader->maxSamples = qos->resource_limits.max_samples > 0 ? qos->resource_limits.max_samples
                                                                  : DEFAULT_MAX_SAMPLES_PER_READ;
        if (listener != nullptr) {
            reader->delivery = std::make_unique<zul::DeliveryThread>(reader.get(), *listener, mask);
        }
        auto libraryQos = zul::toLibrary(*qos);
        libraryQos.reader_resource_limits().max_samples_per_read = reader->maxSamples;
        // Nothing may fail once the wrapper is its entity's listener.
        self->owner->readers.reserve(self->owner->readers.size() + 1);
        reader->reader = self->subscriber->create_datareader(topic->topic, libraryQos, reader.get(),
                                                             fast::StatusMask::all());
        return reader->reader == nullptr
                   ? nullptr
                   : zul::adoptEndpoint(self->owner->readers, std::move(reader),
                                        self->subscriber->is_enabled(), [self](const DDS_DataReader& failed) {
                                            self->subscriber->delete_datareader(failed.reader);
                                        });
    });
}

DDS_ReturnCode_t DDS_DataReader_get_matched_publications(DDS_DataReader* self,
                                                         DDS_InstanceHandleSeq* handles) {
    return self == nullptr || handles == nullptr ? DDS_RETCODE_BAD_PARAMETER : self->matched.copyTo(handles);
}

const char* DDS_DataReader_get_plugin_type_name(const DDS_DataReader* self) {
    return self == nullptr ? nullptr : self->adapter->plugin().typeName;
}
