// Instances of keyless topics: the same answers whatever implements the entities.
#include "middleware/dds/dds.h"

namespace {

DDS_ReturnCode_t endInstance(const DDS_DataWriter* writer, const void* sample,
                             const DDS_WriteParams_t* params) {
    return writer == nullptr || sample == nullptr || params == nullptr ? DDS_RETCODE_BAD_PARAMETER
                                                                       : DDS_RETCODE_PRECONDITION_NOT_MET;
}

} // namespace

DDS_InstanceHandle_t DDS_DataWriter_register_instance_w_params(DDS_DataWriter* /*self*/,
                                                               const void* /*sample*/,
                                                               const DDS_WriteParams_t* /*params*/) {
    return DDS_HANDLE_NIL;
}

DDS_ReturnCode_t DDS_DataWriter_unregister_instance_w_params(DDS_DataWriter* self, const void* sample,
                                                             const DDS_WriteParams_t* params) {
    return endInstance(self, sample, params);
}

DDS_ReturnCode_t DDS_DataWriter_dispose_w_params(DDS_DataWriter* self, const void* sample,
                                                 const DDS_WriteParams_t* params) {
    return endInstance(self, sample, params);
}

DDS_ReturnCode_t DDS_DataWriter_get_key_value(DDS_DataWriter* /*self*/, void* /*key*/,
                                              const DDS_InstanceHandle_t* /*handle*/) {
    return DDS_RETCODE_BAD_PARAMETER;
}

DDS_InstanceHandle_t DDS_DataWriter_lookup_instance(DDS_DataWriter* /*self*/, const void* /*key*/) {
    return DDS_HANDLE_NIL;
}
