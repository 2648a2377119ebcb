// A parameter manager lives for the length of one call; what it found is copied out.
#include "shell/command_line.h"

#include "shell/log.h"
#include "shell/parameter_manager.h"

#include <memory>

namespace {

constexpr std::int32_t DEFAULT_DOMAIN_ID = 0;
constexpr std::int32_t DEFAULT_TIMEOUT_SECONDS = 15;
constexpr const char* CONTEXT = "ROUTERShell_getCommandLineParameters";

// An absent option leaves the value as it is.
bool get(const ROUTERShellParameterManager& manager, ROUTERShellParameterId id, ROUTERShellParameterType type,
         ROUTERShellParameterValue& value) {
    if (!ROUTERShellParameterManager_getParameter(&manager, &value, nullptr, id, type)) {
        shellError(CONTEXT, ZUL_LOG_ANY_FAILURE_s, "get parameter");
        return false;
    }
    return true;
}

} // namespace

bool ROUTERShell_getCommandLineParameters(ROUTERShellInstance* self, int argumentCount,
                                          const char* const* arguments) {
    const std::unique_ptr<ROUTERShellParameterManager, void (*)(ROUTERShellParameterManager*)> manager(
        ROUTERShellParameterManager_new(argumentCount, arguments), ROUTERShellParameterManager_delete);
    if (manager == nullptr) {
        shellError(CONTEXT, ZUL_LOG_CREATION_FAILURE_s, "parameter manager");
        return false;
    }
    ROUTERShellParameterValue domain{.text = nullptr, .number = DEFAULT_DOMAIN_ID};
    ROUTERShellParameterValue timeout{.text = nullptr, .number = DEFAULT_TIMEOUT_SECONDS};
    ROUTERShellParameterValue path{};
    if (!get(*manager, ROUTER_SHELL_PARAMETER_DOMAIN_ID, ROUTER_SHELL_PARAMETER_INTEGER, domain) ||
        !get(*manager, ROUTER_SHELL_PARAMETER_TIMEOUT, ROUTER_SHELL_PARAMETER_INTEGER, timeout) ||
        !get(*manager, ROUTER_SHELL_PARAMETER_CMD_FILE, ROUTER_SHELL_PARAMETER_STRING, path)) {
        return false;
    }
    self->domainId = domain.number;
    self->timeout = timeout.number;
    self->input = path.text != nullptr ? std::fopen(path.text, "r") : stdin;
    if (self->input == nullptr && ROUTERLog_isEnabled(ZUL_LOG_LEVEL_ERROR, ROUTER_SUBMODULE_SHELL)) {
        ZULLog_debug("Could not open file %s\n", path.text);
    }
    return self->input != nullptr;
}
