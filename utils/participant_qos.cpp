// A new name or property replaces an old one once there is memory for it.
#include "utils/participant_qos.h"

#include "middleware/base/strings.h"
#include "middleware/base/version.h"
#include "product/log_masks.h"
#include "product/product_info.h"

#include <cstring>
#include <string_view>

static constexpr std::size_t PARTICIPANT_NAME_MAX = 254; // characters

bool ROUTERUtils_setParticipantName(DDS_DomainParticipantQos* qos, const char* name, const char* qualifier,
                                    const char* suffix) {
    const std::string_view product = ROUTER_getProductInfo()->productName;
    const std::size_t length =
        product.size() + std::strlen(name) + std::strlen(qualifier) + std::strlen(suffix) + 3;
    const bool isWhole = length <= PARTICIPANT_NAME_MAX;
    const bool isQualified = *qualifier != '\0' && *suffix != '\0';
    char* text = !isWhole       ? ZULString_join({product})
                 : !isQualified ? ZULString_join({product, ": ", name})
                                : ZULString_join({product, ": ", name, ".", qualifier, suffix});
    if (text == nullptr) {
        // oddity 10
        ROUTERLog_error(ROUTER_SUBMODULE_UTILS, "ROUTERCfgFileDomainRoute_setParticipantName",
                        ZUL_LOG_OUT_OF_HEAP_STRING_d, isWhole ? length : product.size());
        return false;
    }
    DDS_String_free(qos->participant_name.name);
    qos->participant_name.name = text;
    return true;
}

bool ROUTERUtils_setServiceVersion(DDS_DomainParticipantQos* qos) {
    constexpr ZULProductVersion version{.major = 5, .minor = 1, .release = 0, .revision = 0};
    char text[ZUL_PRODUCT_VERSION_TEXT_SIZE];
    ZULProductVersion_toString(version, text);
    if (DDS_PropertyQosPolicyHelper_assert_property(&qos->property, "zul.service.version", text, 1) !=
        DDS_RETCODE_OK) {
        // oddity 34
        ROUTERLog_error(ROUTER_SUBMODULE_UTILS, __func__, ZUL_LOG_ADD_FAILURE_s,
                        "zul.service.versionproperty");
        return false;
    }
    return true;
}
