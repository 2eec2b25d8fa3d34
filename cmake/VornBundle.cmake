# SPDX-License-Identifier: MIT
#
# vorn_bundle(<name> INFO_PLIST <file> SOURCES <files> [LIBRARIES <libraries>] [FOLDER <folder>]):
# a plug-in bundle on disk,
#   <name>.plugin/Contents/Info.plist      the information dictionary, variables filled in
#   <name>.plugin/Contents/Linux/<name>.so all of the library `vorn_framework`, the libraries, and
#                                          SOURCES, which define MakeNewPlugin
# in VORN_PLUGINS_DIR, or in another folder of the build's top folder.
# It finds the toolbox in the folder lib beside plugins, and where it is installed, in
# lib/vorn/plugins, above itself.
# It exports the names of src/exported-names.txt that it defines, and nothing else.

set(VORN_EXPORTED_NAMES ${CMAKE_CURRENT_LIST_DIR}/../src/exported-names.txt)
set(VORN_VERSION_SCRIPT ${CMAKE_BINARY_DIR}/exported-names.ver)

# The linker's version script, made from the list of names.
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${VORN_EXPORTED_NAMES})
file(STRINGS ${VORN_EXPORTED_NAMES} names REGEX "^[A-Za-z]")
list(JOIN names ";\n    " names)
file(CONFIGURE OUTPUT ${VORN_VERSION_SCRIPT} @ONLY
     CONTENT "{\n  global:\n    @names@;\n  local:\n    *;\n};\n")

function(vorn_bundle name)
  cmake_parse_arguments(ARG "" "INFO_PLIST;FOLDER" "SOURCES;LIBRARIES" ${ARGN})
  if(NOT ARG_FOLDER)
    set(ARG_FOLDER ${VORN_PLUGINS_DIR})
  endif()
  set(contents ${ARG_FOLDER}/${name}.plugin/Contents)
  set(VORN_BUNDLE_NAME ${name})
  configure_file(${ARG_INFO_PLIST} ${contents}/Info.plist @ONLY)

  # As objects, so that what a host or a decoder calls is there whether the sources call it or not.
  add_library(${name} MODULE ${ARG_SOURCES} $<TARGET_OBJECTS:vorn_framework>)
  target_link_libraries(${name} PRIVATE ${ARG_LIBRARIES} vorntoolbox)
  # What a fuzzer's sanitizers need is in the program that loads the bundle.
  target_link_options(${name} PRIVATE LINKER:--version-script=${VORN_VERSION_SCRIPT}
                      $<$<NOT:$<BOOL:${VORN_FUZZ}>>:LINKER:-z,defs>)
  set_target_properties(${name} PROPERTIES
    PREFIX ""
    LIBRARY_OUTPUT_DIRECTORY ${contents}/Linux
    LINK_DEPENDS ${VORN_VERSION_SCRIPT}
    BUILD_WITH_INSTALL_RPATH ON
    INSTALL_RPATH "$ORIGIN/../../../../lib:$ORIGIN/../../../../..")
endfunction()
