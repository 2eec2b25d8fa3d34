# SPDX-License-Identifier: MIT
#
# For the folders of what users run: what the compiler and the linker have against someone who found
# a fault, as documents come from anywhere; and arithmetic that is the same on machines that could
# add a product without rounding it.
include(CheckCXXCompilerFlag)
include(CheckPIESupported)
check_pie_supported()

add_compile_options(-ffp-contract=off -fstack-protector-strong)
check_cxx_compiler_flag(-fstack-clash-protection VORN_HAS_STACK_CLASH_PROTECTION)
if(VORN_HAS_STACK_CLASH_PROTECTION)
  add_compile_options(-fstack-clash-protection)
endif()
# This takes an optimising compiler, and some systems' compilers have it already.
add_compile_options("$<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
if(VORN_SANITIZE)
  add_compile_definitions(_GLIBCXX_ASSERTIONS)
endif()
add_link_options(LINKER:-z,relro LINKER:-z,now LINKER:-z,noexecstack)
