#include "middleware/dds/reading_rules.h"

namespace {

bool isSameInstance(const DDS_InstanceHandle_t& left, const DDS_InstanceHandle_t& right) {
    return (left.isValid != 0) == (right.isValid != 0) &&
           std::equal(std::begin(left.value), std::end(left.value), right.value);
}

// Nil comes before the one instance, and nothing after it, whatever else a handle may once have named.
DDS_ReturnCode_t checkInstance(const DDS_ReadOrTakeParams& params) {
    if (params.instances == DDS_ANY_INSTANCE) {
        return DDS_RETCODE_OK;
    }
    if (params.handle == nullptr) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    if (params.instances == DDS_THIS_INSTANCE) {
        return isSameInstance(*params.handle, ZUL_HANDLE_KEYLESS_INSTANCE) ? DDS_RETCODE_OK
                                                                           : DDS_RETCODE_BAD_PARAMETER;
    }
    return params.handle->isValid == 0 ? DDS_RETCODE_OK : DDS_RETCODE_NO_DATA;
}

} // namespace

DDS_ReturnCode_t ZULReading_check(const DDS_DataSeqView& data, const DDS_SampleInfoSeq* infos,
                                  const DDS_ReadOrTakeParams& params) {
    const bool isLimited = params.max_samples != DDS_LENGTH_UNLIMITED;
    if (infos == nullptr || (isLimited && params.max_samples < 1)) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    ZULSequence::open(infos, __func__);
    const bool isPair =
        data.length == infos->length && data.maximum == infos->maximum && data.has_ownership == infos->owned;
    const bool hasRoom =
        data.maximum == 0 || (data.has_ownership && !(isLimited && params.max_samples > data.maximum));
    return isPair && hasRoom ? checkInstance(params) : DDS_RETCODE_PRECONDITION_NOT_MET;
}
