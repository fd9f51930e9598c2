# The targets of this project: one function each for libraries, programs and
# tests, so that language level, warnings and Qt's strict macros are the same
# everywhere, and so that a library states which others it may use.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_AUTOMOC ON)
set(CMAKE_AUTOUIC ON)
set(CMAKE_AUTORCC ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_SKIP_RPATH ON)

option(BRISORA_WERROR "Treat warnings as errors" OFF)
option(BRISORA_FUZZ "Build the fuzz targets (needs Clang)" OFF)
set(BRISORA_SANITIZE "" CACHE STRING "Sanitizers, as -fsanitize takes them, or empty")

# The system suffix of the files that hold system calls.
if(WIN32)
    set(BRISORA_SYSTEM windows)
else()
    set(BRISORA_SYSTEM linux)
endif()

# What all of our code is compiled with, also where no sanitizer may be.
add_library(brisora_plain_options INTERFACE)
target_compile_options(brisora_plain_options INTERFACE
    $<$<COMPILE_LANGUAGE:CXX>:-Wall -Wextra -Wpedantic -Wconversion -Wshadow
        -Wnon-virtual-dtor -Wold-style-cast>
    # GCC 12 finds overlaps in its own std::string when it optimises for 32 bits.
    $<$<PLATFORM_ID:Windows>:-Wno-restrict>
    $<$<BOOL:${BRISORA_WERROR}>:-Werror>)
target_compile_definitions(brisora_plain_options INTERFACE
    QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_URL_CAST_FROM_STRING
    QT_NO_FOREACH QT_NO_KEYWORDS QT_NO_NARROWING_CONVERSIONS_IN_CONNECT
    QT_DEPRECATED_WARNINGS
    $<$<CONFIG:Debug>:_GLIBCXX_ASSERTIONS>)
# Windows 7 is the oldest one. The linker writes the number of a much older one, for
# which Windows changes what it tells and does.
target_link_options(brisora_plain_options INTERFACE
    $<$<PLATFORM_ID:Windows>:
        LINKER:--major-os-version=6,--minor-os-version=1
        LINKER:--major-subsystem-version=6,--minor-subsystem-version=1>)
target_include_directories(brisora_plain_options INTERFACE ${PROJECT_SOURCE_DIR})

add_library(brisora_options INTERFACE)
target_link_libraries(brisora_options INTERFACE brisora_plain_options)

if(BRISORA_SANITIZE)
    target_compile_options(brisora_options INTERFACE
        -fsanitize=${BRISORA_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(brisora_options INTERFACE -fsanitize=${BRISORA_SANITIZE})
endif()

if(BRISORA_FUZZ)
    # Coverage in all of our code guides the fuzz targets.
    target_compile_options(brisora_options INTERFACE -fsanitize=fuzzer-no-link)
endif()

# The file of each named base that belongs to this system:
# "port_driver" becomes "port_driver_linux.cpp" or "port_driver_windows.cpp".
function(brisora_system_sources result)
    set(files)
    foreach(base IN LISTS ARGN)
        list(APPEND files ${base}_${BRISORA_SYSTEM}.cpp)
        # For moc, which finds a header by the name of its source only.
        if(EXISTS ${CMAKE_CURRENT_SOURCE_DIR}/${base}.h)
            list(APPEND files ${base}.h)
        endif()
    endforeach()
    set(${result} ${files} PARENT_SCOPE)
endfunction()

# brisora_library(name SOURCES ... [SYSTEM base ...] [USES target ...])
# A static library. SYSTEM names the bases of files with a form per system,
# USES the targets that the library may use; users of the library get them too.
function(brisora_library name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;SYSTEM;USES")
    brisora_system_sources(system_files ${arg_SYSTEM})
    add_library(${name} STATIC ${arg_SOURCES} ${system_files})
    target_link_libraries(${name} PUBLIC ${arg_USES} PRIVATE brisora_options)
    target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR})
endfunction()

# brisora_program(name SOURCES ... [SYSTEM base ...] [USES target ...])
function(brisora_program name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;SYSTEM;USES")
    brisora_system_sources(system_files ${arg_SYSTEM})
    add_executable(${name} ${arg_SOURCES} ${system_files})
    target_link_libraries(${name} PRIVATE ${arg_USES} brisora_options)
endfunction()

# brisora_test(name LABEL label SOURCES ... [USES target ...] [TIMEOUT seconds]
#              [FUNCTIONS function ...])
# A Qt Test program, run by ctest without a display: all of its test functions, or
# the named ones.
function(brisora_test name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "LABEL;TIMEOUT" "SOURCES;USES;FUNCTIONS")
    add_executable(${name} ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE ${arg_USES} test_support Qt5::Test brisora_options)
    add_test(NAME ${name} COMMAND ${name} ${arg_FUNCTIONS})
    if(NOT arg_TIMEOUT)
        set(arg_TIMEOUT 120)
    endif()
    if(TARGET brisora_windows_resources)
        target_link_libraries(${name} PRIVATE brisora_windows_resources)
    endif()
    set(environment "QT_QPA_PLATFORM=offscreen")
    if(BRISORA_SANITIZE MATCHES "thread")
        list(APPEND environment
            "TSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/support/tsan.supp")
    endif()
    set_tests_properties(${name} PROPERTIES
        LABELS "${arg_LABEL}"
        TIMEOUT ${arg_TIMEOUT}
        ENVIRONMENT "${environment}")

    # A target per label, for builds that run one group only.
    foreach(label IN LISTS arg_LABEL)
        if(NOT TARGET ${label}_tests)
            add_custom_target(${label}_tests)
        endif()
        add_dependencies(${label}_tests ${name})
    endforeach()
endfunction()
