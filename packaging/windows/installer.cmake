# Makes the installer of what CPack has staged; run by its generator "External".
file(GLOB_RECURSE files LIST_DIRECTORIES true RELATIVE "${CPACK_TEMPORARY_DIRECTORY}" "${CPACK_TEMPORARY_DIRECTORY}/*")
list(SORT files)
list(REVERSE files) # a folder behind what is in it
set(removal "")
foreach(file IN LISTS files)
  string(REPLACE "/" "\\" path "${file}")
  if(IS_DIRECTORY "${CPACK_TEMPORARY_DIRECTORY}/${file}")
    string(APPEND removal "RMDir \"$INSTDIR\\${path}\"\n")
  else()
    string(APPEND removal "Delete \"$INSTDIR\\${path}\"\n")
  endif()
endforeach()
file(WRITE "${CPACK_TOPLEVEL_DIRECTORY}/removal.nsh" "${removal}")
set(installer "${CPACK_PACKAGE_DIRECTORY}/${CPACK_PACKAGE_FILE_NAME}-setup.exe")
if(CPACK_VICENTER_WIDTH EQUAL 64)
  set(target amd64-unicode)
else()
  set(target x86-unicode)
endif()
execute_process(
  COMMAND "${CPACK_VICENTER_MAKENSIS}" -V2 -WX -INPUTCHARSET UTF8 "-XTarget ${target}" "-DWIDTH=${CPACK_VICENTER_WIDTH}"
          "-DVERSION=${CPACK_PACKAGE_VERSION}" "-DSTAGE=${CPACK_TEMPORARY_DIRECTORY}" "-DOUTPUT=${installer}"
          "-DREMOVAL=${CPACK_TOPLEVEL_DIRECTORY}/removal.nsh" "${CMAKE_CURRENT_LIST_DIR}/installer.nsi"
  COMMAND_ERROR_IS_FATAL ANY)
set(CPACK_EXTERNAL_BUILT_PACKAGES "${installer}")
