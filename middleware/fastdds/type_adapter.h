// Type adapter: presents a type plugin to the library as one of its data types. Holds a copy of the plugin
// record and the endpoint data of both endpoint kinds for as long as the type is registered or used.
#pragma once

#include "middleware/idl/type_plugin.h"

#include <fastdds/dds/topic/TopicDataType.hpp>

namespace zul {

class TypeAdapter final : public eprosima::fastdds::dds::TopicDataType {
public:
    TypeAdapter(const char* registeredName, const ZULTypePlugin& plugin, bool announceDescription);
    ~TypeAdapter() override;

    // Whether the data of both endpoint kinds exists. When false the adapter must not be registered.
    bool isComplete() const { return writerData_ != nullptr && readerData_ != nullptr; }
    const ZULTypePlugin& plugin() const { return plugin_; }
    // Samples of a reader, from its pool.
    void* getReaderSample() const { return plugin_.getSample(readerData_); }
    void returnReaderSample(void* sample) const { plugin_.returnSample(readerData_, sample); }
    bool copyReaderSample(void* destination, const void* source) const {
        return plugin_.copySample(readerData_, destination, source);
    }

    bool serialize(void* data, eprosima::fastrtps::rtps::SerializedPayload_t* payload) override;
    bool deserialize(eprosima::fastrtps::rtps::SerializedPayload_t* payload, void* data) override;
    std::function<uint32_t()> getSerializedSizeProvider(void* data) override;
    void* createData() override { return getReaderSample(); }
    void deleteData(void* data) override { returnReaderSample(data); }
    // No type here has a key.
    bool getKey(void*, eprosima::fastrtps::rtps::InstanceHandle_t*, bool) override { return false; }

private:
    ZULTypePlugin plugin_;
    ZULParticipantData* participantData_;
    ZULEndpointData* writerData_ = nullptr;
    ZULEndpointData* readerData_ = nullptr;
};

} // namespace zul
