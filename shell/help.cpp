#include "shell/help.h"

#include "product/product_info.h"
#include "shell/commands.h"

#include <algorithm>
#include <cstdio>

void ROUTERShell_printHelp() {
    const char* product = ROUTER_getProductInfo()->productName;
    std::printf("\n"
                "%s Shell, licensed under the Apache License, Version 2.0\n"
                "--------------------------------------------\n"
                "Commands:\n",
                product);
    const auto findLine = [](int line) {
        return std::ranges::find(zul::shell::COMMANDS, line, &zul::shell::Command::helpLine);
    };
    for (int line = 1; findLine(line) != zul::shell::COMMANDS.end(); ++line) {
        std::printf("%-8s - ", findLine(line)->names[0]);
        std::printf(findLine(line)->help, product);
        std::printf("\n");
    }
    std::printf("\n");
}
