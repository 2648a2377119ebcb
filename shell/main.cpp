// The shell of the product variant ZUL_PRODUCT, which the build names for each program.
#include "middleware/dds/process.h"
#include "product/product_info.h"
#include "shell/entry.h"

int main(int argumentCount, char** arguments) {
    ZULProcess_takeOver();
    ZULProcess_exit(ROUTERShell_run(ZUL_PRODUCT, argumentCount, arguments));
}
