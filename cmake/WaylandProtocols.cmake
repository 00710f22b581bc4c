# vistrel_wayland_protocols(TARGET xml...): generates the client header and the interface code of each
# protocol description with wayland-scanner and adds them to TARGET, whose sources then include
# "<name>-client-protocol.h" (name: the XML file's name without .xml).
find_program(WAYLAND_SCANNER wayland-scanner REQUIRED)

function(vistrel_wayland_protocols target)
  set(out "${CMAKE_CURRENT_BINARY_DIR}/wayland-protocols")
  file(MAKE_DIRECTORY "${out}")
  foreach(xml IN LISTS ARGN)
    get_filename_component(name "${xml}" NAME_WE)
    add_custom_command(OUTPUT "${out}/${name}-client-protocol.h"
      COMMAND "${WAYLAND_SCANNER}" client-header "${xml}" "${out}/${name}-client-protocol.h"
      DEPENDS "${xml}" VERBATIM)
    add_custom_command(OUTPUT "${out}/${name}-protocol.c"
      COMMAND "${WAYLAND_SCANNER}" private-code "${xml}" "${out}/${name}-protocol.c"
      DEPENDS "${xml}" VERBATIM)
    target_sources(${target} PRIVATE "${out}/${name}-client-protocol.h" "${out}/${name}-protocol.c")
  endforeach()
  target_include_directories(${target} PUBLIC "${out}")
endfunction()
