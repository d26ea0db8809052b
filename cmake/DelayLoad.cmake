# Which libraries of Windows the module takes at its first call to them instead of at load, and how it is linked so.
#
# A process that loads the module pays for every library in its import table, and those that draw windows cost many times
# the module. So the import table names kernel32, advapi32 and msvcrt alone, which every process has; behind every other
# function stands a slot that loads its library when it is first called (support/runtime/DelayLoad.cpp).
#
# A function that is called and not listed here is linked plainly, and tests/driver/ModuleFileTest.cpp tells of it.
set(velui_delayed_libraries comctl32 gdi32 iphlpapi shell32 user32 ws2_32)
set(velui_delayed_comctl32 CreatePropertySheetPageW DestroyPropertySheetPage)
set(velui_delayed_gdi32
    CreateCompatibleDC CreateDIBSection DeleteDC DeleteObject GdiFlush GetDIBits GetObjectW SelectObject SetViewportOrgEx)
set(velui_delayed_iphlpapi GetAdaptersInfo)
set(velui_delayed_shell32 SHGetFolderPathW)
set(velui_delayed_user32
    CheckDlgButton EnableWindow GetClientRect GetDlgItem GetDlgItemTextW GetParent GetWindowLongPtrW GetWindowTextW
    IsDlgButtonChecked IsWindow LoadImageW LoadStringW MapWindowPoints MessageBoxW PostMessageW SendDlgItemMessageW
    SendMessageW SetDlgItemTextW SetWindowLongPtrW SetWindowTextW)
# Of log4cpp's syslog appenders, and of the machine's identity.
set(velui_delayed_ws2_32
    WSACleanup WSAGetLastError WSAStartup closesocket gethostbyaddr gethostbyname gethostname htons inet_addr sendto socket)

set(delay_folder ${CMAKE_BINARY_DIR}/delayload)
set(delay_files)
foreach(library ${velui_delayed_libraries})
    list(JOIN velui_delayed_${library} "\n" names)
    file(CONFIGURE OUTPUT ${delay_folder}/${library}.def CONTENT "LIBRARY ${library}.dll\nEXPORTS\n${names}\n")
    set(file ${delay_folder}/lib${library}_delay.a)
    # The tool puts its description of the library among the code. It goes to the constants, between the marks that
    # DelayLoad.cpp sets there. The tool's names come from the file's, which therefore has no folder in front.
    add_custom_command(OUTPUT ${file}
        COMMAND ${CMAKE_DLLTOOL} -m i386:x86-64 -d ${library}.def -y lib${library}_delay.a
        COMMAND ${CMAKE_OBJCOPY} --rename-section .text$2=.rdata$delay2,alloc,load,readonly,data,contents
            lib${library}_delay.a
        DEPENDS ${delay_folder}/${library}.def WORKING_DIRECTORY ${delay_folder} VERBATIM)
    list(APPEND delay_files ${file})
endforeach()
add_custom_target(velui_delay_files DEPENDS ${delay_files})

# The platform's libraries, for all code of the module and of log4cpp: plainly, but for a target that velui_delay_load()
# has marked.
add_library(velui_platform INTERFACE)
target_link_libraries(velui_platform INTERFACE
    "$<IF:$<BOOL:$<TARGET_PROPERTY:VELUI_DELAY_LOAD>>,${delay_files},${velui_delayed_libraries}>" advapi32)

# velui_delay_load(target): lets the target take these libraries at its first call to them.
function(velui_delay_load target)
    set_target_properties(${target} PROPERTIES VELUI_DELAY_LOAD ON LINK_DEPENDS "${delay_files}")
    add_dependencies(${target} velui_delay_files)
endfunction()
