#include "shell/help.h"

#include "product/product_info.h"

#include <cstdio>

void ROUTERShell_printHelp() {
    const char* product = ROUTER_getProductInfo()->productName;
    std::printf("\n"
                "%s Shell, licensed under the Apache License, Version 2.0\n"
                "--------------------------------------------\n"
                "Commands:\n"
                "load     - Load %s XML configuration\n"
                "unload   - Unload current %s configuration\n",
                product, product, product);
    std::printf("enable   - Enable an entity\n"
                "disable  - Disable an entity\n"
                "pause    - Pause an entity\n"
                "resume   - Resume an entity\n"
                "update   - Update the configuration of an entity\n"
                "create   - Create an entity\n"
                "delete   - Delete an entity\n");
    // The two blanks after "Get" are part of the text that scripts compare.
    std::printf("save     - Save %s configuration to file\n"
                "get      - Get  %s configuration as a string\n"
                "add_peer - Add discovery peer for domain participant\n"
                "exit     - Exit the shell\n"
                "\n",
                product, product);
}
