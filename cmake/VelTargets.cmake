# Helpers that keep the folders' own lists short.

function(vel_subdirectory folder)
  if(EXISTS "${CMAKE_SOURCE_DIR}/${folder}/CMakeLists.txt")
    add_subdirectory("${CMAKE_SOURCE_DIR}/${folder}" "${CMAKE_BINARY_DIR}/${folder}" ${ARGN})
  endif()
endfunction()

# GCC 12 takes joined std::strings for overlapping ones when it optimises; -Wrestrict is off for that reason alone.
function(vel_warnings target)
  target_compile_options(${target} PRIVATE
    "$<$<COMPILE_LANGUAGE:C,CXX>:-Wall;-Wextra;-Werror;-Wshadow;-Wvla>"
    "$<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>"
    "$<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor;-Woverloaded-virtual>")
endfunction()

# A shared library of the suite: vel_suite_library(velutil VelUtil SOURCES ... LIBS ...)
# Defines <TARGET>_EXPORTS while the library itself is compiled, as CMake does.
function(vel_suite_library target output)
  cmake_parse_arguments(arg "" "" "SOURCES;LIBS" ${ARGN})
  add_library(${target} SHARED ${arg_SOURCES})
  set_target_properties(${target} PROPERTIES OUTPUT_NAME ${output} PREFIX "")
  target_include_directories(${target} PUBLIC "${CMAKE_SOURCE_DIR}")
  target_link_libraries(${target} PUBLIC ${arg_LIBS})
  vel_warnings(${target})
endfunction()

# Tests of plain rules; run natively under the sanitizers and once more as a Windows program.
# vel_rules_test(page_rules_test page_rules_test.cpp [LIBS ...])
function(vel_rules_test name)
  cmake_parse_arguments(arg "" "" "LIBS" ${ARGN})
  add_executable(${name} ${arg_UNPARSED_ARGUMENTS})
  target_link_libraries(${name} PRIVATE veldlgs_rules ${arg_LIBS} GTest::gmock GTest::gtest_main)
  vel_warnings(${name})
  if(WIN32)
    add_test(NAME ${name} COMMAND "${CMAKE_SOURCE_DIR}/tools/wine-run" $<TARGET_FILE:${name}>)
  else()
    add_test(NAME ${name} COMMAND ${name})
  endif()
  set_tests_properties(${name} PROPERTIES TIMEOUT 120)
endfunction()

# The resource compiler reports no dependencies: the module's scripts rebuild whatever includes them.
file(GLOB_RECURSE VEL_MODULE_RESOURCES CONFIGURE_DEPENDS
  "${CMAKE_SOURCE_DIR}/app/*.rc" "${CMAKE_SOURCE_DIR}/app/*res.h"
  "${CMAKE_SOURCE_DIR}/patient/*.rc" "${CMAKE_SOURCE_DIR}/patient/*res.h"
  "${CMAKE_SOURCE_DIR}/archive/*.rc" "${CMAKE_SOURCE_DIR}/archive/*res.h"
  "${CMAKE_SOURCE_DIR}/maintenance/*.rc" "${CMAKE_SOURCE_DIR}/maintenance/*res.h"
  "${CMAKE_SOURCE_DIR}/cloud/*.rc" "${CMAKE_SOURCE_DIR}/cloud/*res.h" "${CMAKE_SOURCE_DIR}/cloud/*.htm"
  "${CMAKE_SOURCE_DIR}/controls/*.rc" "${CMAKE_SOURCE_DIR}/controls/*res.h")
list(REMOVE_ITEM VEL_MODULE_RESOURCES "${CMAKE_SOURCE_DIR}/app/exports/veldlgs.rc")
list(APPEND VEL_MODULE_RESOURCES "${CMAKE_SOURCE_DIR}/suite/mfc/afxres.h")
function(vel_resource_dependencies target)
  get_target_property(sources ${target} SOURCES)
  list(FILTER sources INCLUDE REGEX "\\.rc$")
  set_source_files_properties(${sources} TARGET_DIRECTORY ${target}
    PROPERTIES OBJECT_DEPENDS "${VEL_MODULE_RESOURCES};${ARGN}")
endfunction()

# Tests that need Windows: real windows, databases and files, under Wine.
# vel_windows_test(sheet_test sheet_test.cpp LIBS velctl [SHARDS 4])
# SHARDS splits a slow program into that many parallel CTest entries by GoogleTest's own sharding.
function(vel_windows_test name)
  cmake_parse_arguments(arg "" "SHARDS" "LIBS" ${ARGN})
  add_executable(${name} ${arg_UNPARSED_ARGUMENTS})
  target_link_libraries(${name} PRIVATE vel_test_support ${arg_LIBS} GTest::gmock GTest::gtest)
  vel_warnings(${name})
  vel_resource_dependencies(${name})
  if(NOT arg_SHARDS)
    set(arg_SHARDS 1)
  endif()
  math(EXPR last "${arg_SHARDS} - 1")
  foreach(shard RANGE ${last})
    set(test "${name}")
    if(arg_SHARDS GREATER 1)
      set(test "${name}.${shard}")
    endif()
    add_test(NAME ${test} COMMAND "${CMAKE_SOURCE_DIR}/tools/wine-run" $<TARGET_FILE:${name}>)
    set_tests_properties(${test} PROPERTIES TIMEOUT 240
      ENVIRONMENT "GTEST_TOTAL_SHARDS=${arg_SHARDS};GTEST_SHARD_INDEX=${shard}")
  endforeach()
endfunction()

# Windows tests beside a record-sharing service of their own (tests/support/recordservice.h). The service is the one
# that the native preset builds. There is one transfer program per desktop session, so they run one at a time.
# vel_service_test(program_test program_test.cpp LIBS velpat)
set(VEL_SERVICE_PROGRAM "${CMAKE_SOURCE_DIR}/build/native-sanitize/bin/velservice" CACHE FILEPATH
  "The service that tests of the exchange talk to")
function(vel_service_test name)
  cmake_parse_arguments(arg "" "" "LIBS" ${ARGN})
  add_executable(${name} ${arg_UNPARSED_ARGUMENTS} "${CMAKE_SOURCE_DIR}/tests/support/recordservice.cpp")
  target_link_libraries(${name} PRIVATE vel_test_support ${arg_LIBS} crypt32 GTest::gmock GTest::gtest)
  vel_warnings(${name})
  vel_resource_dependencies(${name})
  add_test(NAME ${name} COMMAND "${CMAKE_SOURCE_DIR}/tools/with-service" "${VEL_SERVICE_PROGRAM}"
    "${CMAKE_SOURCE_DIR}/tools/wine-run" $<TARGET_FILE:${name}>)
  set_tests_properties(${name} PROPERTIES TIMEOUT 300 RESOURCE_LOCK transfer_program)
endfunction()
