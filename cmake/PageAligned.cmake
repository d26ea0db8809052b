# velui_page_aligned(target): lets each section begin at a whole page of the file, as it does in memory. Wine maps such a
# file, and each page is read when it is touched; any other it copies into memory of the process's own at every load.
function(velui_page_aligned target)
    target_link_options(${target} PRIVATE -Wl,--file-alignment,4096)
endfunction()
