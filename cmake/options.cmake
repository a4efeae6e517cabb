# What every target of this project is compiled with. A preset makes warnings errors; whoever
# builds with another compiler is not stopped by what that has to say.
add_library(xmlpp_options INTERFACE)
target_compile_options(xmlpp_options INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow)

# Sizes, inode numbers and times of files have 64 bits, on processors that have 32 as well.
add_compile_definitions(_FILE_OFFSET_BITS=64 _TIME_BITS=64)

# A comma-separated list for -fsanitize, for example "address,undefined".
set(XMLPP_SANITIZE "" CACHE STRING "Sanitizers to build with")
if(XMLPP_SANITIZE)
  add_compile_options(-fsanitize=${XMLPP_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${XMLPP_SANITIZE})
endif()

# The program as it is released is optimised across its folders. What else links the libraries,
# such as the tests, takes the ordinary code that is in them too.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  set(across_folders $<$<CONFIG:Release>:-flto=auto>)
  set(and_by_folder $<$<CONFIG:Release>:-ffat-lto-objects>)
endif()

# As it is released, the program needs nothing to be loaded: that takes longer than a small run does.
# Where there is no static C library, it is the C++ library alone that goes into the program.
include(CheckCXXSourceCompiles)
set(CMAKE_REQUIRED_LINK_OPTIONS -static-pie)
check_cxx_source_compiles("#include <cstdio>\nint main() { return std::puts(\"\"); }" XMLPP_HAS_STATIC)
unset(CMAKE_REQUIRED_LINK_OPTIONS)
option(XMLPP_STATIC "Link the released program with the C library too" ${XMLPP_HAS_STATIC})
if(XMLPP_SANITIZE)
  set(self_contained "")
elseif(XMLPP_STATIC)
  set(self_contained $<$<CONFIG:Release>:-static-pie>)
else()
  set(self_contained $<$<CONFIG:Release>:-static-libstdc++;-static-libgcc>)
endif()
# Every object can be part of such a program, with whatever a compiler does by default.
add_compile_options(-fPIE)

# A folder of src/ as a static library. Its headers are seen only by those that link it, so a
# dependency that the architecture does not allow fails to compile.
function(xmlpp_library name)
  add_library(${name} STATIC ${ARGN})
  target_include_directories(${name} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
  target_link_libraries(${name} PRIVATE xmlpp_options)
  target_compile_options(${name} PRIVATE ${across_folders} ${and_by_folder})
endfunction()

# A program of src/, as it is released; all of them are the target "programs".
add_custom_target(programs)
function(xmlpp_program name)
  add_executable(${name} ${ARGN})
  target_link_libraries(${name} PRIVATE xmlpp_options xmlpp_driver)
  target_compile_options(${name} PRIVATE ${across_folders} ${and_by_folder})
  target_link_options(${name} PRIVATE ${across_folders} ${self_contained})
  add_dependencies(programs ${name})
  install(TARGETS ${name})
endfunction()
