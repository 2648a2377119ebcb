// Command-line parameters: a table of options and the manager that parses an argument vector against it.
// Values refer to the argument vector, which must outlive the manager.
#pragma once

#include <cstdint>

enum ROUTERShellParameterType {
    ROUTER_SHELL_PARAMETER_NONE,
    ROUTER_SHELL_PARAMETER_STRING,
    ROUTER_SHELL_PARAMETER_INTEGER
};

enum ROUTERShellParameterId {
    ROUTER_SHELL_PARAMETER_DOMAIN_ID,
    ROUTER_SHELL_PARAMETER_TIMEOUT,
    ROUTER_SHELL_PARAMETER_CMD_FILE,
    ROUTER_SHELL_PARAMETER_HELP,
};
constexpr int ROUTER_SHELL_PARAMETER_SLOTS = 3; // the options with a value; help has none

struct ROUTERShellParameterDesc {
    const char* name; // without the leading dash
    ROUTERShellParameterType type;
    const char* description;
    std::int32_t required;
    std::int32_t reserved; // 1 in every row; never read
};
extern const ROUTERShellParameterDesc
    ROUTERShellParameterManager_g_parameterDesc[4];                          // by ROUTERShellParameterId
extern const char* const ROUTERShellParameterManager_g_parameterTypeDesc[3]; // by ROUTERShellParameterType

constexpr std::int32_t ROUTER_SHELL_PARAMETER_MANAGER_INITIALIZED = 0x7344;
constexpr std::int32_t ROUTER_SHELL_PARAMETER_MANAGER_FINALIZED = 0x7345;

struct ROUTERShellParameterManager {
    std::int32_t state;
    struct {
        std::int32_t present;
        const char* value;
    } slots[ROUTER_SHELL_PARAMETER_SLOTS];
};

// A value read from the manager: the member of the wanted type is set.
struct ROUTERShellParameterValue {
    const char* text;
    std::int32_t number;
};

// Null, with a log line, on failure. The arguments are those after the program name. `_initialize` takes a
// record of zeroes.
ROUTERShellParameterManager* ROUTERShellParameterManager_new(int argumentCount, const char* const* arguments);
bool ROUTERShellParameterManager_initialize(ROUTERShellParameterManager* self, int argumentCount,
                                            const char* const* arguments);
// `value` and `present` may be null. An absent option is no failure. An INTEGER without a digit is; what
// follows the digits is ignored, and a number beyond 32 bits becomes the nearest one within.
bool ROUTERShellParameterManager_getParameter(const ROUTERShellParameterManager* self,
                                              ROUTERShellParameterValue* value, std::int32_t* present,
                                              ROUTERShellParameterId id, ROUTERShellParameterType wantedType);
void ROUTERShellParameterManager_finalize(ROUTERShellParameterManager* self);
void ROUTERShellParameterManager_delete(ROUTERShellParameterManager* self);

// To standard output. Usage is the same text as help.
void ROUTERShellParameterManager_printHelp(const char* programName);
void ROUTERShellParameterManager_printUsage(const char* programName);
void ROUTERShellParameterManager_printVersion();
