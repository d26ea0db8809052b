# velui_split_debug(target): strips the built file and keeps its debug symbols beside it, as <file>.debug, linked to it
# by name and checksum. (-p keeps the time stamp in the headers, which the linker has set to 0.)
function(velui_split_debug target)
    if(NOT CMAKE_BUILD_TYPE STREQUAL "Release" OR NOT CMAKE_OBJCOPY)
        return()
    endif()
    add_custom_command(TARGET ${target} POST_BUILD
        COMMAND ${CMAKE_OBJCOPY} -p --only-keep-debug $<TARGET_FILE:${target}> $<TARGET_FILE:${target}>.debug
        COMMAND ${CMAKE_STRIP} -p --strip-all $<TARGET_FILE:${target}>
        COMMAND ${CMAKE_OBJCOPY} -p --add-gnu-debuglink=$<TARGET_FILE:${target}>.debug $<TARGET_FILE:${target}>
        BYPRODUCTS ${CMAKE_BINARY_DIR}/${target}.dll.debug
        VERBATIM)
endfunction()
