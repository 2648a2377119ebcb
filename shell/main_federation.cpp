// The federation service's shell.
#include "product/product_info.h"
#include "shell/entry.h"

int main(int argumentCount, char** arguments) {
    return ROUTERShell_run(ROUTER_PRODUCT_FEDERATION_SERVICE, argumentCount, arguments);
}
