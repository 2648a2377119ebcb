// The library calls with buffers, the plugin works on streams over them. An adapter lives as long as anything
// that was made with it, and so does the plugin's endpoint data.
#include "middleware/fastdds/type_adapter.h"

#include "middleware/fastdds/type_announcement.h"

namespace zul {

// What every writer of this system sends; a type that travels as a parameter list promotes it.
constexpr std::uint16_t WRITER_ENCAPSULATION = ZUL_ENCAPSULATION_CDR_LE;

TypeAdapter::TypeAdapter(const char* registeredName, const ZULTypePlugin& plugin, bool announceDescription)
    : plugin_(plugin), participantData_(plugin.onParticipantAttached()) {
    if (participantData_ != nullptr) {
        writerData_ = plugin_.onEndpointAttached(participantData_, {ZUL_ENDPOINT_WRITER});
        readerData_ = plugin_.onEndpointAttached(participantData_, {ZUL_ENDPOINT_READER});
    }
    setName(registeredName);
    m_isGetKeyDefined = false;
    m_typeSize =
        static_cast<uint32_t>(plugin_.getSerializedSampleMaxSize(writerData_, true, WRITER_ENCAPSULATION, 0));
    // A peer of another maker drops an endpoint that announces TypeInformation; the older description is
    // harmless to it.
    auto_fill_type_information(false);
    auto_fill_type_object(false);
    if (announceDescription && plugin_.typeCode != nullptr) {
        announceType(*this, *plugin_.typeCode);
    }
}

TypeAdapter::~TypeAdapter() {
    if (writerData_ != nullptr) {
        plugin_.onEndpointDetached(writerData_);
    }
    if (readerData_ != nullptr) {
        plugin_.onEndpointDetached(readerData_);
    }
    if (participantData_ != nullptr) {
        plugin_.onParticipantDetached(participantData_);
    }
}

bool TypeAdapter::serialize(void* data, eprosima::fastrtps::rtps::SerializedPayload_t* payload) {
    ZULCdrOutput stream{.data = payload->data, .capacity = payload->max_size};
    if (!plugin_.serialize(writerData_, data, &stream, true, WRITER_ENCAPSULATION, true, nullptr)) {
        return false;
    }
    payload->length = static_cast<uint32_t>(stream.position);
    payload->encapsulation = payload->data[1];
    return true;
}

bool TypeAdapter::deserialize(eprosima::fastrtps::rtps::SerializedPayload_t* payload, void* data) {
    ZULCdrInput stream{.data = payload->data, .size = payload->length};
    return plugin_.deserialize(readerData_, data, &stream, true, true, nullptr);
}

std::function<uint32_t()> TypeAdapter::getSerializedSizeProvider(void* data) {
    return [this, data] {
        return static_cast<uint32_t>(
            plugin_.getSerializedSampleSize(writerData_, true, WRITER_ENCAPSULATION, 0, data));
    };
}

} // namespace zul
