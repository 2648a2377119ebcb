// How the templates of this folder spell the C names of a type's operations: ZUL_TYPE is the type's full name
// where a template is included. (A type's operations have its name in theirs, which only pasting can do.)
#pragma once

#define ZUL_PASTE(left, right) left##right
#define ZUL_JOIN(left, right) ZUL_PASTE(left, right)
#define ZUL_NAME(suffix) ZUL_JOIN(ZUL_TYPE, suffix)

#define ZUL_OPERATION(name) ZUL_NAME(_##name)
#define ZUL_SEQUENCE ZUL_NAME(Seq)
#define ZUL_SEQ(name) ZUL_NAME(Seq_##name)
#define ZUL_PLUGIN(name) ZUL_NAME(Plugin_##name)
#define ZUL_PLUGIN_SUPPORT(name) ZUL_NAME(PluginSupport_##name)
#define ZUL_TYPE_SUPPORT(name) ZUL_NAME(TypeSupport_##name)
#define ZUL_DATA_WRITER ZUL_NAME(DataWriter)
#define ZUL_WRITER_OPERATION(name) ZUL_NAME(DataWriter_##name)
#define ZUL_DATA_READER ZUL_NAME(DataReader)
#define ZUL_READER_OPERATION(name) ZUL_NAME(DataReader_##name)
