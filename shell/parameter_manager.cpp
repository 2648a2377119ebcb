// The help text is written out: it shows less than the table of options holds. An option may be cut short, so
// the table's order decides between two that begin alike.
#include "shell/parameter_manager.h"

#include "middleware/base/heap.h"
#include "middleware/base/strings.h"
#include "middleware/base/version.h"
#include "product/messages.h"
#include "product/product_info.h"
#include "remote_config/log.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

const ROUTERShellParameterDesc ROUTERShellParameterManager_g_parameterDesc[4] = {
    {"domainId", ROUTER_SHELL_PARAMETER_INTEGER, "", 0, 1},
    {"timeout", ROUTER_SHELL_PARAMETER_INTEGER, "", 0, 1},
    {"cmdFile", ROUTER_SHELL_PARAMETER_STRING, "", 0, 1},
    {"help", ROUTER_SHELL_PARAMETER_NONE, "Displays this information", 0, 1},
};
const char* const ROUTERShellParameterManager_g_parameterTypeDesc[3] = {"", "<string>", "<integer>"};

namespace {

bool badParameter(const char* context, const char* name) {
    remoteConfigError(context, ROUTER_LOG_PARAMETER_MANAGER_BAD_PARAMETER_s, name);
    return false;
}

// The first option with a value that begins with the given name; -1 when none does. An empty name is a prefix
// of the first.
int findSlot(std::string_view name) {
    for (int slot = 0; slot < ROUTER_SHELL_PARAMETER_SLOTS; ++slot) {
        const std::string_view full = ROUTERShellParameterManager_g_parameterDesc[slot].name;
        if (ZULString_equalsIgnoreCase(full.substr(0, name.size()), name)) {
            return slot;
        }
    }
    return -1;
}

} // namespace

ROUTERShellParameterManager* ROUTERShellParameterManager_new(int argumentCount,
                                                             const char* const* arguments) {
    auto* self = ZULHeap_allocate<ROUTERShellParameterManager>();
    if (self == nullptr) {
        remoteConfigError(__func__, ZUL_LOG_OUT_OF_HEAP_STRUCT_d, sizeof(ROUTERShellParameterManager));
        return nullptr;
    }
    if (!ROUTERShellParameterManager_initialize(self, argumentCount, arguments)) {
        remoteConfigError(__func__, ZUL_LOG_INIT_FAILURE_s, "parameter manager");
        ZULHeap_free(self);
        return nullptr;
    }
    return self;
}

bool ROUTERShellParameterManager_initialize(ROUTERShellParameterManager* self, int argumentCount,
                                            const char* const* arguments) {
    if (self->state == ROUTER_SHELL_PARAMETER_MANAGER_INITIALIZED) {
        return true;
    }
    std::fill(std::begin(self->slots), std::end(self->slots),
              std::remove_reference_t<decltype(self->slots[0])>{});
    for (int i = 0; i < argumentCount; ++i) {
        if (arguments[i][0] != '-') {
            return badParameter(__func__, arguments[i]);
        }
        const char* name = arguments[i] + 1;
        const int slot = findSlot(name);
        if (slot < 0) {
            return badParameter(__func__, name);
        }
        self->slots[slot].present = 1;
        if (ROUTERShellParameterManager_g_parameterDesc[slot].type == ROUTER_SHELL_PARAMETER_NONE) {
            continue;
        }
        if (++i == argumentCount) {
            return badParameter(__func__, name);
        }
        self->slots[slot].value = arguments[i];
    }
    for (int slot = 0; slot < ROUTER_SHELL_PARAMETER_SLOTS; ++slot) {
        const ROUTERShellParameterDesc& row = ROUTERShellParameterManager_g_parameterDesc[slot];
        if (row.required != 0 && self->slots[slot].present == 0) {
            remoteConfigError(__func__, ROUTER_LOG_PARAMETER_MANAGER_REQUIRED_PARAMETER_s, row.name);
            return false;
        }
    }
    self->state = ROUTER_SHELL_PARAMETER_MANAGER_INITIALIZED;
    return true;
}

bool ROUTERShellParameterManager_getParameter(const ROUTERShellParameterManager* self,
                                              ROUTERShellParameterValue* value, std::int32_t* present,
                                              ROUTERShellParameterId id,
                                              ROUTERShellParameterType wantedType) {
    const bool isPresent = id < ROUTER_SHELL_PARAMETER_SLOTS && self->slots[id].present != 0;
    if (present != nullptr) {
        *present = isPresent ? 1 : 0;
    }
    if (!isPresent) {
        return true;
    }
    ROUTERShellParameterValue read{.text = self->slots[id].value, .number = 0};
    if (wantedType == ROUTER_SHELL_PARAMETER_INTEGER) {
        char* end = nullptr;
        const long number = std::strtol(read.text, &end, 10);
        if (end == read.text) {
            return badParameter(__func__, ROUTERShellParameterManager_g_parameterDesc[id].name);
        }
        read.number = static_cast<std::int32_t>(std::clamp<long>(number, INT32_MIN, INT32_MAX));
    }
    if (value != nullptr) {
        *value = read;
    }
    return true;
}

void ROUTERShellParameterManager_finalize(ROUTERShellParameterManager* self) {
    self->state = ROUTER_SHELL_PARAMETER_MANAGER_FINALIZED;
}

void ROUTERShellParameterManager_delete(ROUTERShellParameterManager* self) {
    ROUTERShellParameterManager_finalize(self);
    ZULHeap_free(self);
}

void ROUTERShellParameterManager_printHelp(const char* programName) {
    ROUTERShellParameterManager_printVersion();
    std::printf("Usage: %s [options]...\n\nOptions:\n"
                " -domainId  <integer>   Domain id for the remote configuration\n"
                " -timeout   <seconds>   Max time to wait a remote response\n"
                " -cmdFile   <file>      Run commands in this file\n"
                " -help                  Displays this information\n",
                programName);
}

void ROUTERShellParameterManager_printUsage(const char* programName) {
    ROUTERShellParameterManager_printHelp(programName);
}

void ROUTERShellParameterManager_printVersion() {
    const ZULProductVersion version = ZULProductVersion_get();
    const char* product = ROUTER_getProductInfo()->productName;
    std::printf("%s Shell %d.%d%c", product, version.major, version.minor, version.release); // oddity 41
    if (version.revision > 0) {
        std::printf(" (rev %d)", version.revision);
    }
    std::printf("\n");
}
