# Turns drawings (SVG) into the pictures that the resource script names.

find_program(RSVG_CONVERT rsvg-convert REQUIRED)
find_program(ICOTOOL icotool REQUIRED)
find_program(PNGTOPAM pngtopam REQUIRED)
find_program(PNMQUANT pnmquant REQUIRED)
find_program(PPMTOBMP ppmtobmp REQUIRED)

# velui_icon(<svg> <ico>): an icon of all sizes from 16 to 256 pixels. The two that pages show at 96 dpi are kept as they
# are, which loads fastest; the others as PNG inside it, which is smaller.
function(velui_icon SVG ICO)
    get_filename_component(name ${ICO} NAME_WE)
    set(commands)
    set(pictures)
    foreach(size 16 24 32 48 64 128 256)
        set(png ${CMAKE_BINARY_DIR}/generated/${name}-${size}.png)
        list(APPEND commands COMMAND ${RSVG_CONVERT} -w ${size} -h ${size} -o ${png} ${SVG})
        if(NOT size MATCHES "^(32|64)$")
            list(APPEND pictures --raw=${png})
        else()
            list(APPEND pictures ${png})
        endif()
    endforeach()
    add_custom_command(OUTPUT ${ICO} ${commands} COMMAND ${ICOTOOL} -c -o ${ICO} ${pictures} DEPENDS ${SVG} VERBATIM)
endfunction()

# velui_bitmap(<svg> <bmp> <width> <height>): a bitmap of at most 256 colours, of 8 bits a pixel.
function(velui_bitmap SVG BMP WIDTH HEIGHT)
    add_custom_command(OUTPUT ${BMP}
        COMMAND ${RSVG_CONVERT} -w ${WIDTH} -h ${HEIGHT} --background-color=white -o ${BMP}.png ${SVG}
        COMMAND ${PNGTOPAM} -quiet ${BMP}.png > ${BMP}.full.ppm
        COMMAND ${PNMQUANT} -quiet 256 ${BMP}.full.ppm > ${BMP}.ppm
        COMMAND ${PPMTOBMP} -quiet -bpp=8 ${BMP}.ppm > ${BMP}
        DEPENDS ${SVG} VERBATIM)
endfunction()
