# One target a folder. A folder is a wing of the house; it links only what stands on the floors below.

add_library(corlune_options INTERFACE)
target_compile_options(corlune_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wimplicit-fallthrough -Werror)
# GCC 12 warns falsely about overlapping copies where std::string takes over a short literal.
target_compile_options(corlune_options INTERFACE $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-Wno-restrict>)
if(CORLUNE_SANITIZE)
  set(_corlune_sanitizers -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_compile_options(corlune_options INTERFACE ${_corlune_sanitizers})
  target_link_options(corlune_options INTERFACE ${_corlune_sanitizers})
endif()
if(CORLUNE_FUZZ)
  target_compile_options(corlune_options INTERFACE -fsanitize=fuzzer-no-link)
endif()

# corlune_wing(NAME [DEPENDS wing...] [LIBRARIES target...])
# Static library corlune_NAME from every .cpp of the calling folder.
function(corlune_wing name)
  cmake_parse_arguments(ARG "" "" "DEPENDS;LIBRARIES" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  if(sources)
    add_library(corlune_${name} STATIC ${sources})
    set(scope PUBLIC)
  else()
    add_library(corlune_${name} INTERFACE)
    set(scope INTERFACE)
  endif()
  target_include_directories(corlune_${name} ${scope} ${CMAKE_SOURCE_DIR}/src)
  target_link_libraries(corlune_${name} ${scope} corlune_options ${ARG_LIBRARIES})
  foreach(wing ${ARG_DEPENDS})
    target_link_libraries(corlune_${name} ${scope} corlune_${wing})
  endforeach()
endfunction()

# corlune_tests(NAME [LIBRARIES target...]): one GoogleTest program from every .cpp of the calling folder.
function(corlune_tests name)
  cmake_parse_arguments(ARG "" "" "LIBRARIES" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  if(NOT sources)
    return()
  endif()
  add_executable(test_${name} ${sources})
  target_include_directories(test_${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests ${CMAKE_SOURCE_DIR})
  target_compile_definitions(test_${name} PRIVATE
    CORLUNE_TEST_DATA="${CMAKE_SOURCE_DIR}/tests/data"
    CORLUNE_DATA="${CMAKE_SOURCE_DIR}/data"
    CORLUNE_BIN="${CMAKE_BINARY_DIR}/bin")
  target_link_libraries(test_${name} PRIVATE ${ARG_LIBRARIES} corlune_options GTest::gmock GTest::gtest_main)
  gtest_discover_tests(test_${name} TEST_PREFIX "${name}." DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 120)
endfunction()
