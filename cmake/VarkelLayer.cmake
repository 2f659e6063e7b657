# A layer of the house: one static library whose sources may include only the layers that it names.
#
#   varkel_layer(<name> DIRECTORY <dir> MAY_INCLUDE <dir>... LINKS <target>... SOURCES <file>...)
#
# The target is called varkel_<name>. Every build reads the #include lines of the directory's files; one that
# names a directory which is not listed stops the build, so that an arrow in the wrong direction never lands.
function(varkel_layer name)
    cmake_parse_arguments(LAYER "" "DIRECTORY" "MAY_INCLUDE;LINKS;SOURCES" ${ARGN})
    add_library(varkel_${name} STATIC ${LAYER_SOURCES})
    target_include_directories(varkel_${name} PUBLIC ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR})
    target_link_libraries(varkel_${name} PUBLIC varkel_options ${LAYER_LINKS})
    varkel_check_arrows(varkel_${name} ${LAYER_DIRECTORY} "${LAYER_MAY_INCLUDE}")
endfunction()

# Attaches the include check of one directory to a target.
function(varkel_check_arrows target directory may_include)
    file(GLOB files CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${directory}/*.h ${PROJECT_SOURCE_DIR}/${directory}/*.cpp)
    set(stamp ${CMAKE_CURRENT_BINARY_DIR}/${target}.arrows)
    add_custom_command(
        OUTPUT ${stamp}
        COMMAND ${CMAKE_COMMAND} "-DFILES=${files}" "-DMAY_INCLUDE=${may_include}" -DSTAMP=${stamp}
                -P ${PROJECT_SOURCE_DIR}/cmake/CheckArrows.cmake
        DEPENDS ${files} ${PROJECT_SOURCE_DIR}/cmake/CheckArrows.cmake
        COMMENT "Checking the arrows of ${directory}"
        VERBATIM)
    add_custom_target(${target}_arrows DEPENDS ${stamp})
    add_dependencies(${target} ${target}_arrows)
endfunction()
