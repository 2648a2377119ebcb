# Compiler settings of every target: zul_library(name SOURCES ... LINK ...) and zul_program(...).
set(ZUL_WARNINGS -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror)
if(ZUL_SANITIZE STREQUAL "address")
    set(ZUL_SANITIZER_FLAGS -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
elseif(ZUL_SANITIZE STREQUAL "thread")
    set(ZUL_SANITIZER_FLAGS -fsanitize=thread -fno-omit-frame-pointer)
endif()

# The warnings that follow inlined calls: GCC 12 forgets that what it inlines from a precompiled header is not ours, and warns
# about the insides of std::string. The sanitized builds have no precompiled headers and look for these.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND NOT CMAKE_DISABLE_PRECOMPILE_HEADERS)
    list(APPEND ZUL_WARNINGS -Wno-array-bounds -Wno-nonnull -Wno-restrict -Wno-stringop-overflow
        -Wno-stringop-overread)
endif()

# A section for each function and object, so that a program keeps only what it uses of a library's files.
function(zul_settings target)
    target_compile_options(${target} PRIVATE -ffunction-sections -fdata-sections ${ZUL_WARNINGS} ${ZUL_SANITIZER_FLAGS})
    target_link_options(${target} PRIVATE -Wl,--gc-sections ${ZUL_SANITIZER_FLAGS})
endfunction()

# zul_precompiled(<name> HEADERS ... [LINK ...]): headers that most files of a library include, compiled once instead of in
# each. Only foreign ones: a layer must not see another's headers by the back door. A file still includes what it uses:
# "./run check" reads each without this.
function(zul_precompiled name)
    cmake_parse_arguments(ARG "" "" "HEADERS;LINK" ${ARGN})
    add_library(${name} OBJECT ${PROJECT_SOURCE_DIR}/cmake/precompiled.cpp)
    target_link_libraries(${name} PRIVATE ${ARG_LINK})
    target_precompile_headers(${name} PRIVATE ${ZUL_STANDARD_HEADERS} ${ARG_HEADERS})
    zul_settings(${name})
endfunction()
set(ZUL_STANDARD_HEADERS <algorithm> <array> <functional> <map> <memory> <optional> <span> <string> <string_view>
    <unordered_map> <vector>)
zul_precompiled(zul_standard_headers)

# Gives a target an include path of its own, a folder of links in the build tree with the target's folder and nothing else:
# whoever links the target can include "<folder>/...".
function(zul_include_root target scope folder)
    set(root ${PROJECT_BINARY_DIR}/include/${target})
    get_filename_component(parent ${root}/${folder} DIRECTORY)
    file(MAKE_DIRECTORY ${parent})
    file(CREATE_LINK ${PROJECT_SOURCE_DIR}/${folder} ${root}/${folder} SYMBOLIC)
    target_include_directories(${target} ${scope} $<BUILD_INTERFACE:${root}>)
endfunction()

# zul_library(<name> [OBJECT] SOURCES ... [PUBLIC_HEADERS ...] [LINK ...] [PRIVATE_LINK ...] [PRECOMPILED <name>]): the
# library of this folder. PUBLIC_HEADERS are those that are installed; what is not listed stays internal.
function(zul_library target)
    cmake_parse_arguments(ARG "OBJECT" "PRECOMPILED" "SOURCES;PUBLIC_HEADERS;LINK;PRIVATE_LINK" ${ARGN})
    if(NOT ARG_PRECOMPILED)
        set(ARG_PRECOMPILED zul_standard_headers)
    endif()
    if(ARG_OBJECT)
        add_library(${target} OBJECT ${ARG_SOURCES})
    else()
        add_library(${target} STATIC ${ARG_SOURCES})
    endif()
    file(RELATIVE_PATH folder ${PROJECT_SOURCE_DIR} ${CMAKE_CURRENT_SOURCE_DIR})
    zul_include_root(${target} PUBLIC ${folder})
    list(TRANSFORM ARG_PUBLIC_HEADERS PREPEND ${folder}/)
    set_target_properties(${target} PROPERTIES ZUL_PUBLIC_HEADERS "${ARG_PUBLIC_HEADERS}")
    target_link_libraries(${target} PUBLIC ${ARG_LINK} PRIVATE ${ARG_PRIVATE_LINK})
    zul_settings(${target})
    target_precompile_headers(${target} REUSE_FROM ${ARG_PRECOMPILED})
endfunction()

function(zul_program target)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
    add_executable(${target} ${ARG_SOURCES})
    target_link_libraries(${target} PRIVATE ${ARG_LINK})
    zul_settings(${target})
endfunction()
