# One static library per layer. A layer sees the headers of what it links and of nothing else: each library
# publishes only a folder of links to its own headers, so that an include that draws a wrong arrow finds no file.

add_library(brightlock_options INTERFACE)
target_compile_options(brightlock_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion
    -Wno-sign-conversion -Wnon-virtual-dtor -Woverloaded-virtual -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    # This compiler takes the joining of a literal and a string for an overlapping copy when it optimises.
    target_compile_options(brightlock_options INTERFACE -Wno-restrict)
endif()
if(BRITLOCK_SANITIZE)
    target_compile_options(brightlock_options INTERFACE -fsanitize=address,undefined
        -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(brightlock_options INTERFACE -fsanitize=address,undefined)
endif()

file(WRITE ${CMAKE_BINARY_DIR}/floors.txt "")  # for tools/floors: a line for each: name, folder, root, links

# brightlock_layer(engine FOLDER engine SOURCES a.cpp b.cpp LINK platform toolkit PRIVATE_LINK Qt6::Widgets)
#
# The library's headers are included as "<folder>/<header>", e.g. "regf/hive.h".
function(brightlock_layer name)
    cmake_parse_arguments(L "" "FOLDER" "SOURCES;LINK;PRIVATE_LINK" ${ARGN})
    if(NOT L_FOLDER)
        set(L_FOLDER ${name})
    endif()
    string(JOIN " " links ${L_LINK} ${L_PRIVATE_LINK})
    file(APPEND ${CMAKE_BINARY_DIR}/floors.txt "${name}|${L_FOLDER}|${PROJECT_SOURCE_DIR}|${links}\n")
    set(view ${CMAKE_BINARY_DIR}/layers/${name})
    file(MAKE_DIRECTORY ${view}/${L_FOLDER})
    file(GLOB headers CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR}/src/${L_FOLDER}
        ${PROJECT_SOURCE_DIR}/src/${L_FOLDER}/*.h)
    foreach(header ${headers})  # the folder's own, not those of the folders in it: they are other layers
        file(CREATE_LINK ${PROJECT_SOURCE_DIR}/src/${L_FOLDER}/${header} ${view}/${L_FOLDER}/${header} SYMBOLIC)
    endforeach()
    if(L_SOURCES)
        add_library(${name} STATIC ${L_SOURCES})
        target_include_directories(${name} PUBLIC ${view})
        target_link_libraries(${name} PUBLIC ${L_LINK} PRIVATE ${L_PRIVATE_LINK} brightlock_options)
    else()
        add_library(${name} INTERFACE)
        target_include_directories(${name} INTERFACE ${view})
        target_link_libraries(${name} INTERFACE ${L_LINK})
    endif()
endfunction()

# brightlock_test(regf_test SOURCES a.cpp LINK regf [LABELS release]): one test program; each of its cases is a test of CTest.
# Those labelled "release" ask for the speed of a release build and run there alone, under names that begin so.
function(brightlock_test name)
    cmake_parse_arguments(T "" "" "SOURCES;LINK;LABELS" ${ARGN})
    add_executable(${name} ${T_SOURCES})
    target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
    target_link_libraries(${name} PRIVATE ${T_LINK} GTest::gmock GTest::gtest_main brightlock_options)
    target_compile_definitions(${name} PRIVATE
        PROGRAM_FOLDER="${CMAKE_RUNTIME_OUTPUT_DIRECTORY}")
    if(NOT CMAKE_CROSSCOMPILING)  # a program for another system is run there
        list(TRANSFORM T_LABELS APPEND / OUTPUT_VARIABLE prefix)
        gtest_discover_tests(${name} TEST_PREFIX "${prefix}" DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 600 LABELS "${T_LABELS}")
    endif()
endfunction()
