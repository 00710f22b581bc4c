# Writes the Info.plist of the macOS application bundle from resources/macos/Info.plist.in. Usable from a
# build (include() it) and as a script, which the tests use on every system:
#
#   cmake -DTEMPLATE=… -DOUTPUT=… -DEXECUTABLE=… -DIDENTIFIER=… -DSHORT_VERSION=… -DBUILD_VERSION=…
#         -DMINIMUM_SYSTEM=… [-DFEED_URL=…] [-DPUBLIC_ED_KEY=…] -P VistrelInfoPlist.cmake
#
# The Sparkle keys are written only when they have a value: an empty SUFeedURL would make Sparkle
# report a broken feed instead of none.

function(vistrel_plist_escape out text)
  string(REPLACE "&" "&amp;" text "${text}")
  string(REPLACE "<" "&lt;" text "${text}")
  string(REPLACE ">" "&gt;" text "${text}")
  set(${out} "${text}" PARENT_SCOPE)
endfunction()

# vistrel_write_info_plist(TEMPLATE path OUTPUT path EXECUTABLE name IDENTIFIER id SHORT_VERSION v
#                          BUILD_VERSION v MINIMUM_SYSTEM v [FEED_URL url] [PUBLIC_ED_KEY key])
function(vistrel_write_info_plist)
  cmake_parse_arguments(P ""
    "TEMPLATE;OUTPUT;EXECUTABLE;IDENTIFIER;SHORT_VERSION;BUILD_VERSION;MINIMUM_SYSTEM;FEED_URL;PUBLIC_ED_KEY" "" ${ARGN})
  foreach(field EXECUTABLE IDENTIFIER SHORT_VERSION BUILD_VERSION MINIMUM_SYSTEM)
    if("${P_${field}}" STREQUAL "")
      message(FATAL_ERROR "vistrel_write_info_plist: ${field} is empty")
    endif()
    vistrel_plist_escape(VISTREL_PLIST_${field} "${P_${field}}")
  endforeach()
  set(VISTREL_PLIST_SPARKLE_KEYS "")
  foreach(entry "SUFeedURL;FEED_URL" "SUPublicEDKey;PUBLIC_ED_KEY")
    list(GET entry 0 key)
    list(GET entry 1 field)
    string(STRIP "${P_${field}}" value)
    if(NOT value STREQUAL "")
      vistrel_plist_escape(value "${value}")
      string(APPEND VISTREL_PLIST_SPARKLE_KEYS "\t<key>${key}</key>\n\t<string>${value}</string>\n")
    endif()
  endforeach()
  configure_file("${P_TEMPLATE}" "${P_OUTPUT}" @ONLY)
endfunction()

if(CMAKE_SCRIPT_MODE_FILE STREQUAL CMAKE_CURRENT_LIST_FILE)
  vistrel_write_info_plist(TEMPLATE "${TEMPLATE}" OUTPUT "${OUTPUT}" EXECUTABLE "${EXECUTABLE}"
    IDENTIFIER "${IDENTIFIER}" SHORT_VERSION "${SHORT_VERSION}" BUILD_VERSION "${BUILD_VERSION}"
    MINIMUM_SYSTEM "${MINIMUM_SYSTEM}" FEED_URL "${FEED_URL}" PUBLIC_ED_KEY "${PUBLIC_ED_KEY}")
endif()
