# One target a folder. A folder is a wing of the house; it links only what stands on the floors below.

add_library(corlune_options INTERFACE)
target_compile_options(corlune_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wimplicit-fallthrough)
# GCC 12 warns falsely about overlapping copies where std::string takes over a short literal.
target_compile_options(corlune_options INTERFACE $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-Wno-restrict>)
if(CORLUNE_WERROR)
  target_compile_options(corlune_options INTERFACE -Werror)
endif()
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

# corlune_qt_wing(NAME ...): the same for a wing of the window.
function(corlune_qt_wing name)
  set(CMAKE_AUTOMOC ON)
  corlune_wing(${name} ${ARGN} LIBRARIES Qt6::Widgets)
  file(GLOB headers CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.h)
  target_sources(corlune_${name} PRIVATE ${headers})
endfunction()

# corlune_test_program(TARGET [LIBRARIES target...]): what all test programs have in common. They hold no code
# whose speed counts, so an optimised build spends nothing on that; at -O1 GCC 12 also warns falsely of strings.
function(corlune_test_program target)
  cmake_parse_arguments(ARG "" "" "LIBRARIES" ${ARGN})
  target_include_directories(${target} PRIVATE ${CMAKE_SOURCE_DIR}/tests ${CMAKE_SOURCE_DIR})
  target_compile_definitions(${target} PRIVATE
    CORLUNE_TEST_DATA="${CMAKE_SOURCE_DIR}/tests/data"
    CORLUNE_DATA="${CMAKE_SOURCE_DIR}/data"
    CORLUNE_BIN="${CMAKE_BINARY_DIR}/bin")
  target_link_libraries(${target} PRIVATE ${ARG_LIBRARIES} corlune_options GTest::gmock)
  target_compile_options(${target} PRIVATE $<$<CONFIG:Release>:-O0>)
endfunction()

# corlune_tests(NAME [LIBRARIES target...]): one GoogleTest program from every .cpp of the calling folder.
function(corlune_tests name)
  cmake_parse_arguments(ARG "" "" "LIBRARIES" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  if(NOT sources)
    return()
  endif()
  add_executable(test_${name} ${sources})
  corlune_test_program(test_${name} LIBRARIES ${ARG_LIBRARIES} GTest::gtest_main)
  if(CORLUNE_PRECOMPILE)
    target_compile_options(test_${name} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-fpch-preprocess>)  # for ccache
    get_property(owner GLOBAL PROPERTY CORLUNE_PRECOMPILED)
    if(owner)
      target_precompile_headers(test_${name} REUSE_FROM ${owner})
    else()
      target_precompile_headers(test_${name} PRIVATE
        <gmock/gmock.h> <algorithm> <array> <cmath> <fstream> <functional> <map> <memory> <optional> <string> <vector>)
      set_property(GLOBAL PROPERTY CORLUNE_PRECOMPILED test_${name})
    endif()
  endif()
  gtest_discover_tests(test_${name} TEST_PREFIX "${name}." DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 120)
endfunction()
