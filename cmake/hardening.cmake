# How optimised builds defend themselves against what a hostile file might yet find: checks inside
# the standard library, the C library and the stack, and addresses that nobody can guess.
include(CheckCXXCompilerFlag)
include(CheckPIESupported)

set(CMAKE_POSITION_INDEPENDENT_CODE ON)
check_pie_supported(LANGUAGES CXX)

set(release $<CONFIG:Release,RelWithDebInfo>)
add_compile_definitions($<${release}:_GLIBCXX_ASSERTIONS>)
# Some compilers set a level of their own.
add_compile_options(
  "$<${release}:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=$<IF:$<CXX_COMPILER_ID:GNU>,3,2>>")
foreach(flag IN ITEMS -fstack-protector-strong -fstack-clash-protection -fcf-protection)
  string(MAKE_C_IDENTIFIER has${flag} has)
  check_cxx_compiler_flag(${flag} ${has})
  if(${has})
    add_compile_options($<${release}:${flag}>)
  endif()
endforeach()
add_link_options($<${release}:LINKER:-z,relro,-z,now,-z,noexecstack>)
