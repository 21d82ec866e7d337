# What every target of the project shares: language level, warnings, sanitizers, visibility.

add_library(vx_options INTERFACE)
target_compile_features(vx_options INTERFACE cxx_std_17)
target_compile_options(vx_options INTERFACE
    -Wall -Wextra -Wconversion -Wshadow -Wformat=2 -Wnon-virtual-dtor
    # Source names in reports are relative to the project, wherever it is built.
    -fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=
    $<$<BOOL:${VX_WERROR}>:-Werror>)
if(VX_SANITIZE)
    target_compile_options(vx_options INTERFACE
        -fsanitize=${VX_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(vx_options INTERFACE -fsanitize=${VX_SANITIZE})
endif()

# Installed libraries find each other beside themselves, wherever the tree is put.
set(CMAKE_INSTALL_RPATH "$ORIGIN;$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")

# vx_platform_library(NAME SOURCES file... [USES library...])
# One of the three libraries below libvx: C linkage outside, hidden symbols by default.
function(vx_platform_library aName)
    cmake_parse_arguments(ARG "" "" "SOURCES;USES" ${ARGN})
    add_library(${aName} SHARED ${ARG_SOURCES})
    add_library(vx::${aName} ALIAS ${aName})
    set_target_properties(${aName} PROPERTIES
        VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR}
        CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON EXPORT_NAME ${aName})
    target_include_directories(${aName} PUBLIC
        $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/Libs/Platform/include>
        $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
    target_link_libraries(${aName} PUBLIC ${ARG_USES} PRIVATE $<BUILD_INTERFACE:vx_options>)
    install(TARGETS ${aName} EXPORT vxTargets
        LIBRARY COMPONENT runtime NAMELINK_COMPONENT development)
endfunction()

# vx_family(NAME [HEADER_ONLY] [USES family...] [SOURCE_USES family...])
# A class family of libvx: header vx/NAME.h and source NAME.cpp beside the calling CMakeLists.txt.
# USES names the families whose headers its header includes, SOURCE_USES those that only the source
# includes; the include-graph test holds these lines against the files.
function(vx_family aName)
    cmake_parse_arguments(ARG "HEADER_ONLY" "" "USES;SOURCE_USES" ${ARGN})
    target_sources(vx PUBLIC FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR}/Libs/Internal/vx
        FILES ${PROJECT_SOURCE_DIR}/Libs/Internal/vx/vx/${aName}.h)
    if(NOT ARG_HEADER_ONLY)
        target_sources(vx PRIVATE ${CMAKE_CURRENT_SOURCE_DIR}/${aName}.cpp)
    endif()
endfunction()

# vx_test(NameTest [LIBRARIES target...] [SOURCES file...])
# One GoogleTest program for one header, run by ctest as <folder>/NameTest.
function(vx_test aName)
    cmake_parse_arguments(ARG "" "" "LIBRARIES;SOURCES" ${ARGN})
    get_filename_component(theFolder ${CMAKE_CURRENT_SOURCE_DIR} NAME)
    add_executable(${aName} ${aName}.cpp ${ARG_SOURCES})
    target_link_libraries(${aName} PRIVATE vx_test_support ${ARG_LIBRARIES})
    # The tests themselves need no speed: compiling them is what takes the time.
    target_compile_options(${aName} PRIVATE -O0 -g1)
    add_test(NAME ${theFolder}/${aName} COMMAND ${aName})
    set_tests_properties(${theFolder}/${aName} PROPERTIES TIMEOUT 300)
endfunction()

# vx_benchmark(NameBenchmark [LIBRARIES target...])
# One Google Benchmark program; the libraries are the peers that it measures beside libvx.
function(vx_benchmark aName)
    cmake_parse_arguments(ARG "" "" "LIBRARIES" ${ARGN})
    add_executable(${aName} ${aName}.cpp)
    target_link_libraries(${aName} PRIVATE vx::vx benchmark::benchmark benchmark::benchmark_main
        ${ARG_LIBRARIES})
    target_include_directories(${aName} PRIVATE ${PROJECT_SOURCE_DIR}/Benchmarks)
    target_compile_options(${aName} PRIVATE -O2 -Wall -Wextra)
    target_compile_features(${aName} PRIVATE cxx_std_17)
    set_property(GLOBAL APPEND PROPERTY VX_BENCHMARKS ${aName})
endfunction()
