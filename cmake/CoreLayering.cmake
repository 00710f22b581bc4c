# Fails when a folder of the core below the app layer includes from it: src/core/app wires the other
# folders together and sits on top of them. Run as a build step:
#   cmake -DSOURCE_DIR=<repository> -DSTAMP=<file written on success> -P CoreLayering.cmake
file(GLOB_RECURSE sources "${SOURCE_DIR}/src/core/*.h" "${SOURCE_DIR}/src/core/*.cpp")
set(offences)
foreach(source IN LISTS sources)
  file(RELATIVE_PATH relative "${SOURCE_DIR}" "${source}")
  if(relative MATCHES "^src/core/app/")
    continue()
  endif()
  file(STRINGS "${source}" includes REGEX "^[ \t]*#[ \t]*include[ \t]*[\"<]app/")
  foreach(line IN LISTS includes)
    string(STRIP "${line}" line)
    string(APPEND offences "\n  ${relative}: ${line}")
  endforeach()
endforeach()
if(offences)
  message(FATAL_ERROR "Only src/core/app may include from the app layer; it sits on top of the core. "
                      "Hand the lower folder what it needs instead:${offences}")
endif()
file(TOUCH "${STAMP}")
