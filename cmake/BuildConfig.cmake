# Everything that a maker of a build may want to change: addresses, account
# names, the copyright line and the names of drivers. An empty address hides or
# disables the action that needs it.

set(BRISORA_WEB_SITE "https://brisora.example" CACHE STRING "The maker's web site")
set(BRISORA_FEED_SITE "https://updates.brisora.example" CACHE STRING "Host of the update feed")
set(BRISORA_TRACKER_SITE "https://tracker.brisora.example" CACHE STRING "Host of the issue tracker")
set(BRISORA_SUPPORT_PAGE "https://brisora.example/support" CACHE STRING "The page of the online help")
set(BRISORA_TRANSLATION_PAGE "https://brisora.example/translate" CACHE STRING "The page where people translate the texts")
set(BRISORA_RATING_PAGE "https://brisora.example/rate" CACHE STRING "The product's page on a rating site")
set(BRISORA_SOCIAL_PAGE "https://brisora.example/follow" CACHE STRING "The maker's page on a social site")
set(BRISORA_SUPPORT_ADDRESS "support@brisora.example" CACHE STRING "Address of the support")
set(BRISORA_COPYRIGHT "Copyright (c) 2013-%1 Orvane Software" CACHE STRING "Copyright line; %1 is the present year")
# For what is fixed at the build: the year of the release.
string(REPLACE "%1" "2026" BRISORA_RELEASE_COPYRIGHT "${BRISORA_COPYRIGHT}")
set(BRISORA_HAL_DEVICE "\\\\.\\MacHALDriver" CACHE STRING "Symbolic name of the HAL device")
set(BRISORA_HAL_TOOL "C:\\Program Files\\Boot Camp\\Bootcamp.exe" CACHE STRING "Path of the HAL driver's support tool")
set(BRISORA_HAL_DRIVER "C:\\Windows\\Sysnative\\drivers\\MacHALDriver.sys" CACHE STRING "Path of the HAL driver's file")

# Names of drivers are kept reversed in the program.
foreach(name HAL_DEVICE HAL_TOOL HAL_DRIVER)
    set(reversed "")
    string(LENGTH "${BRISORA_${name}}" length)
    math(EXPR last "${length} - 1")
    foreach(position RANGE ${last})
        string(SUBSTRING "${BRISORA_${name}}" ${position} 1 character)
        string(PREPEND reversed "${character}")
    endforeach()
    string(REPLACE "\\" "\\\\" BRISORA_${name}_REVERSED "${reversed}")
endforeach()

configure_file(${CMAKE_CURRENT_LIST_DIR}/build_config.h.in
               ${PROJECT_BINARY_DIR}/generated/build_config.h @ONLY)

add_library(build_config INTERFACE)
target_include_directories(build_config INTERFACE ${PROJECT_BINARY_DIR}/generated)
