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
