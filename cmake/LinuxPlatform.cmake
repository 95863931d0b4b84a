# The libraries that Linux alone brings, each under the name of what it serves.

find_package(PkgConfig REQUIRED)
find_package(Qt6 6.4 REQUIRED COMPONENTS DBus)
# 7.87 is the first that can leave a name resolution behind.
pkg_check_modules(CURL REQUIRED IMPORTED_TARGET libcurl>=7.87)

add_library(tarvel_platform_http INTERFACE)
target_link_libraries(tarvel_platform_http INTERFACE PkgConfig::CURL)

add_library(tarvel_platform_loopback INTERFACE)

add_library(tarvel_platform_run_guard INTERFACE)
target_link_libraries(tarvel_platform_run_guard INTERFACE Qt6::DBus)

# What makes an executable the program: it is installed, with what a desktop shows of it.
function(tarvel_finish_program target)
    include(${PROJECT_SOURCE_DIR}/packaging/linux/install.cmake)
endfunction()

# The drive that is played to whole programs, for tests, benchmarks and the tour.
function(tarvel_add_played_drive)
    add_subdirectory(${PROJECT_SOURCE_DIR}/tests/playeddrive)
endfunction()

# FFmpeg brings some hundred libraries with it, whose linking would be a third of the
# program's start. A module of its own brings them once they are needed.
include(GNUInstallDirs)
set(TARVEL_MODULE_FOLDER ${CMAKE_INSTALL_LIBDIR}/tarvel-cd-ripper)
file(RELATIVE_PATH module_beside_program
    ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR}/tarvel-cd-ripper)
# The build keeps to the same way, which must not lead out of it.
if(NOT module_beside_program MATCHES "^\\.\\./[^.]")
    message(FATAL_ERROR "CMAKE_INSTALL_BINDIR and CMAKE_INSTALL_LIBDIR have to lie side by side: "
        "from its own folder the program looks for its module in ${module_beside_program}.")
endif()

function(tarvel_add_media_module)
    add_library(tarvel_media_module MODULE ${PROJECT_SOURCE_DIR}/src/codecs/media/LinuxMediaModule.cpp)
    target_link_libraries(tarvel_media_module PRIVATE tarvel_options tarvel_codecs)
    target_link_options(tarvel_media_module PRIVATE LINKER:--exclude-libs,ALL LINKER:--as-needed)
    # With the version, since a program that runs must not load the module of a newer one.
    set_target_properties(tarvel_media_module PROPERTIES
        PREFIX "" OUTPUT_NAME media-${PROJECT_VERSION} CXX_VISIBILITY_PRESET hidden
        LIBRARY_OUTPUT_DIRECTORY
        "$<PATH:NORMAL_PATH,$<TARGET_FILE_DIR:tarvel-cd-ripper>/${module_beside_program}>")
endfunction()

# Makes an executable over tarvel_codecs load the module at need. Its own functions
# take the place of those in the library, which then call for nothing of FFmpeg.
function(tarvel_load_media_at_need target)
    set(module "$<TARGET_FILE:tarvel_media_module>,$<TARGET_FILE_DIR:${target}>")
    target_sources(${target} PRIVATE ${PROJECT_SOURCE_DIR}/src/codecs/media/LinuxMediaAtNeed.cpp)
    target_compile_definitions(${target} PRIVATE TARVEL_MEDIA_MODULE="$<PATH:RELATIVE_PATH,${module}>")
    target_link_libraries(${target} PRIVATE tarvel_codecs)
    target_link_options(${target} PRIVATE LINKER:--as-needed)
    add_dependencies(${target} tarvel_media_module)
endfunction()
