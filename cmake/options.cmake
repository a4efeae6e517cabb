# What every target of this project is compiled with.
add_library(xmlpp_options INTERFACE)
target_compile_options(xmlpp_options INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
target_compile_definitions(xmlpp_options INTERFACE
  QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_CAST_FROM_BYTEARRAY)

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

# A folder of src/ as a static library. Its headers are seen only by those that link it, so a
# dependency that the architecture does not allow fails to compile.
function(xmlpp_library name)
  add_library(${name} STATIC ${ARGN})
  target_include_directories(${name} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
  target_link_libraries(${name} PUBLIC Qt6::Core PRIVATE xmlpp_options)
  target_compile_options(${name} PRIVATE ${across_folders} ${and_by_folder})
endfunction()
