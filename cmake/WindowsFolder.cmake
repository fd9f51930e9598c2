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

# Copies them into the folder of the target, once it is linked.
function(brisora_complete_windows_folder target)
    foreach(name Core Gui Widgets Network)
        list(APPEND beside ${BRISORA_WINDOWS_SDK}/bin/Qt5${name}.dll)
    endforeach()
    set(plugins
        platforms/qwindows.dll
        styles/qwindowsvistastyle.dll
        imageformats/qgif.dll
        imageformats/qico.dll
        imageformats/qjpeg.dll)

    set(commands COMMAND ${CMAKE_COMMAND} -E copy_if_different
        ${beside} $<TARGET_FILE_DIR:${target}>)
    foreach(plugin IN LISTS plugins)
        get_filename_component(folder ${plugin} DIRECTORY)
        list(APPEND commands
            COMMAND ${CMAKE_COMMAND} -E make_directory $<TARGET_FILE_DIR:${target}>/${folder}
            COMMAND ${CMAKE_COMMAND} -E copy_if_different
                ${BRISORA_WINDOWS_SDK}/plugins/${plugin} $<TARGET_FILE_DIR:${target}>/${folder})
    endforeach()
    # Plugins are looked for here and nowhere else.
    file(GENERATE OUTPUT $<TARGET_FILE_DIR:${target}>/qt.conf
        CONTENT "[Paths]\nPrefix = .\nPlugins = .\n")
    # These come with what a debugger reads, which is most of them.
    foreach(name libgcc_s_dw2-1.dll libstdc++-6.dll libwinpthread-1.dll)
        brisora_compiler_library(${name} path)
        list(APPEND commands
            COMMAND ${CMAKE_STRIP} -o $<TARGET_FILE_DIR:${target}>/${name} ${path})
    endforeach()
    add_custom_command(TARGET ${target} POST_BUILD ${commands} VERBATIM)
endfunction()
