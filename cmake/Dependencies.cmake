# The libraries that are installed and called, as imported targets:
#   velui::log4cpp   static log4cpp with the definitions that its users must share
#   velui::boost     Boost's headers
#   velui::catch2    Catch2 3, a static library without its main
#   velui::cli       CLI11 and nlohmann/json, for velhost
#
# With vcpkg they come from its manifest; its log4cpp lacks what Log4cppThrows.cmake does. In the cross build log4cpp and
# Catch2 are built from their archives, and the header-only ones are Debian's, each seen through a link in a folder of its
# own: /usr/include itself must never enter the include path of the target.

set(VELUI_LOG4CPP_SHA256 696113659e426540625274a8b251052cc04306d8ee5c42a0c7639f39ca90c9d6)
set(VELUI_LOG4CPP_ARCHIVE ${CMAKE_SOURCE_DIR}/.deps/log4cpp_1.1.4.orig.tar.gz
    CACHE FILEPATH "log4cpp's source archive; tools/setup.sh puts it there")
set(VELUI_CATCH2_SHA256 c991b247a1a0d7bb9c39aa35faf0fe9e19764213f28ffba3109388e62ee0269c)
set(VELUI_CATCH2_ARCHIVE ${CMAKE_SOURCE_DIR}/.deps/catch2_3.7.1.orig.tar.gz
    CACHE FILEPATH "Catch2's source archive; tools/setup.sh puts it there")

function(velui_header_target name)
    add_library(velui::${name} INTERFACE IMPORTED GLOBAL)
    foreach(folder ${ARGN})
        if(NOT EXISTS /usr/include/${folder})
            message(FATAL_ERROR "/usr/include/${folder} is missing: run tools/setup.sh first")
        endif()
        file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/deps/${name})
        file(CREATE_LINK /usr/include/${folder} ${CMAKE_BINARY_DIR}/deps/${name}/${folder} SYMBOLIC)
    endforeach()
    set_target_properties(velui::${name} PROPERTIES
        INTERFACE_INCLUDE_DIRECTORIES ${CMAKE_BINARY_DIR}/deps/${name}
        INTERFACE_SYSTEM_INCLUDE_DIRECTORIES ${CMAKE_BINARY_DIR}/deps/${name})
endfunction()

if(CMAKE_CROSSCOMPILING)
    velui_header_target(boost boost)
    velui_header_target(cli CLI nlohmann)

    include(ExternalProject)
    set(log4cpp_dir ${CMAKE_BINARY_DIR}/deps/log4cpp)
    set(log4cpp_lib ${log4cpp_dir}/install/lib/liblog4cpp.a)
    # in_addr_t is missing from MinGW's headers; log4cpp means the type of in_addr.s_addr.
    set(log4cpp_definitions LOG4CPP_HAVE_INT64_T in_addr_t=u_long)
    # The build folder must not show in the module's symbols, and so in the checksum of them that the module carries.
    set(log4cpp_flags "-O2 -g -ffunction-sections -fdata-sections -w -DNDEBUG -ffile-prefix-map=${log4cpp_dir}=log4cpp")
    foreach(definition ${log4cpp_definitions})
        string(APPEND log4cpp_flags " -D${definition}")
    endforeach()
    ExternalProject_Add(log4cpp_build
        PREFIX ${log4cpp_dir}
        URL ${VELUI_LOG4CPP_ARCHIVE}
        URL_HASH SHA256=${VELUI_LOG4CPP_SHA256}
        DOWNLOAD_EXTRACT_TIMESTAMP TRUE
        PATCH_COMMAND ${CMAKE_COMMAND} -P ${CMAKE_CURRENT_LIST_DIR}/Log4cppThrows.cmake
        CMAKE_ARGS
            -DCMAKE_TOOLCHAIN_FILE=${CMAKE_TOOLCHAIN_FILE}
            -DCMAKE_BUILD_TYPE=None
            -DCMAKE_CXX_FLAGS=${log4cpp_flags}
            -DCMAKE_INSTALL_PREFIX=${log4cpp_dir}/install
            -Wno-dev
        BUILD_BYPRODUCTS ${log4cpp_lib}
        LOG_CONFIGURE TRUE LOG_BUILD TRUE LOG_INSTALL TRUE LOG_OUTPUT_ON_FAILURE TRUE)
    # The folder must exist when the imported target is made, before the library is built.
    file(MAKE_DIRECTORY ${log4cpp_dir}/install/include)
    add_library(velui::log4cpp STATIC IMPORTED GLOBAL)
    add_dependencies(velui::log4cpp log4cpp_build)
    set_target_properties(velui::log4cpp PROPERTIES
        IMPORTED_LOCATION ${log4cpp_lib}
        INTERFACE_INCLUDE_DIRECTORIES ${log4cpp_dir}/install/include
        INTERFACE_SYSTEM_INCLUDE_DIRECTORIES ${log4cpp_dir}/install/include
        INTERFACE_COMPILE_DEFINITIONS "${log4cpp_definitions}"
        INTERFACE_LINK_LIBRARIES velui_platform)

    # Catch2 has 100 sources, which cost 90 s of a processor one by one; the one file that its makers put them together in
    # costs 15. The tests include its single headers all the same: they need few of them.
    set(catch2_dir ${CMAKE_BINARY_DIR}/deps/catch2)
    file(SHA256 ${VELUI_CATCH2_ARCHIVE} catch2_sum)
    if(NOT catch2_sum STREQUAL VELUI_CATCH2_SHA256)
        message(FATAL_ERROR "${VELUI_CATCH2_ARCHIVE} is not Catch2 3.7.1: run tools/setup.sh first")
    endif()
    file(ARCHIVE_EXTRACT INPUT ${VELUI_CATCH2_ARCHIVE} DESTINATION ${catch2_dir})
    set(CATCH_CONFIG_DEFAULT_REPORTER console)
    set(CATCH_CONFIG_CONSOLE_WIDTH 120)
    configure_file(${catch2_dir}/Catch2-3.7.1/src/catch2/catch_user_config.hpp.in
        ${catch2_dir}/generated/catch2/catch_user_config.hpp)
    add_library(velui_catch2 STATIC EXCLUDE_FROM_ALL ${catch2_dir}/Catch2-3.7.1/extras/catch_amalgamated.cpp)
    target_include_directories(velui_catch2 SYSTEM PUBLIC ${catch2_dir}/Catch2-3.7.1/src ${catch2_dir}/generated)
    target_compile_definitions(velui_catch2 PRIVATE
        CATCH_AMALGAMATED_CUSTOM_MAIN CATCH_CONFIG_CONSOLE_WIDTH=${CATCH_CONFIG_CONSOLE_WIDTH})
    target_compile_options(velui_catch2 PRIVATE -O1 -g0 -w)
    add_library(velui::catch2 ALIAS velui_catch2)
else()
    find_package(log4cpp CONFIG REQUIRED)
    find_package(Boost REQUIRED)
    find_package(Catch2 3 CONFIG REQUIRED)
    find_package(CLI11 CONFIG REQUIRED)
    find_package(nlohmann_json CONFIG REQUIRED)
    add_library(velui::log4cpp ALIAS log4cpp::log4cpp)
    add_library(velui::boost ALIAS Boost::headers)
    add_library(velui::catch2 ALIAS Catch2::Catch2)
    add_library(velui_cli INTERFACE)
    target_link_libraries(velui_cli INTERFACE CLI11::CLI11 nlohmann_json::nlohmann_json)
    add_library(velui::cli ALIAS velui_cli)
endif()
