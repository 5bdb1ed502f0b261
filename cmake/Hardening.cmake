# What a distribution hardens its programs with; scripts/check-hardening looks for it in the built
# ones. Left out where a sanitizer or the measurement of coverage has the program's memory in hand,
# and of a debug build, in which the fortified functions of the C library do nothing.
include(CheckCXXCompilerFlag)

target_compile_options(runner_options INTERFACE -fstack-protector-strong)
# Undefined first: some compilers come with a level of their own, and warn.
target_compile_options(runner_options INTERFACE -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
target_link_options(runner_options INTERFACE LINKER:-z,relro,-z,now,-z,noexecstack)

# Not on every processor. A program is marked as protected by cf-protection only where the C
# library's own objects are, which those of Debian 12 are not.
foreach(flag stack-clash-protection cf-protection)
  string(MAKE_C_IDENTIFIER RUNNER_HAS_${flag} has_flag)
  check_cxx_compiler_flag(-f${flag} ${has_flag})
  if(${has_flag})
    target_compile_options(runner_options INTERFACE -f${flag})
  endif()
endforeach()
