// A parameter manager lives for the length of one call; what it found is copied out.
#include "shell/command_line.h"

#include "shell/log.h"
#include "shell/parameter_manager.h"

#include <memory>

namespace {

constexpr std::int32_t DEFAULT_DOMAIN_ID = 0;
constexpr std::int32_t DEFAULT_TIMEOUT_SECONDS = 15;
constexpr const char* CONTEXT = "ROUTERShell_getCommandLineParameters";

struct ManagerDeleter {
    void operator()(ROUTERShellParameterManager* manager) const {
        ROUTERShellParameterManager_delete(manager);
    }
};

bool getFailed() {
    shellError(CONTEXT, ZUL_LOG_ANY_FAILURE_s, "get parameter");
    return false;
}

bool getInteger(const ROUTERShellParameterManager* manager, ROUTERShellParameterId id, std::int32_t absent,
                std::int32_t& value) {
    ROUTERShellParameterValue read{.text = nullptr, .number = absent};
    if (!ROUTERShellParameterManager_getParameter(manager, &read, nullptr, id,
                                                  ROUTER_SHELL_PARAMETER_INTEGER)) {
        return getFailed();
    }
    value = read.number;
    return true;
}

bool openInput(const ROUTERShellParameterManager* manager, std::FILE*& input) {
    ROUTERShellParameterValue path{};
    std::int32_t present = 0;
    if (!ROUTERShellParameterManager_getParameter(manager, &path, &present, ROUTER_SHELL_PARAMETER_CMD_FILE,
                                                  ROUTER_SHELL_PARAMETER_STRING)) {
        return getFailed();
    }
    input = present != 0 ? std::fopen(path.text, "r") : stdin;
    if (input == nullptr && ROUTERLog_isEnabled(ZUL_LOG_LEVEL_ERROR, ROUTER_SUBMODULE_SHELL)) {
        ZULLog_debug("Could not open file %s\n", path.text);
    }
    return input != nullptr;
}

} // namespace

bool ROUTERShell_getCommandLineParameters(ROUTERShellInstance* self, int argumentCount,
                                          const char* const* arguments) {
    const std::unique_ptr<ROUTERShellParameterManager, ManagerDeleter> manager(
        ROUTERShellParameterManager_new(argumentCount, arguments));
    if (manager == nullptr) {
        shellError(CONTEXT, ZUL_LOG_CREATION_FAILURE_s, "parameter manager");
        return false;
    }
    return getInteger(manager.get(), ROUTER_SHELL_PARAMETER_DOMAIN_ID, DEFAULT_DOMAIN_ID, self->domainId) &&
           getInteger(manager.get(), ROUTER_SHELL_PARAMETER_TIMEOUT, DEFAULT_TIMEOUT_SECONDS,
                      self->timeout) &&
           openInput(manager.get(), self->input);
}
