# velui_late_streams(target): lets a module make the C++ library's standard streams when logging starts instead of at load
# (support/runtime/LateStreams.cpp).
function(velui_late_streams target)
    target_sources(${target} PRIVATE ${CMAKE_SOURCE_DIR}/support/runtime/LateStreams.cpp)
    target_link_options(${target} PRIVATE
        -Wl,--wrap=_ZNSt8ios_base4InitC1Ev -Wl,--wrap=_ZNSt8ios_base4InitD1Ev)
endfunction()
