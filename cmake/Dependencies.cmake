# The libraries that the programs use.

find_package(Qt5 5.15 REQUIRED COMPONENTS Core Gui Widgets Network Test)
if(NOT WIN32)
    find_package(Qt5 5.15 REQUIRED COMPONENTS DBus)
endif()
find_package(tinyxml2 REQUIRED)
set(ZLIB_USE_STATIC_LIBS ${WIN32})
find_package(ZLIB REQUIRED)
find_package(BZip2 REQUIRED)
find_package(LibLZMA REQUIRED)
find_package(Threads REQUIRED)

if(WIN32)
    # The libraries that are no part of Qt are linked into the program, so that fewer
    # files lie beside it.
    set_property(TARGET LibLZMA::LibLZMA APPEND PROPERTY
        INTERFACE_COMPILE_DEFINITIONS LZMA_API_STATIC)
    # Of these two only the headers are there.
    add_library(fmt::fmt INTERFACE IMPORTED)
    target_compile_definitions(fmt::fmt INTERFACE FMT_HEADER_ONLY)
    add_library(spdlog::spdlog INTERFACE IMPORTED)
    target_compile_definitions(spdlog::spdlog INTERFACE SPDLOG_HEADER_ONLY SPDLOG_FMT_EXTERNAL
        SPDLOG_WCHAR_FILENAMES)
    target_link_libraries(spdlog::spdlog INTERFACE fmt::fmt)
    foreach(name fmt spdlog)
        target_include_directories(${name}::${name} SYSTEM INTERFACE
            ${BRISORA_WINDOWS_SDK}/include-header-only)
    endforeach()
else()
    find_package(spdlog REQUIRED)
    find_package(fmt REQUIRED)
endif()
