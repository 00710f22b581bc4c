# Vistrel.app: the macOS application bundle, with its Info.plist made from these settings, Sparkle
# copied into Contents/Frameworks when the build has it, and a signature over the whole bundle.
include("${PROJECT_SOURCE_DIR}/cmake/VistrelInfoPlist.cmake")

set(VISTREL_BUNDLE_IDENTIFIER "com.vistrel.Vistrel" CACHE STRING
  "CFBundleIdentifier; also the user-defaults domain of the settings")
set(VISTREL_SHORT_VERSION "${PROJECT_VERSION}" CACHE STRING "CFBundleShortVersionString: the version users see")
set(VISTREL_BUILD_VERSION "${PROJECT_VERSION}" CACHE STRING
  "CFBundleVersion: the build, which Sparkle compares with sparkle:version in the feed")
set(VISTREL_UPDATE_FEED_URL "" CACHE STRING "SUFeedURL: the Sparkle appcast; empty turns update checks off")
set(VISTREL_UPDATE_PUBLIC_ED_KEY "" CACHE STRING
  "SUPublicEDKey: the EdDSA public key of the updates (Sparkle's generate_keys); empty turns update checks off")
set(VISTREL_CODESIGN_IDENTITY "-" CACHE STRING
  "Signing identity for the bundle after each build: '-' signs ad hoc, empty leaves it as the linker signed it")

set(info_plist "${CMAKE_CURRENT_BINARY_DIR}/Info.plist")
vistrel_write_info_plist(
  TEMPLATE "${PROJECT_SOURCE_DIR}/resources/macos/Info.plist.in" OUTPUT "${info_plist}"
  EXECUTABLE Vistrel IDENTIFIER "${VISTREL_BUNDLE_IDENTIFIER}"
  SHORT_VERSION "${VISTREL_SHORT_VERSION}" BUILD_VERSION "${VISTREL_BUILD_VERSION}"
  MINIMUM_SYSTEM "${CMAKE_OSX_DEPLOYMENT_TARGET}"
  FEED_URL "${VISTREL_UPDATE_FEED_URL}" PUBLIC_ED_KEY "${VISTREL_UPDATE_PUBLIC_ED_KEY}")

add_library(vistrel_mac_set STATIC MacPlatform.cpp MacPlatform.h)
target_include_directories(vistrel_mac_set PUBLIC "${CMAKE_CURRENT_SOURCE_DIR}")
target_link_libraries(vistrel_mac_set PUBLIC vistrel_platform vistrel_ui PRIVATE vistrel_options)

add_executable(vistrel MACOSX_BUNDLE main_macos.cpp AppLaunch.cpp AppLaunch.h)
target_link_libraries(vistrel PRIVATE vistrel_mac_set vistrel_options)
set_target_properties(vistrel PROPERTIES
  OUTPUT_NAME Vistrel
  MACOSX_BUNDLE_INFO_PLIST "${info_plist}"
  # Embedded frameworks (Sparkle); Qt is found where it was linked from, or embedded by macdeployqt.
  BUILD_RPATH "@executable_path/../Frameworks"
  INSTALL_RPATH "@executable_path/../Frameworks")

set(frameworks_dir "$<TARGET_BUNDLE_CONTENT_DIR:vistrel>/Frameworks")
get_target_property(sparkle_framework vistrel_platform VISTREL_SPARKLE_FRAMEWORK)
if(sparkle_framework)
  # ditto keeps the framework's symbolic links and signatures.
  add_custom_command(TARGET vistrel POST_BUILD
    COMMAND "${CMAKE_COMMAND}" -E rm -rf "${frameworks_dir}/Sparkle.framework"
    COMMAND "${CMAKE_COMMAND}" -E make_directory "${frameworks_dir}"
    COMMAND ditto "${sparkle_framework}" "${frameworks_dir}/Sparkle.framework"
    COMMENT "Embedding Sparkle.framework"
    VERBATIM)
endif()
if(NOT VISTREL_CODESIGN_IDENTITY STREQUAL "")
  # The screen-recording permission and the login item belong to the signature: a bundle signed as a
  # whole keeps them within one build, and a stable identity keeps them across builds.
  add_custom_command(TARGET vistrel POST_BUILD
    COMMAND codesign --force --deep --sign "${VISTREL_CODESIGN_IDENTITY}" "$<TARGET_BUNDLE_DIR:vistrel>"
    COMMENT "Signing Vistrel.app (${VISTREL_CODESIGN_IDENTITY})"
    VERBATIM)
endif()

install(TARGETS vistrel BUNDLE DESTINATION .)
