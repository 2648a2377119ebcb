# Compiler settings of every target: zul_library(name SOURCES ... LINK ...) and zul_program(...).
set(ZUL_WARNINGS -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror)
if(ZUL_SANITIZE STREQUAL "address")
    set(ZUL_SANITIZER_FLAGS -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
elseif(ZUL_SANITIZE STREQUAL "thread")
    set(ZUL_SANITIZER_FLAGS -fsanitize=thread -fno-omit-frame-pointer)
endif()

# A section for each function and object: a program keeps what it uses of a library's files.
function(zul_settings target)
    target_compile_options(${target} PRIVATE -ffunction-sections -fdata-sections ${ZUL_WARNINGS} ${ZUL_SANITIZER_FLAGS})
    target_link_options(${target} PRIVATE -Wl,--gc-sections ${ZUL_SANITIZER_FLAGS})
endfunction()

# Gives a target an include path of its own, a folder of links in the build tree with the target's folder and nothing else:
# whoever links the target can include "<folder>/...".
function(zul_include_root target scope folder)
    set(root ${PROJECT_BINARY_DIR}/include/${target})
    get_filename_component(parent ${root}/${folder} DIRECTORY)
    file(MAKE_DIRECTORY ${parent})
    file(CREATE_LINK ${PROJECT_SOURCE_DIR}/${folder} ${root}/${folder} SYMBOLIC)
    target_include_directories(${target} ${scope} $<BUILD_INTERFACE:${root}>)
endfunction()

# zul_library(<name> [OBJECT] SOURCES ... [PUBLIC_HEADERS ...] [LINK ...] [PRIVATE_LINK ...]): the library of this
# folder. PUBLIC_HEADERS are those that are installed; what is not listed stays internal.
function(zul_library target)
    cmake_parse_arguments(ARG "OBJECT" "" "SOURCES;PUBLIC_HEADERS;LINK;PRIVATE_LINK" ${ARGN})
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
endfunction()

function(zul_program target)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
    add_executable(${target} ${ARG_SOURCES})
    target_link_libraries(${target} PRIVATE ${ARG_LINK})
    zul_settings(${target})
endfunction()
