# velui_library_first(target library): puts the whole library in front of the target's own objects, so that of an inline
# function which both have the linker takes the one that was compiled as the module's are: optimised, or with the checks,
# or with the counters.
function(velui_library_first target library)
    target_link_options(${target} PRIVATE -Wl,--whole-archive $<TARGET_FILE:${library}> -Wl,--no-whole-archive)
    target_link_libraries(${target} PRIVATE ${library})
endfunction()

if(VELUI_COVERAGE)
    return()
endif()

# The module and its host program once more, in the folder checked/ of the build, with the checks of velui_checks in the
# module's own code. The tests run against both: their objects, like the host program's, are compiled once and linked with
# either library.
#
# What the checked run checks: all code of driver/, ui/, settings/, state/, diag/ and support/, with the inline functions
# of their headers and of the C++ library as they use them. The tests' and the host program's own code has neither traps nor
# the C++ library's assertions. The units of velui_runtime, which stand in for parts of the run-time, and log4cpp are the
# same objects in both runs, without traps.
# Where a test calls an inline function of a product header itself, and the library has no copy of it because the
# optimiser put it into its callers, the test's own copy runs, without traps.
set(checked_folder ${CMAKE_BINARY_DIR}/checked)

get_target_property(sources velui_core SOURCES)
add_library(velui_core_checked STATIC ${sources})
get_target_property(libraries velui_core INTERFACE_LINK_LIBRARIES)
list(FILTER libraries EXCLUDE REGEX LINK_ONLY)
target_link_libraries(velui_core_checked PRIVATE velui_checks PUBLIC ${libraries})
target_precompile_headers(velui_core_checked PRIVATE ${velui_precompiled})

add_library(VelUI_checked SHARED driver/VelUI.rc driver/VelUI.def $<TARGET_OBJECTS:velui_runtime>)
set_target_properties(VelUI_checked PROPERTIES
    PREFIX "" OUTPUT_NAME VelUI LINKER_LANGUAGE CXX
    RUNTIME_OUTPUT_DIRECTORY ${checked_folder} ARCHIVE_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib/checked)
target_link_libraries(VelUI_checked PRIVATE velui_core_checked)
velui_delay_load(VelUI_checked)
velui_late_streams(VelUI_checked)
velui_page_aligned(VelUI_checked)

# velui_checked_program(twin ...): the program once more, of the same objects, linked with the checked library. What
# follows is linked too: objects and libraries of the twin's own.
function(velui_checked_program twin)
    add_executable(${twin}_checked $<TARGET_OBJECTS:${twin}>)
    set_target_properties(${twin}_checked PROPERTIES
        OUTPUT_NAME ${twin} LINKER_LANGUAGE CXX RUNTIME_OUTPUT_DIRECTORY ${checked_folder})
    velui_library_first(${twin}_checked velui_core_checked)
    target_link_libraries(${twin}_checked PRIVATE ${ARGN})
endfunction()

# velhost_parts names the plain library, so its objects and its other libraries are named here. (Among the objects CMake
# counts the precompiled header, since the program uses it too.)
set(velhost_objects $<FILTER:$<TARGET_OBJECTS:velhost_parts>,EXCLUDE,[.]gch$>)
get_target_property(velhost_libraries velhost_parts INTERFACE_LINK_LIBRARIES)
list(REMOVE_ITEM velhost_libraries velui_core)
velui_checked_program(velhost ${velhost_objects} ${velhost_libraries})
add_custom_command(TARGET velhost_checked POST_BUILD
    COMMAND ${CMAKE_COMMAND} -E copy_directory ${CMAKE_SOURCE_DIR}/tools/velhost/sample ${checked_folder}/sample VERBATIM)
