// The federation service's shell.
#include "middleware/dds/process.h"
#include "product/product_info.h"
#include "shell/entry.h"

int main(int argumentCount, char** arguments) {
    ZULProcess_takeOver();
    ZULProcess_exit(ROUTERShell_run(ROUTER_PRODUCT_FEDERATION_SERVICE, argumentCount, arguments));
}
