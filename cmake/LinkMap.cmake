# velui_link_map(target ...): lets the linker write down what it puts into a program, in the folder maps/ of the build.
# tools/package.py reads there whose notices go with the program.
function(velui_link_map)
    file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/maps)
    foreach(target ${ARGN})
        target_link_options(${target} PRIVATE -Wl,-Map,${CMAKE_BINARY_DIR}/maps/${target}.map)
    endforeach()
endfunction()
