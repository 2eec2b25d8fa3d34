# SPDX-License-Identifier: MIT
#
# vorn_codecs: FFmpeg's libraries, those that scripts/codecs built, or else the system's.
set(VORN_CODECS ${CMAKE_SOURCE_DIR}/build/codecs CACHE PATH "Where scripts/codecs built the codecs")
set(libraries avformat avcodec swscale swresample avutil)

add_library(vorn_codecs INTERFACE)
if(EXISTS ${VORN_CODECS}/built)
  # Whatever uses them keeps their names to itself.
  target_include_directories(vorn_codecs SYSTEM INTERFACE ${VORN_CODECS}/include)
  foreach(library IN LISTS libraries)
    target_link_libraries(vorn_codecs INTERFACE ${VORN_CODECS}/lib/lib${library}.a)
    target_link_options(vorn_codecs INTERFACE LINKER:--exclude-libs,lib${library}.a)
  endforeach()
  # The vector code refers to data of its own library.
  target_link_options(vorn_codecs INTERFACE LINKER:-Bsymbolic)
  target_link_libraries(vorn_codecs INTERFACE Threads::Threads m)
else()
  message(STATUS "Codecs: the system's, as scripts/codecs has not built any")
  list(TRANSFORM libraries PREPEND lib)
  pkg_check_modules(LIBAV REQUIRED IMPORTED_TARGET ${libraries})
  target_link_libraries(vorn_codecs INTERFACE PkgConfig::LIBAV)
endif()
