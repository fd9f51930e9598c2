# The files that lie beside the Windows program, so that its folder runs as it
# stands.

# Where the compiler keeps a library of its own.
function(brisora_compiler_library name result)
    execute_process(
        COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${name}
        OUTPUT_VARIABLE path
        OUTPUT_STRIP_TRAILING_WHITESPACE)
    if(NOT IS_ABSOLUTE "${path}")
        message(FATAL_ERROR "The compiler has no ${name}")
    endif()
    set(${result} ${path} PARENT_SCOPE)
endfunction()

# Puts them into this folder's binary folder, together with the target. Each build
# brings back what has been deleted or is older than its source.
function(brisora_complete_windows_folder target)
    set(folder ${CMAKE_CURRENT_BINARY_DIR})
    set_target_properties(${target} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${folder})

    set(sources ${CMAKE_CURRENT_SOURCE_DIR}/windows/qt.conf)
    set(files qt.conf)
    foreach(name Core Gui Widgets Network)
        list(APPEND sources ${BRISORA_WINDOWS_SDK}/bin/Qt5${name}.dll)
        list(APPEND files Qt5${name}.dll)
    endforeach()
    foreach(plugin
            platforms/qwindows.dll
            styles/qwindowsvistastyle.dll
            imageformats/qgif.dll
            imageformats/qico.dll
            imageformats/qjpeg.dll)
        list(APPEND sources ${BRISORA_WINDOWS_SDK}/plugins/${plugin})
        list(APPEND files ${plugin})
    endforeach()
    list(TRANSFORM files PREPEND ${folder}/)
    foreach(source file IN ZIP_LISTS sources files)
        add_custom_command(
            OUTPUT ${file}
            COMMAND ${CMAKE_COMMAND} -E copy ${source} ${file}
            DEPENDS ${source}
            VERBATIM)
    endforeach()

    # These come with what a debugger reads, which is most of them.
    foreach(name libgcc_s_dw2-1.dll libstdc++-6.dll libwinpthread-1.dll)
        brisora_compiler_library(${name} path)
        add_custom_command(
            OUTPUT ${folder}/${name}
            COMMAND ${CMAKE_STRIP} -o ${folder}/${name} ${path}
            DEPENDS ${path}
            VERBATIM)
        list(APPEND files ${folder}/${name})
    endforeach()

    add_custom_target(${target}_windows_folder DEPENDS ${files})
    add_dependencies(${target} ${target}_windows_folder)
endfunction()
