# Helpers shared by every folder of the build.

# lumivale_layer(NAME FOLDER LINKS...): one library target per layer, made of every
# source file in its folder, so adding a file needs no edit here.
function(lumivale_layer name)
  cmake_parse_arguments(L "" "" "LINKS" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  if(sources)
    add_library(${name} STATIC ${sources})
    set(scope PUBLIC)
  else()
    add_library(${name} INTERFACE)
    set(scope INTERFACE)
  endif()
  target_include_directories(${name} ${scope} ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(${name} ${scope} ${L_LINKS})
endfunction()

# lumivale_add_test(NAME SOURCES... LIBS...): one GoogleTest executable, its cases listed in CTest.
# Every test runs in a private temporary home with a non-UTC time zone, a UTF-8 locale and Qt's
# offscreen platform, all set up by the shared test main (so a test program run by hand behaves
# as it does under CTest).
function(lumivale_add_test name)
  cmake_parse_arguments(T "" "" "SOURCES;LIBS" ${ARGN})
  add_executable(${name} ${T_SOURCES})
  target_link_libraries(${name} PRIVATE lumivale_test_support ${T_LIBS})
  gtest_discover_tests(${name}
    DISCOVERY_MODE PRE_TEST
    DISCOVERY_TIMEOUT 60
    PROPERTIES TIMEOUT 300)
endfunction()
