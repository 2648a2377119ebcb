// The shell of the product variant that ZUL_PRODUCT names.
#include "middleware/dds/process.h"
#include "product/product_info.h"
#include "shell/entry.h"

int main(int argumentCount, char** arguments) {
    ZULProcess_takeOver();
    ZULProcess_exit(ROUTERShell_run(ZUL_PRODUCT, argumentCount, arguments));
}
