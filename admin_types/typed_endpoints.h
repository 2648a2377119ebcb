// Typed writers and readers of the two types that travel by themselves: typed views of the untyped endpoints,
// whose records they take and give. family/typed_writer_decl.inc, typed_reader_decl.inc and
// typed_reads_decl.inc say what each operation does. Both types are keyless; middleware/dds/dds.h says what
// that means for instances.
#pragma once

#include "admin_types/sequences.h"
#include "middleware/dds/dds.h"

#define ZUL_TEMPLATE "admin_types/family/typed_writer_decl.inc"
#include "admin_types/family/sample_types.inc"
#undef ZUL_TEMPLATE

#define ZUL_TEMPLATE "admin_types/family/typed_reader_decl.inc"
#include "admin_types/family/sample_types.inc"
#undef ZUL_TEMPLATE
