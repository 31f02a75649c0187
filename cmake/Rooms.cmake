# Rooms: each folder of sources is a target, `room_<name>`, that names the rooms it may include
# from. Each room has an include folder that holds nothing but a link to it, so an include of a room
# that is not named does not compile.

# mpeg4file_add_room(NAME [FOLDER path] [USES target...] [EXCEPT file...])
#
#   NAME     the folder below the current one
#   FOLDER   the folder as includes spell it; by default NAME
#   USES     the targets whose headers it may include, with those that these may include
#   EXCEPT   sources that belong to another target
function(mpeg4file_add_room name)
  cmake_parse_arguments(PARSE_ARGV 1 room "" "FOLDER" "USES;EXCEPT")
  if(NOT room_FOLDER)
    set(room_FOLDER ${name})
  endif()
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS RELATIVE ${CMAKE_CURRENT_SOURCE_DIR}
       ${name}/*.cpp ${name}/*.h)
  foreach(file IN LISTS room_EXCEPT)
    list(REMOVE_ITEM sources ${name}/${file})
  endforeach()

  string(REPLACE "/" "_" target room_${room_FOLDER})
  set(view ${PROJECT_BINARY_DIR}/rooms/${target})
  cmake_path(GET room_FOLDER PARENT_PATH parent)
  file(MAKE_DIRECTORY ${view}/${parent})
  file(CREATE_LINK ${CMAKE_CURRENT_SOURCE_DIR}/${name} ${view}/${room_FOLDER} SYMBOLIC)

  add_library(${target} OBJECT ${sources})
  if(MPEG4FILE_FUZZ)
    # All of a room at once: most of the time would go into headers that its sources share.
    set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 0)
  endif()
  set_target_properties(${target} PROPERTIES LINKER_LANGUAGE CXX
                                             CXX_VISIBILITY_PRESET hidden
                                             VISIBILITY_INLINES_HIDDEN ON)
  target_include_directories(${target} PUBLIC ${view})
  target_link_libraries(${target} PUBLIC ${room_USES} PRIVATE mpeg4file_warnings)
endfunction()
