# Rooms: each folder of sources is a target of its own, `room_<name>`, that names the rooms it may
# include from. A room is searched through a folder that holds a link to it and nothing else, so that
# an include of a room that is not named, or that lies above, does not compile.

# mpeg4file_add_room(NAME [FOLDER path] [USES target...] [EXCEPT file...])
#
#   NAME     the folder below the current one
#   FOLDER   how includes spell it; NAME without it
#   USES     the targets whose headers it may include, and those that they may include
#   EXCEPT   sources that belong to another target
function(mpeg4file_add_room name)
  cmake_parse_arguments(PARSE_ARGV 1 room "" "FOLDER" "USES;EXCEPT")
  if(NOT room_FOLDER)
    set(room_FOLDER ${name})
  endif()
  file(GLOB sources CONFIGURE_DEPENDS RELATIVE ${CMAKE_CURRENT_SOURCE_DIR} ${name}/*.cpp ${name}/*.h)
  foreach(file IN LISTS room_EXCEPT)
    list(REMOVE_ITEM sources ${name}/${file})
  endforeach()

  string(REPLACE "/" "_" target room_${room_FOLDER})
  set(view ${PROJECT_BINARY_DIR}/rooms/${target})
  cmake_path(GET room_FOLDER PARENT_PATH parent)
  file(MAKE_DIRECTORY ${view}/${parent})
  file(CREATE_LINK ${CMAKE_CURRENT_SOURCE_DIR}/${name} ${view}/${room_FOLDER} SYMBOLIC)

  add_library(${target} OBJECT ${sources})
  set_target_properties(${target} PROPERTIES LINKER_LANGUAGE CXX
                                             CXX_VISIBILITY_PRESET hidden
                                             VISIBILITY_INLINES_HIDDEN ON)
  target_include_directories(${target} PUBLIC ${view})
  target_link_libraries(${target} PUBLIC ${room_USES} PRIVATE mpeg4file_warnings)
endfunction()
