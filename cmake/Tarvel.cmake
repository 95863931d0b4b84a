# What every target of this tree shares: warnings, sanitizers, include paths.

include(${CMAKE_CURRENT_LIST_DIR}/${CMAKE_SYSTEM_NAME}Platform.cmake OPTIONAL RESULT_VARIABLE platform_file)
if(NOT platform_file)
    message(FATAL_ERROR "${CMAKE_SYSTEM_NAME} is not served yet: there is no ${CMAKE_SYSTEM_NAME}Platform.cmake.")
endif()

add_library(tarvel_warnings INTERFACE)
target_compile_options(tarvel_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
target_compile_definitions(tarvel_warnings INTERFACE QT_NO_CAST_TO_ASCII QT_NO_KEYWORDS)

add_library(tarvel_options INTERFACE)
target_link_libraries(tarvel_options INTERFACE tarvel_warnings)
if(TARVEL_SANITIZE)
    target_compile_options(tarvel_options INTERFACE
        -fsanitize=${TARVEL_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(tarvel_options INTERFACE -fsanitize=${TARVEL_SANITIZE})
endif()

# tarvel_library(name SOURCES ... LINK ... PRIVATE ... [FOLDER folder HEADERS ...])
#
# One static library for one folder of src/, which gives it its name. Its headers
# are reached through an include folder of its own that holds nothing but that
# folder, so a header of a library that is not linked cannot be included. With
# FOLDER and HEADERS, a library for these headers of a folder alone.
function(tarvel_library name)
    cmake_parse_arguments(ARG "" "FOLDER" "SOURCES;LINK;PRIVATE;HEADERS" ${ARGN})
    set(target tarvel_${name})
    set(include_root ${PROJECT_BINARY_DIR}/include/${name})
    if(ARG_HEADERS)
        file(MAKE_DIRECTORY ${include_root}/${ARG_FOLDER})
        foreach(header ${ARG_HEADERS})
            file(CREATE_LINK ${PROJECT_SOURCE_DIR}/src/${ARG_FOLDER}/${header}
                ${include_root}/${ARG_FOLDER}/${header} SYMBOLIC)
        endforeach()
    else()
        file(MAKE_DIRECTORY ${include_root})
        file(CREATE_LINK ${PROJECT_SOURCE_DIR}/src/${name} ${include_root}/${name} SYMBOLIC)
    endif()

    add_library(${target} STATIC ${ARG_SOURCES})
    # Some of it becomes part of a module, too.
    set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE ON)
    target_include_directories(${target} PUBLIC ${include_root})
    target_link_libraries(${target} PUBLIC ${ARG_LINK} PRIVATE tarvel_options ${ARG_PRIVATE})
endfunction()

# tarvel_platform_sources(variable [folder])
#
# The files of this folder, or of a folder in it, that serve the platform that is
# built for: Linux*.cpp on Linux.
function(tarvel_platform_sources variable)
    file(GLOB files CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${ARGV1}/${CMAKE_SYSTEM_NAME}*.cpp)
    set(${variable} ${files} PARENT_SCOPE)
endfunction()

# The simulated optical drive and its discs, for tests and benchmarks.
set(TARVEL_SIMULATED_DRIVE
    ${PROJECT_SOURCE_DIR}/tests/support/DiscDamage.cpp
    ${PROJECT_SOURCE_DIR}/tests/support/SimulatedDisc.cpp
    ${PROJECT_SOURCE_DIR}/tests/support/SimulatedDrive.cpp
    ${PROJECT_SOURCE_DIR}/tests/support/SimulatedMechanism.cpp)

# tarvel_test(name [WIDGETS] [OFFLINE] SOURCES ... LINK ... LABELS ... [TIMEOUT seconds])
#
# One test executable for one folder of tests/; its cases are single CTest tests. With
# WIDGETS for one that shows windows.
function(tarvel_test name)
    cmake_parse_arguments(ARG "WIDGETS;OFFLINE" "TIMEOUT" "SOURCES;LINK;LABELS" ${ARGN})
    set(target tarvel_test_${name})
    add_executable(${target} ${ARG_SOURCES} ${PROJECT_SOURCE_DIR}/tests/support/TestMain.cpp)
    if(TARVEL_SANITIZE STREQUAL "thread")
        target_sources(${target} PRIVATE ${PROJECT_SOURCE_DIR}/tests/support/LinuxWholeFork.cpp)
    endif()
    target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
    target_link_libraries(${target} PRIVATE
        tarvel_options tarvel_test_support GTest::gtest GTest::gmock Qt6::Core Qt6::Gui Qt6::Test ${ARG_LINK})
    if(ARG_WIDGETS)
        target_compile_definitions(${target} PRIVATE TARVEL_TEST_WIDGETS)
        target_link_libraries(${target} PRIVATE Qt6::Widgets)
    endif()
    # What looks something up finds no network, unless a test brings its own.
    if(ARG_OFFLINE)
        target_compile_definitions(${target} PRIVATE TARVEL_TEST_OFFLINE)
        target_link_libraries(${target} PRIVATE tarvel_metadata)
    endif()
    if(NOT ARG_TIMEOUT)
        set(ARG_TIMEOUT 300)
    endif()
    gtest_discover_tests(${target} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60
        PROPERTIES LABELS "${ARG_LABELS}" TIMEOUT ${ARG_TIMEOUT})
endfunction()
